#pragma once

#include <QString>
#include <QStringList>

namespace convert {

/// Outcome of converting one file.
struct Outcome
{
    bool isConverted = false;
    QString line; ///< what was read and where it went, or why not; one line
};

/// Converts probe files one after the other, each to `<base name>.asvp`.
class Converter
{
  public:
    /// @param inputs  all files of the run: none of them is ever written over
    /// @param folder  where the profiles go; empty for beside each input
    Converter(const QStringList& inputs, const QString& folder);

    /// Reads `input` and writes its profile. An older file of the profile's name is replaced
    /// whole, unless this run wrote it; where it holds something else it is kept as a backup.
    Outcome convert(const QString& input);

  private:
    QString targetOf(const QString& input) const;

    QStringList m_inputs; // canonical
    QString m_folder;
    QStringList m_written; // canonical, with the input of each
    QStringList m_writtenFrom;
};

} // namespace convert
