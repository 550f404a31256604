#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

namespace host {

/// The page's files: what lies in one folder and nothing else, whatever the request says.
class StaticFiles
{
  public:
    enum class Outcome
    {
        Found,
        Malformed, ///< the path is no path: a broken percent code, a NUL
        Missing,   ///< no such file, a folder, a hidden file, or one outside of the folder
    };

    struct Result
    {
        Outcome outcome = Outcome::Missing;
        QByteArray content;
        const char* contentType = "";
    };

    explicit StaticFiles(const QString& folder);

    /// Reads the file that an URL's path names; "/" is index.html.
    ///
    /// @param path  as it stands in the request line, without query, percent-encoded UTF-8
    Result read(std::string_view path) const;

    /// The content type for a file's name, by its suffix.
    static const char* contentType(const QString& fileName);

  private:
    QString root_; ///< canonical; empty when the folder is not there
};

} // namespace host
