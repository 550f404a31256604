#include "profile/filehelpers.h"

#include "platform/platform.h"

#include <QString>

#include <cstring>
#include <stdexcept>

namespace profile {

namespace {

bool isSeparator(char character)
{
    return character == '\\' || character == '/';
}

bool isUsable(const char* directory, const char* fileName)
{
    return directory != nullptr && fileName != nullptr &&
           std::strlen(directory) < maxDirectoryLength;
}

} // namespace

std::string fnFileNameConstr(const char* directory, const char* fileName)
{
    if (directory == nullptr || fileName == nullptr)
        return {};
    std::string path(directory);
    if (path.size() >= maxDirectoryLength)
        throw std::out_of_range("fnFileNameConstr: directory too long");
    if (path.empty())
        return fileName;
    while (path.size() > 1 && isSeparator(path.back()) && isSeparator(path[path.size() - 2]))
        path.pop_back();
    if (!isSeparator(path.back()))
        path += '\\';
    while (isSeparator(*fileName))
        ++fileName;
    return path + fileName;
}

std::FILE* fnFileOpenRead(const char* directory, const char* fileName)
{
    if (!isUsable(directory, fileName))
        return nullptr;
    return fnFileOpenRead(fnFileNameConstr(directory, fileName).c_str());
}

std::FILE* fnFileOpenRead(const char* path)
{
    return path == nullptr
               ? nullptr
               : platform::openStream(platform::nativePath(QString::fromUtf8(path)), "rb");
}

std::FILE* fnFileOpenWrite(const char* directory, const char* fileName, char* path)
{
    if (path == nullptr || !isUsable(directory, fileName))
        return nullptr;
    const std::string joined = fnFileNameConstr(directory, fileName);
    if (joined.size() >= pathBufferSize)
        return nullptr;
    if (*directory != '\0')
        platform::makeFolder(platform::nativePath(QString::fromUtf8(directory)));
    std::memcpy(path, joined.c_str(), joined.size() + 1);
    return platform::openStream(platform::nativePath(QString::fromStdString(joined)), "wb");
}

} // namespace profile
