#include "host/data_folder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtDebug>

#include <algorithm>

namespace host {

namespace {

constexpr const char* kCastSuffixes[] = {"asvp", "ssp", "vp2", "aml", "amlx", "valeport"};

/// AbsCoeff.ini is two lines; a larger file is something else.
constexpr qint64 kLargestIni = 1 << 20;

/// The text of a key in a section, both compared without case; null if it is not there.
///
/// Not QSettings: that takes the backslashes of a Windows path for escapes, a comma for the end
/// of the value and the bytes for Latin-1.
QString iniValue(const QString& text, const QString& section, const QString& key)
{
    bool inSection = false;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            const QString name = line.mid(1, line.indexOf(QLatin1Char(']')) - 1).trimmed();
            inSection = name.compare(section, Qt::CaseInsensitive) == 0;
            continue;
        }
        const int equals = line.indexOf(QLatin1Char('='));
        if (!inSection || equals < 0 ||
            line.left(equals).trimmed().compare(key, Qt::CaseInsensitive) != 0)
            continue;
        QString value = line.mid(equals + 1).trimmed();
        const QLatin1Char quote('"');
        if (value.size() >= 2 && value.startsWith(quote) && value.endsWith(quote))
            value = value.mid(1, value.size() - 2);
        return value;
    }
    return {};
}

/// A value as it may stand in an INI file: in quotes if it holds what INI readers take for the
/// end of a value.
QString iniText(const QString& value)
{
    const bool special = value.contains(QLatin1Char(',')) || value.contains(QLatin1Char(';')) ||
                         value.contains(QLatin1Char('#'));
    return special ? QLatin1Char('"') + value + QLatin1Char('"') : value;
}

bool endsInOneOf(const QString& name, const QStringList& endings)
{
    return std::any_of(endings.begin(), endings.end(), [&name](const QString& ending) {
        return !ending.isEmpty() && name.endsWith(ending, Qt::CaseInsensitive);
    });
}

void copySamples(const QString& from, const QString& to)
{
    const QFileInfoList files = QDir(from).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& file : files) {
        const QString target = to + QLatin1Char('/') + file.fileName();
        if (!isCastName(file.fileName()) || QFileInfo::exists(target))
            continue;
        QFile source(file.absoluteFilePath());
        if (!source.copy(target)) {
            qWarning().noquote() << "The sample cast" << file.fileName()
                                 << "was not copied:" << source.errorString();
            continue;
        }
        // An installed sample may be read-only; the user's copy is for editing.
        QFile copy(target);
        copy.setPermissions(copy.permissions() | QFile::WriteOwner | QFile::ReadOwner);
    }
}

} // namespace

bool isCastName(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    return std::any_of(std::begin(kCastSuffixes), std::end(kCastSuffixes), [&](const char* known) {
        return suffix.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
    });
}

DataFolder::DataFolder(const QString& root)
    : base_(QDir::fromNativeSeparators(QDir::cleanPath(root)) + QStringLiteral("/Ardentide"))
{
}

QString DataFolder::defaultProfileFolder() const
{
    return base_ + QStringLiteral("/qrvdata/svp_abscoeff");
}

QString DataFolder::atlasFolder() const
{
    return base_ + QStringLiteral("/qrvdata/woa");
}

QString DataFolder::iniFile() const
{
    return base_ + QStringLiteral("/runcf/AbsCoeff.ini");
}

QString DataFolder::layOut(const QString& samples) const
{
    const QString profiles = defaultProfileFolder();
    const bool firstTime = !QFileInfo::exists(profiles);
    for (const QString& folder :
         {profiles, base_ + QStringLiteral("/runcf"), base_ + QStringLiteral("/tqrv")}) {
        if (!QDir().mkpath(folder))
            return QStringLiteral("The folder %1 cannot be made.").arg(folder);
    }
    if (!QFileInfo::exists(iniFile())) {
        QFile ini(iniFile());
        const QByteArray text = "[absLoc]\nInitialDir=" + iniText(profiles).toUtf8() + "\n";
        if (!ini.open(QIODevice::WriteOnly) || ini.write(text) != text.size())
            return QStringLiteral("The file %1 cannot be written: %2.")
                .arg(iniFile(), ini.errorString());
    }
    if (firstTime && !samples.isEmpty())
        copySamples(samples, profiles);
    return {};
}

QString DataFolder::profileFolder() const
{
    QFile ini(iniFile());
    if (!ini.open(QIODevice::ReadOnly))
        return defaultProfileFolder();
    QString text = QString::fromUtf8(ini.read(kLargestIni));
    text.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const QString folder = iniValue(text, QStringLiteral("absLoc"), QStringLiteral("InitialDir"));
    return folder.isEmpty() ? defaultProfileFolder() : QDir(folder).absolutePath();
}

QByteArray DataFolder::listCasts(const QStringList& endings) const
{
    const QString folder = profileFolder();
    QFileInfoList files =
        QDir(folder).entryInfoList(QDir::Files | QDir::NoSymLinks, QDir::Unsorted);
    // By code point, so that every client can look a name up without knowing our collation.
    std::sort(files.begin(), files.end(), [](const QFileInfo& left, const QFileInfo& right) {
        return left.fileName() < right.fileName();
    });
    QJsonArray casts;
    for (const QFileInfo& file : qAsConst(files)) {
        if (!isCastName(file.fileName()) && !endsInOneOf(file.fileName(), endings))
            continue;
        casts.append(QJsonObject{
            {QStringLiteral("name"), file.fileName()},
            {QStringLiteral("kind"), file.suffix().toLower()},
            {QStringLiteral("size"), file.size()},
            {QStringLiteral("modified"),
             file.lastModified().toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ssZ"))},
        });
    }
    return QJsonDocument(
               QJsonObject{{QStringLiteral("folder"), folder}, {QStringLiteral("casts"), casts}})
        .toJson(QJsonDocument::Compact);
}

} // namespace host
