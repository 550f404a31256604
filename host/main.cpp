#include "host/data_folder.h"
#include "host/log.h"
#include "host/options.h"
#include "host/plugin_gateway.h"
#include "host/server.h"
#include "platform/process.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <clocale>
#include <cstdio>

namespace {

enum ExitCode : int
{
    kExitDone = 0,
    kExitArguments = 1,
    kExitPlugin = 2,
    kExitPort = 3,
};

int fail(ExitCode code, const QString& reason)
{
    std::fprintf(stderr, "svp-host: %s\n", reason.simplified().toUtf8().constData());
    platform::holdConsole();
    return code;
}

void say(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    platform::useUtf8();
    platform::useBareOutput();
    QCoreApplication app(argc, argv);
    // Qt has adopted the user's locale, in which numbers may have a comma.
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setApplicationName(QStringLiteral("svp-host"));
    host::logToStderr();

    const host::ParsedOptions parsed = host::parseOptions(QCoreApplication::arguments());
    if (parsed.outcome == host::ParsedOptions::Outcome::Refuse)
        return fail(kExitArguments, parsed.text);
    if (parsed.outcome == host::ParsedOptions::Outcome::Show) {
        say(parsed.text);
        return kExitDone;
    }
    const host::Options& options = parsed.options;

    // The gateway before the server: what the server's queues still hold refers to it.
    host::PluginGateway plugin;
    host::Server server(options, plugin, [&app] {
        QMetaObject::invokeMethod(
            &app, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    });

    // The port before the data folder and the plug-in, so that a host that is started twice by
    // mistake touches nothing that the first one works with.
    QString problem = server.listen();
    if (!problem.isEmpty())
        return fail(kExitPort, problem);
    problem = host::DataFolder(options.dataFolder).layOut(options.samplesFolder);
    if (!problem.isEmpty())
        return fail(kExitArguments, problem);
    platform::setEnvironment("ProgramData", options.dataFolder);
    problem = plugin.load(options.pluginFile);
    if (!problem.isEmpty())
        return fail(kExitPlugin, problem);

    const QString url = server.url();
    server.start();
    say(url + QLatin1Char('\n'));
    QCoreApplication::exec();
    server.finish();
    return kExitDone;
}
