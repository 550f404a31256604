# What a cross build takes from the packages of the machine that builds: sources and headers that
# are bound to no system.

# Boost's headers in a folder of their own: /usr/include as a whole would shadow the compiler's.
set(boost_include "${CMAKE_BINARY_DIR}/boost/include")
file(MAKE_DIRECTORY "${boost_include}")
file(CREATE_LINK /usr/include/boost "${boost_include}/boost" SYMBOLIC)
add_library(Boost::headers INTERFACE IMPORTED)
set_target_properties(Boost::headers PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${boost_include}")

if(SVP_TESTS)
  set(googletest /usr/src/googletest/googletest)
  add_library(svp_googletest STATIC "${googletest}/src/gtest-all.cc")
  target_include_directories(svp_googletest SYSTEM PUBLIC "${googletest}/include")
  target_include_directories(svp_googletest PRIVATE "${googletest}")
  add_library(GTest::gtest ALIAS svp_googletest)
endif()
