#pragma once

#include <QString>

/// Where profiles lie, and which names in requests lead there.
namespace profile {

/// A folder of profiles.
class ProfileFolder
{
  public:
    /// The folder `path`; relative ones are taken from the working folder, an empty one is no
    /// folder. `isOwn` says that it lies below the data root and may be made.
    ProfileFolder(const QString& path, bool isOwn);

    /// Absolute path with "/" as the separator; empty when there is no folder.
    const QString& path() const { return m_path; }

    /// Path of the file `name` in this folder. Sub-folders are fine; empty when there is no
    /// folder or the name leads elsewhere: an absolute name, a drive, a NUL, a "/" at the end, or
    /// ".." that goes above the folder. Backslashes count as separators.
    QString pathOf(const QString& name) const;

    /// Makes the folder of a file that is to be written, if it is missing and this folder lies
    /// below the data root. `path` comes from `pathOf`.
    void makeFolderOf(const QString& path) const;

  private:
    QString m_path;
    bool m_isOwn;
};

/// Folder that profiles are opened from: what "runcf/AbsCoeff.ini" below the data root names
/// under "absLoc/InitialDir". Where it names none, the default folder of this system, with a
/// warning in the log.
ProfileFolder openedProfileFolder();

/// Folder that profiles are saved to: as `openedProfileFolder`, with its own default on Windows
/// and no warning.
ProfileFolder savedProfileFolder();

/// Folder of the data root that holds what the engine derives: "qrvdata/svp_abscoeff", whatever the
/// configuration names. No folder without a data root.
ProfileFolder dataProfileFolder();

/// Path of "runcf/AbsCoeff.ini"; empty without a data root.
QString configurationPath();

} // namespace profile
