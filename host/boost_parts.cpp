// The parts of Boost that are compiled once here instead of in every file that includes them.
#include <boost/asio/impl/src.hpp>
#include <boost/beast/src.hpp>
#include <boost/json/src.hpp>
