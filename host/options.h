#pragma once

#include "host/limits.h"

#include <QString>
#include <QStringList>

namespace host {

/// What the command line asks for, checked. Paths are absolute.
struct Options
{
    QString pluginFile;
    QString dataFolder;
    QString webFolder;
    QString samplesFolder; ///< empty: no sample casts

    QString listenAddress = QStringLiteral("127.0.0.1"); ///< numeric, IPv6 without brackets
    quint16 listenPort = 8080;                           ///< 0: any free port
    QStringList hostNames; ///< further names under which browsers may call the host

    Limits limits;
};

/// What came out of reading a command line.
struct ParsedOptions
{
    enum class Outcome
    {
        Run,
        Show,
        Refuse
    };

    Outcome outcome = Outcome::Refuse;
    QString text; ///< what to show (help, version), or one line that says what is wrong
    Options options;
};

/// Reads the arguments (the first one is the program's name). Asks the file system only whether
/// the named files and folders are there. What is not named is looked for where the program is
/// installed; the data folder is that of the environment variable ProgramData.
ParsedOptions parseOptions(const QStringList& arguments);

} // namespace host
