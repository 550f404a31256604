#include "host/atlas_settings.h"

#include "platform/platform.h"
#include "settings/tokenstore.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <algorithm>
#include <memory>

namespace host {

namespace {

/// The store tries a hundred times, so a lock that is held costs half a second.
constexpr unsigned long kLockPauseMs = 5;
constexpr int kLockTries = 100;

/// Longer than any path that a system takes.
constexpr int kLongestPath = 4096;
constexpr int kLongestName = 200;
/// As large as the engine reads.
constexpr qint64 kLargestFile = 2LL * 1024 * 1024 * 1024;
constexpr int kMostStored = 200;

struct Setting
{
    const char* token;
    const char* description; ///< as the engine describes it when it adds it
};
constexpr Setting kUse{"SVP_WOA_EXTEND", "Use WOA for svp extentions"};
constexpr Setting kSalinity{"SVP_WOA_FILE_S", "WOA database Salinity file"};
constexpr Setting kTemperature{"SVP_WOA_FILE_T", "WOA database Temperature file"};

/// A token store that does not wait for long, and knows whether it has waited in vain.
class Tokens
{
  public:
    settings::TokenStore& store() { return store_; }

    AtlasAnswer failure(const QString& what) const
    {
        const QString why =
            waits_ >= kLockTries
                ? QStringLiteral("another program is using the survey system's settings. Try again "
                                 "in a moment.")
                : QStringLiteral("the survey system's settings cannot be read and written. Look "
                                 "whether the folder tqrv of the data folder may be.");
        return {503U, (what + QLatin1Char(' ') + why).toUtf8()};
    }

  private:
    int waits_ = 0;
    settings::TokenStore store_{settings::systemTokenPaths(), [this](int) {
                                    ++waits_;
                                    QThread::msleep(kLockPauseMs);
                                }};
};

QString name(const Setting& setting)
{
    return QString::fromLatin1(setting.token);
}

QString description(const Setting& setting)
{
    return QString::fromLatin1(setting.description);
}

QString textOf(const settings::TokenMap& tokens, const Setting& setting)
{
    return settings::textOf(tokens.value(name(setting))).value_or(QString());
}

bool isControl(QChar character)
{
    return character.unicode() < ' ' || character.unicode() == 0x7F;
}

bool isPath(const QJsonValue& value)
{
    const QString text = value.toString();
    return value.isString() && text.size() <= kLongestPath &&
           std::none_of(text.begin(), text.end(), isControl);
}

QJsonObject describedFile(const QString& path)
{
    const QFileInfo file(path);
    const bool isThere = !path.isEmpty() && file.isFile();
    return {{QStringLiteral("path"), path},
            {QStringLiteral("there"), isThere},
            {QStringLiteral("size"), isThere ? file.size() : 0},
            {QStringLiteral("fault"), path.isEmpty() ? QString() : atlasFileFault(path)}};
}

bool isDepth(const QByteArray& field)
{
    bool isNumber = false;
    return field.trimmed().toDouble(&isNumber) >= 0.0 && isNumber;
}

} // namespace

AtlasAnswer AtlasSettings::read() const
{
    Tokens tokens;
    const QString cannot = QStringLiteral("The atlas settings cannot be shown:");
    settings::TokenStore& store = tokens.store();
    if (!store.initialise())
        return tokens.failure(cannot);
    qint64 use = 0;
    if (store.integerValue(name(kUse), use) == settings::TokenStatus::Unreadable)
        return tokens.failure(cannot);
    // Of the same reading, so that the three belong together.
    const settings::TokenMap& all = store.tokens();
    return {200U, described(use != 0, textOf(all, kSalinity), textOf(all, kTemperature))};
}

AtlasAnswer AtlasSettings::write(const QByteArray& json) const
{
    const QJsonObject wanted = QJsonDocument::fromJson(json).object();
    const QJsonValue use = wanted.value(QStringLiteral("use"));
    const QJsonValue salinity = wanted.value(QStringLiteral("salinity"));
    const QJsonValue temperature = wanted.value(QStringLiteral("temperature"));
    if (!use.isBool() || !isPath(salinity) || !isPath(temperature))
        return {400U, "The settings need \"use\", true or false, and the paths \"salinity\" and "
                      "\"temperature\"."};

    Tokens tokens;
    settings::TokenStore& store = tokens.store();
    const auto addUse = [&] {
        return store.addInteger(name(kUse), description(kUse), use.toBool() ? 1 : 0);
    };
    const auto addFile = [&store](const Setting& setting, const QJsonValue& path) {
        return store.addText(name(setting), description(setting), path.toString());
    };
    // Where it fails half way, the atlas must not be on with files that nobody has chosen for it.
    const bool isWritten = store.initialise() && (use.toBool() || addUse()) &&
                           addFile(kSalinity, salinity) && addFile(kTemperature, temperature) &&
                           (!use.toBool() || addUse());
    if (!isWritten)
        return tokens.failure(QStringLiteral("The atlas settings were not stored:"));
    return {200U, described(use.toBool(), salinity.toString(), temperature.toString())};
}

QByteArray AtlasSettings::described(bool use, const QString& salinity,
                                    const QString& temperature) const
{
    QJsonArray stored;
    const QFileInfoList files =
        QDir(folder_).entryInfoList(QDir::Files, QDir::Name).mid(0, kMostStored);
    for (const QFileInfo& file : files)
        stored.append(QJsonObject{{QStringLiteral("name"), file.fileName()},
                                  {QStringLiteral("size"), file.size()}});
    return QJsonDocument(QJsonObject{{QStringLiteral("use"), use},
                                     {QStringLiteral("salinity"), describedFile(salinity)},
                                     {QStringLiteral("temperature"), describedFile(temperature)},
                                     {QStringLiteral("folder"), folder_},
                                     {QStringLiteral("stored"), stored}})
        .toJson(QJsonDocument::Compact);
}

QString atlasFileFault(const QString& path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return QStringLiteral("There is no file %1.").arg(path);
    if (!file.isFile())
        return QStringLiteral("%1 is no file.").arg(path);
    if (file.size() > kLargestFile)
        return QStringLiteral("%1 is too large; at most 2 GiB are read.").arg(path);
    struct CloseStream
    {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    const std::unique_ptr<std::FILE, CloseStream> stream(platform::openStream(path, "rb"));
    if (!stream)
        return QStringLiteral("%1 cannot be read.").arg(path);
    QByteArray beginning(kAtlasBeginning, Qt::Uninitialized);
    beginning.truncate(
        int(std::fread(beginning.data(), 1, std::size_t(kAtlasBeginning), stream.get())));
    return atlasTextFault(beginning, path);
}

QString atlasTextFault(const QByteArray& beginning, const QString& title)
{
    const int second = beginning.indexOf('\n') + 1;
    const int end = beginning.indexOf('\n', second);
    const QByteArray levels = beginning.mid(second, end - second);
    const int colon = levels.indexOf(':');
    if (second > 0 && end >= 0 && colon >= 0 &&
        isDepth(levels.mid(colon + 1).split(',').constFirst()))
        return {};
    return QStringLiteral("%1 does not look like a file of the atlas: its second line should name "
                          "the depths of the levels behind a colon.")
        .arg(title);
}

bool isAtlasFileName(const QString& name)
{
    static const QString reserved = QStringLiteral("/\\:*?\"<>|");
    const auto isRefused = [](QChar character) {
        return isControl(character) || reserved.contains(character);
    };
    // A dot at the front hides a file, and one at the end, or a blank, gets lost on Windows.
    return !name.isEmpty() && name.toUtf8().size() <= kLongestName &&
           !name.startsWith(QLatin1Char('.')) && !name.endsWith(QLatin1Char('.')) &&
           name.trimmed() == name && !platform::isDeviceName(name) &&
           std::none_of(name.begin(), name.end(), isRefused);
}

} // namespace host
