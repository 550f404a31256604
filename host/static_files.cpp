#include "host/static_files.h"

#include <QFile>
#include <QFileInfo>

#include <optional>
#include <string>

namespace host {

namespace {

struct TypeOfSuffix
{
    const char* suffix;
    const char* type;
};

constexpr TypeOfSuffix kTypes[] = {
    {"html", "text/html; charset=utf-8"},
    {"js", "text/javascript; charset=utf-8"},
    {"css", "text/css; charset=utf-8"},
    {"svg", "image/svg+xml"},
    {"png", "image/png"},
    {"ico", "image/x-icon"},
    {"json", "application/json"},
    {"map", "application/json"},
    {"woff2", "font/woff2"},
};

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

/// Undoes the percent codes, once. Nothing if one is broken or stands for NUL.
std::optional<std::string> decoded(std::string_view path)
{
    std::string plain;
    plain.reserve(path.size());
    for (std::size_t i = 0; i < path.size(); ++i) {
        char character = path[i];
        if (character == '%') {
            if (i + 2 >= path.size())
                return {};
            const int high = hexDigit(path[i + 1]);
            const int low = hexDigit(path[i + 2]);
            if (high < 0 || low < 0)
                return {};
            character = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (character == '\0')
            return {};
        plain += character;
    }
    return plain;
}

/// Whether a name between two slashes may be asked for. A leading dot covers "." and ".." as
/// well as hidden files; the backslash and the colon mean folders, drives and streams on
/// Windows.
bool isPlainName(const QString& name)
{
    return !name.isEmpty() && !name.startsWith(QLatin1Char('.')) &&
           !name.contains(QLatin1Char('\\')) && !name.contains(QLatin1Char(':'));
}

} // namespace

StaticFiles::StaticFiles(const QString& folder) : root_(QFileInfo(folder).canonicalFilePath()) {}

StaticFiles::Result StaticFiles::read(std::string_view path) const
{
    Result result;
    const std::optional<std::string> plain = decoded(path);
    if (!plain || plain->empty() || plain->front() != '/') {
        result.outcome = Outcome::Malformed;
        return result;
    }
    QString name = QString::fromStdString(plain->substr(1));
    if (name.isEmpty())
        name = QStringLiteral("index.html");
    if (root_.isEmpty())
        return result;
    const QStringList parts = name.split(QLatin1Char('/'));
    for (const QString& part : parts) {
        if (!isPlainName(part))
            return result;
    }

    // Links are followed before the folder is compared, so that one that leads out is missing.
    const QFileInfo info(root_ + QLatin1Char('/') + name);
    const QString canonical = info.canonicalFilePath();
    const QString prefix = root_.endsWith(QLatin1Char('/')) ? root_ : root_ + QLatin1Char('/');
    if (!canonical.startsWith(prefix) || !info.isFile())
        return result;
    QFile file(canonical);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    result.content = file.readAll();
    result.contentType = contentType(name);
    result.outcome = Outcome::Found;
    return result;
}

const char* StaticFiles::contentType(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    for (const TypeOfSuffix& row : kTypes) {
        if (suffix == QLatin1String(row.suffix))
            return row.type;
    }
    return "application/octet-stream";
}

} // namespace host
