#include "profile/profilefolder.h"

#include "platform/platform.h"
#include "profile/textfile.h"
#include "settings/cdatafile.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

namespace profile {

namespace {

// The folder that the configuration names, empty if none. Other programs write backslashes into
// that file, which other readers of it take for escapes: they are turned into slashes in the
// file too, and nothing else in it is touched.
QString configuredFolder()
{
    const QString path = configurationPath();
    QByteArray content;
    if (path.isEmpty() || !platform::readFile(path, content))
        return {};
    if (content.contains('\\')) {
        content.replace('\\', '/');
        QString error;
        if (!platform::replaceFile(path, content, &error))
            qDebug().noquote() << "SVP Editor - WARNING - could not rewrite" << path << error;
    }
    CDataFile configuration;
    configuration.LoadText({content.constData(), std::size_t(content.size())});
    QString folder = decodedText(configuration.FetchValue("InitialDir", "absLoc"));
    const QLatin1Char quote('"');
    if (folder.size() >= 2 && folder.startsWith(quote) && folder.endsWith(quote))
        folder = folder.mid(1).chopped(1);
    return folder;
}

ProfileFolder folderOr(const QString& configured, const QString& windowsDefault)
{
    const QString root = platform::dataRoot();
    const QString path =
        configured.isEmpty() ? platform::defaultProfileFolder(windowsDefault) : configured;
    const bool isBelowRoot =
        !root.isEmpty() && QDir(path).absolutePath().startsWith(
                               QDir(root).absolutePath() + QLatin1Char('/'), platform::pathCase());
    return {path, configured.isEmpty() || isBelowRoot};
}

} // namespace

ProfileFolder::ProfileFolder(const QString& path, bool isOwn)
    : m_path(path.isEmpty() ? QString() : QDir(path).absolutePath()), m_isOwn(isOwn)
{
}

QString ProfileFolder::pathOf(const QString& name) const
{
    QString relative = name;
    relative.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const bool hasDrive = relative.size() > 1 && relative[1] == QLatin1Char(':');
    if (m_path.isEmpty() || relative.isEmpty() || relative.contains(QChar(0)) || hasDrive ||
        relative.startsWith(QLatin1Char('/')) || relative.endsWith(QLatin1Char('/')))
        return {};
    const QString clean = QDir::cleanPath(relative);
    if (clean == QLatin1String("..") || clean.startsWith(QLatin1String("../")) ||
        clean == QLatin1String(".") || !platform::isFileName(clean))
        return {};
    return m_path + QLatin1Char('/') + clean;
}

void ProfileFolder::makeFolderOf(const QString& path) const
{
    if (m_isOwn && !path.isEmpty())
        platform::makeFolder(QFileInfo(path).path());
}

ProfileFolder openedProfileFolder()
{
    const QString configured = configuredFolder();
    if (configured.isEmpty())
        qWarning().noquote() << "Failed to read" << configurationPath();
    return folderOr(configured, QStringLiteral("C:/ProgramData/Ardentide/qrvdata/svp_abscoeff"));
}

ProfileFolder savedProfileFolder()
{
    return folderOr(configuredFolder(), QStringLiteral("C:/qrvdata/svp_abscoeff"));
}

ProfileFolder dataProfileFolder()
{
    const QString root = platform::dataRoot();
    return {root.isEmpty() ? QString()
                           : platform::nativePath(root + QStringLiteral("qrvdata\\svp_abscoeff")),
            true};
}

QString configurationPath()
{
    const QString root = platform::dataRoot();
    return root.isEmpty() ? QString()
                          : platform::nativePath(root + QStringLiteral("runcf/AbsCoeff.ini"));
}

} // namespace profile
