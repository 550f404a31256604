#include "convert/convertprobe.h"
#include "platform/process.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace {

enum ExitCode : int
{
    allConverted = 0,
    someFailed = 1,
    wrongUsage = 2,
};

void print(std::FILE* stream, const QString& text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

int refuse(const QString& reason)
{
    print(stderr, QStringLiteral("svp-convert: %1\nUsage: svp-convert IN... [--to DIR]\n")
                      .arg(reason.simplified()));
    return wrongUsage;
}

} // namespace

int main(int argc, char** argv)
{
    platform::useUtf8();
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Converts probe files (Sea-Bird .cnv, EDF, CALC, SvPlus and others) to .asvp profiles and "
        "says per file what it read, or why it could not. Exit code 0: all converted, 1: some "
        "failed, 2: wrong usage."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption to(
        QStringLiteral("to"),
        QStringLiteral("Folder for the profiles, made where missing (default: beside each input)."),
        QStringLiteral("DIR"));
    parser.addOption(to);
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Probe files."),
                                 QStringLiteral("IN..."));
    if (!parser.parse(QCoreApplication::arguments()))
        return refuse(parser.errorText());
    if (parser.isSet(help)) {
        print(stdout, parser.helpText());
        return allConverted;
    }
    const QStringList inputs = platform::expandedPatterns(parser.positionalArguments());
    const QString folder = parser.value(to);
    if (inputs.isEmpty())
        return refuse(QStringLiteral("no file to convert"));
    if (parser.isSet(to) && folder.isEmpty())
        return refuse(QStringLiteral("--to needs a folder"));
    if (const QFileInfo file(folder); parser.isSet(to) && file.exists() && !file.isDir())
        return refuse(QStringLiteral("%1 is no folder").arg(folder));

    convert::Converter converter(inputs, folder);
    int result = allConverted;
    for (const QString& input : inputs) {
        const convert::Outcome outcome = converter.convert(input);
        print(stdout, outcome.line + QLatin1Char('\n'));
        if (!outcome.isConverted)
            result = someFailed;
    }
    return result;
}
