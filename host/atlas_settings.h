#pragma once

#include <QByteArray>
#include <QString>

#include <utility>

namespace host {

/// Answer to a request about the atlas: an HTTP status, and JSON with 200, a sentence otherwise.
struct AtlasAnswer
{
    unsigned status = 200;
    QByteArray text;
};

/// The settings by which casts are continued from the World Ocean Atlas: a switch and two files,
/// kept among the survey system's tokens, where the engine reads them at every fix.
///
/// A call waits while another process holds the tokens' lock, but for half a second only: whoever
/// waits for the engine waits for it too. To be called on the Qt thread, since the tokens may come
/// out of a database whose connection all of the process shares.
class AtlasSettings
{
  public:
    /// @param folder  where files that were handed in are stored; need not be there
    explicit AtlasSettings(QString folder) : folder_(std::move(folder)) {}

    /// The settings and what there is of the files, as the JSON object {"use", "salinity": {"path",
    /// "there", "size", "fault"}, "temperature": {…}, "folder", "stored": [{"name", "size"}]}.
    /// Settings that are missing are an atlas that is off and has no files.
    AtlasAnswer read() const;

    /// Takes {"use": bool, "salinity": path, "temperature": path}, writes all three and answers as
    /// `read`. Paths may name files that are not there (yet). Nothing else is changed.
    AtlasAnswer write(const QByteArray& json) const;

  private:
    QByteArray described(bool use, const QString& salinity, const QString& temperature) const;

    QString folder_;
};

/// Bytes of a file that tell whether it looks like one of the atlas.
constexpr int kAtlasBeginning = 64 * 1024;

/// Why a file that begins so cannot be one of the atlas, as a sentence; empty when it looks like
/// one: its second line has depths of levels behind a colon.
///
/// @param title  the file's name, for the sentence
QString atlasTextFault(const QByteArray& beginning, const QString& title);

/// As atlasTextFault for a file on the disk, which may also be missing, too large for the engine,
/// or no file.
QString atlasFileFault(const QString& path);

/// Whether a file may be stored under a name: that of one file on any system, at most 200 bytes
/// long.
bool isAtlasFileName(const QString& name);

} // namespace host
