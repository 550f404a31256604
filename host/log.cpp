#include "host/log.h"

#include <QDateTime>
#include <QString>
#include <QtGlobal>

#include <cstdio>

namespace host {

namespace {

const char* levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "error";
    case QtFatalMsg:
        return "fatal";
    }
    return "?";
}

void writeLine(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    Q_UNUSED(context)
    QString text = message.left(kLogLineLength);
    for (QChar& character : text) {
        if (character < QLatin1Char(' ') || character == QChar(0x7f))
            character = QLatin1Char(' ');
    }
    if (message.size() > kLogLineLength)
        text += QStringLiteral(" … (%1 characters)").arg(message.size());

    QByteArray line = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1();
    line += ' ';
    line += levelName(type);
    line += ' ';
    line += text.toUtf8();
    line += '\n';
    // One call per line: the I/O thread logs as well, and stdio locks per call.
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

} // namespace

void logToStderr()
{
    qInstallMessageHandler(writeLine);
}

} // namespace host
