#include "host/options.h"

#include "platform/process.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <boost/asio/ip/address.hpp>

namespace host {

namespace {

using Outcome = ParsedOptions::Outcome;

/// An advanced option that replaces one of the limits: a time in ms, or a count.
struct LimitOption
{
    const char* name;
    Limits::Time Limits::*time;
    std::size_t Limits::*count;
};

constexpr LimitOption kLimitOptions[] = {
    {"max-connections", nullptr, &Limits::connections},
    {"atlas-file-bytes", nullptr, &Limits::atlasFileBytes},
    {"uploads", nullptr, &Limits::uploads},
    {"page-queue-bytes", nullptr, &Limits::pageQueueBytes},
    {"header-timeout-ms", &Limits::headerTimeout, nullptr},
    {"body-timeout-ms", &Limits::bodyTimeout, nullptr},
    {"idle-timeout-ms", &Limits::idleTimeout, nullptr},
    {"handshake-timeout-ms", &Limits::handshakeTimeout, nullptr},
    {"ping-interval-ms", &Limits::pingInterval, nullptr},
    {"silence-timeout-ms", &Limits::silenceTimeout, nullptr},
    {"plugin-timeout-ms", &Limits::pluginTimeout, nullptr},
    {"stop-timeout-ms", &Limits::stopTimeout, nullptr},
};

/// Where the program is installed, its parts lie beside it, or in the system's folders for them.
QString installedPart(const QString& beside, const QString& inSystem)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    for (const QString& part : {beside, inSystem}) {
        QString path = QDir::cleanPath(folder.filePath(part));
        if (QFileInfo::exists(path))
            return path;
    }
    return {};
}

QString installedPlugin()
{
    const QString name = platform::moduleFileName(QStringLiteral("svpwebinterface"));
    return installedPart(name, QStringLiteral("../lib/svp-editor/") + name);
}

QString installedWeb()
{
    return installedPart(QStringLiteral("web"), QStringLiteral("../share/svp-editor/web"));
}

ParsedOptions refuse(const QString& text)
{
    return {Outcome::Refuse, text.simplified(), {}};
}

/// Takes "address:port" apart, with IPv6 addresses in brackets. Names other than localhost are
/// refused: what a name resolves to is not the user's decision, and this one matters.
bool parseListen(const QString& text, Options& options)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon < 1)
        return false;
    QString address = text.left(colon);
    const bool bracketed =
        address.startsWith(QLatin1Char('[')) && address.endsWith(QLatin1Char(']'));
    if (bracketed)
        address = address.mid(1, address.size() - 2);
    if (address == QLatin1String("localhost"))
        address = QStringLiteral("127.0.0.1");

    boost::system::error_code error;
    const auto parsed = boost::asio::ip::make_address(address.toStdString(), error);
    if (error || parsed.is_v6() != bracketed)
        return false;

    bool isNumber = false;
    options.listenPort = text.midRef(colon + 1).toUShort(&isNumber);
    options.listenAddress = QString::fromStdString(parsed.to_string());
    return isNumber;
}

/// Empty, or what is wrong with the value of a limit.
QString applyLimit(const LimitOption& option, const QString& value, Limits& limits)
{
    bool isNumber = false;
    const uint number = value.toUInt(&isNumber);
    if (!isNumber || number == 0)
        return QStringLiteral("--%1 takes a whole number above 0, not \"%2\".")
            .arg(QLatin1String(option.name), value);
    if (option.time != nullptr)
        limits.*option.time = Limits::Time(number);
    else
        limits.*option.count = number;
    return {};
}

} // namespace

ParsedOptions parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Serves the page of SVP Editor and its engine to browsers."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption plugin(QStringLiteral("plugin"),
                                    QStringLiteral("The engine's plug-in; needed where it is not "
                                                   "installed with this program."),
                                    QStringLiteral("file"), installedPlugin());
    const QCommandLineOption data(
        QStringLiteral("data"),
        QStringLiteral("Folder of settings and profiles, made where missing; needed where the "
                       "environment variable ProgramData names none."),
        QStringLiteral("folder"), qEnvironmentVariable("ProgramData"));
    const QCommandLineOption web(QStringLiteral("web"),
                                 QStringLiteral("Folder of the page's files; needed where they are "
                                                "not installed with this program."),
                                 QStringLiteral("folder"), installedWeb());
    const QCommandLineOption samples(
        QStringLiteral("samples"),
        QStringLiteral("Sample casts to copy when the profile folder is first made."),
        QStringLiteral("folder"));
    const QCommandLineOption listen(
        QStringLiteral("listen"),
        QStringLiteral("Where to listen; port 0 takes any free port. Other addresses than the "
                       "loopback one open the engine to the network."),
        QStringLiteral("address:port"), QStringLiteral("127.0.0.1:8080"));
    const QCommandLineOption hostName(
        QStringLiteral("host-name"),
        QStringLiteral("A further name under which browsers may call; may be repeated."),
        QStringLiteral("name"));
    parser.addOptions({plugin, data, web, samples, listen, hostName});
    for (const LimitOption& limit : kLimitOptions) {
        QCommandLineOption option(QLatin1String(limit.name), QString(), QStringLiteral("number"));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }

    if (!parser.parse(arguments))
        return refuse(parser.errorText());
    if (parser.isSet(help))
        return {Outcome::Show, parser.helpText(), {}};
    if (parser.isSet(version))
        return {Outcome::Show, QStringLiteral("svp-host " SVP_VERSION "\n"), {}};
    if (!parser.positionalArguments().isEmpty())
        return refuse(QStringLiteral("Unexpected argument \"%1\".")
                          .arg(parser.positionalArguments().constFirst()));
    for (const QCommandLineOption* option : {&plugin, &data, &web}) {
        if (parser.value(*option).isEmpty())
            return refuse(
                QStringLiteral("--%1 is missing; see --help.").arg(option->names().constFirst()));
    }

    ParsedOptions parsed;
    Options& options = parsed.options;
    options.pluginFile = QFileInfo(parser.value(plugin)).absoluteFilePath();
    options.dataFolder = QFileInfo(parser.value(data)).absoluteFilePath();
    options.webFolder = QFileInfo(parser.value(web)).absoluteFilePath();
    if (!QFileInfo(options.webFolder).isDir())
        return refuse(QStringLiteral("--web: there is no folder %1.").arg(options.webFolder));
    if (parser.isSet(samples)) {
        options.samplesFolder = QFileInfo(parser.value(samples)).absoluteFilePath();
        if (!QFileInfo(options.samplesFolder).isDir())
            return refuse(
                QStringLiteral("--samples: there is no folder %1.").arg(options.samplesFolder));
    }
    if (!parseListen(parser.value(listen), options))
        return refuse(QStringLiteral("--listen takes a numeric address and a port, such as "
                                     "127.0.0.1:8080 or [::1]:8080, not \"%1\".")
                          .arg(parser.value(listen)));
    options.hostNames = parser.values(hostName);
    for (const LimitOption& limit : kLimitOptions) {
        const QString name = QLatin1String(limit.name);
        if (!parser.isSet(name))
            continue;
        const QString complaint = applyLimit(limit, parser.value(name), options.limits);
        if (!complaint.isEmpty())
            return refuse(complaint);
    }
    parsed.outcome = Outcome::Run;
    return parsed;
}

} // namespace host
