#include "profile/texthelpers.h"

#include "profile/textfile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace profile {

namespace {

bool isWordCharacter(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

// Place of a key that stands whole: a key that ends in a word character must not run on either.
std::size_t findKey(std::string_view line, std::string_view key, std::size_t from)
{
    if (key.empty())
        return std::string_view::npos;
    for (std::size_t at = line.find(key, from); at != std::string_view::npos;
         at = line.find(key, at + 1)) {
        const std::size_t behind = at + key.size();
        const bool startsWhole =
            at == 0 || !isWordCharacter(key.front()) || !isWordCharacter(line[at - 1]);
        const bool endsWhole =
            behind == line.size() || !isWordCharacter(key.back()) || !isWordCharacter(line[behind]);
        if (startsWhole && endsWhole)
            return at;
    }
    return std::string_view::npos;
}

} // namespace

char** decodeCommaString(char* text, int* count, char separator)
{
    *count = 0;
    if (text == nullptr)
        return nullptr;
    const auto fields = std::size_t(std::count(text, text + std::strlen(text), separator)) + 1;
    auto* const array = static_cast<char**>(std::calloc(fields, sizeof(char*)));
    if (array == nullptr)
        return nullptr;
    char* field = text;
    for (std::size_t i = 0; i < fields; ++i) {
        array[i] = field;
        char* const end = std::strchr(field, separator);
        if (end == nullptr || separator == '\0')
            break;
        *end = '\0';
        field = end + 1;
    }
    *count = int(fields);
    return array;
}

bool getFieldValue(std::string_view line, std::string_view key, std::string& value)
{
    return getFieldValue(line, key, std::string_view(), value);
}

bool getFieldValue(std::string_view line, std::string_view key, std::string_view nextKey,
                   std::string& value)
{
    const std::size_t at = findKey(line, key, 0);
    if (at == std::string_view::npos)
        return false;
    const std::size_t start = at + key.size();
    const std::size_t end = findKey(line, nextKey, start);
    value = trimmedText(line.substr(start, end == std::string_view::npos ? end : end - start));
    return true;
}

int fnFindPrecision(const QString& number, int minimum)
{
    const QByteArray text = number.toUtf8();
    return fnFindPrecision(std::string_view(text.constData(), std::size_t(text.size())), minimum);
}

int fnFindPrecision(std::string_view number, int minimum)
{
    const std::string_view text = trimmedText(number);
    if (text.empty())
        return 0;
    const int least = std::max(minimum, 0);
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos)
        return least;
    std::size_t end = point + 1;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9')
        ++end;
    return std::max(int(end - point - 1), least);
}

} // namespace profile
