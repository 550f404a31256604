#include "host/frames.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

#include <cstdint>
#include <limits>

namespace json = boost::json;

namespace host {

namespace {

/// Keeps of a JSON text only whether it is an object and the texts of two of its keys. A tree of
/// values would take many times the memory of the message, and nothing else of it is wanted.
class TopLevelReader
{
  public:
    using Text = json::string_view;
    using Error = json::error_code;

    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    bool isObject = false;
    bool hasName = false;
    bool hasData = false;
    std::string name;
    std::string data;

    bool on_document_begin(Error&) { return true; }
    bool on_document_end(Error&) { return true; }
    bool on_object_begin(Error&)
    {
        isObject = isObject || depth_ == 0;
        return descend();
    }
    bool on_object_end(std::size_t, Error&) { return ascend(); }
    bool on_array_begin(Error&) { return descend(); }
    bool on_array_end(std::size_t, Error&) { return ascend(); }

    bool on_key_part(Text part, std::size_t, Error&)
    {
        if (isObject && depth_ == 1)
            key_.append(part.data(), part.size());
        return true;
    }
    bool on_key(Text part, std::size_t total, Error& error)
    {
        on_key_part(part, total, error);
        if (isObject && depth_ == 1) {
            text_ = key_ == "name" ? &name : key_ == "data" ? &data : nullptr;
            if (text_ != nullptr) {
                text_->clear();
                found() = false;
            }
            key_.clear();
        }
        return true;
    }
    bool on_string_part(Text part, std::size_t, Error&)
    {
        if (text_ != nullptr)
            text_->append(part.data(), part.size());
        return true;
    }
    bool on_string(Text part, std::size_t total, Error& error)
    {
        on_string_part(part, total, error);
        if (text_ != nullptr)
            found() = true;
        return value();
    }
    bool on_number_part(Text, Error&) { return true; }
    bool on_int64(std::int64_t, Text, Error&) { return value(); }
    bool on_uint64(std::uint64_t, Text, Error&) { return value(); }
    bool on_double(double, Text, Error&) { return value(); }
    bool on_bool(bool, Error&) { return value(); }
    bool on_null(Error&) { return value(); }
    bool on_comment_part(Text, Error&) { return true; }
    bool on_comment(Text, Error&) { return true; }

  private:
    bool& found() { return text_ == &name ? hasName : hasData; }
    bool value()
    {
        text_ = nullptr;
        return true;
    }
    bool descend()
    {
        text_ = nullptr;
        ++depth_;
        return true;
    }
    bool ascend()
    {
        --depth_;
        return true;
    }

    int depth_ = 0;
    std::string key_;
    std::string* text_ = nullptr; ///< where the value of the current key goes, if wanted
};

using Parser = json::basic_parser<TopLevelReader>;

/// Whether the text is one whole JSON value.
bool parse(Parser& parser, std::string_view text)
{
    json::error_code error;
    const std::size_t used = parser.write_some(false, text.data(), text.size(), error);
    return !error && used == text.size();
}

std::string quoted(std::string_view text)
{
    return json::serialize(json::value(json::string_view(text.data(), text.size())));
}

} // namespace

PageRequest parsePageRequest(std::string_view text)
{
    PageRequest request;
    Parser parser{json::parse_options()};
    if (!parse(parser, text)) {
        request.problem = "The message is not JSON.";
        return request;
    }
    TopLevelReader& reader = parser.handler();
    if (!reader.hasName || !reader.hasData) {
        request.problem = "The message is not an object with the texts \"name\" and \"data\".";
        return request;
    }
    request.name = std::move(reader.name);
    request.data = std::move(reader.data);
    return request;
}

Frame packetFrame(std::string_view target, std::string_view packet)
{
    Parser parser{json::parse_options()};
    if (!parse(parser, packet) || !parser.handler().isObject)
        return nullptr;
    constexpr std::string_view kStart = "{\"target\":";
    constexpr std::string_view kMiddle = ",\"packet\":";
    const std::string targetText = quoted(target);
    std::string frame;
    frame.reserve(kStart.size() + targetText.size() + kMiddle.size() + packet.size() + 1);
    frame += kStart;
    frame += targetText;
    frame += kMiddle;
    frame += packet;
    frame += '}';
    return std::make_shared<const std::string>(std::move(frame));
}

Frame hostFailure(std::string_view reason)
{
    return packetFrame(
        "host", "{\"whoami\":\"host\",\"result\":\"FAILURE\",\"reason\":" + quoted(reason) + "}");
}

} // namespace host
