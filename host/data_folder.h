#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace host {

/// The folder that stands in for the survey system's program data: settings and profiles.
///
///     <root>/Ardentide/qrvdata/svp_abscoeff/    profiles
///     <root>/Ardentide/qrvdata/woa/             files of the World Ocean Atlas
///     <root>/Ardentide/runcf/AbsCoeff.ini       names the profile folder
///     <root>/Ardentide/tqrv/                    the engine's settings
class DataFolder
{
  public:
    /// @param root  absolute path
    explicit DataFolder(const QString& root);

    /// Makes what is missing and leaves alone what is there. Sample casts are copied only when
    /// the profile folder is made, so that a sample that was deleted stays deleted.
    ///
    /// @param samples  folder of sample casts, or empty
    /// @return empty, or a sentence that says what could not be made
    QString layOut(const QString& samples) const;

    /// The folder that AbsCoeff.ini names, read anew; absolute, with forward slashes. If the
    /// file or its key is missing, the folder that layOut() makes.
    QString profileFolder() const;

    /// The folder of the atlas files that pages have handed in; made with the first one.
    QString atlasFolder() const;

    /// The casts of the profile folder as the JSON object {"folder", "casts": [{"name", "kind",
    /// "size", "modified"}]}, sorted by name. Sizes are bytes, times UTC in ISO 8601.
    ///
    /// @param endings  ends of further names to list, e.g. ".col", in any case; the engine's users
    ///                 describe kinds of their own, which the host does not know
    QByteArray listCasts(const QStringList& endings) const;

  private:
    QString defaultProfileFolder() const;
    QString iniFile() const;

    QString base_; ///< <root>/Ardentide
};

/// Whether a file name has the suffix of a cast: asvp, ssp, vp2, aml, amlx, valeport. Case does
/// not matter.
bool isCastName(const QString& fileName);

} // namespace host
