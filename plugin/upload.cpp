#include "plugin/upload.h"

#include "plugin/csvp_webinterface.h"
#include "profile/textfile.h"

#include <QDebug>

#include <algorithm>

namespace {

const char statusOk[] =
    "HTTP/1.0 200 Ok\r\nContent-Type: text/html; charset=\"ISO-8859-1\"\r\n\r\n";
const char statusError[] = "HTTP/1.0 500 Internal Server Error\r\n"
                           "Content-Type: text/html; charset=\"ISO-8859-1\"\r\n\r\n";

} // namespace

QByteArray textBetween(const QByteArray& haystack, const QByteArray& start, const QByteArray& end)
{
    const int found = start.isEmpty() ? 0 : haystack.indexOf(start);
    if (found < 0)
        return {};
    const int from = found + start.size();
    const int to = end.isEmpty() ? -1 : haystack.indexOf(end, from);
    return haystack.mid(from, to < 0 ? -1 : to - from);
}

QByteArray extractUpload(const QByteArray& request, QString& fileName)
{
    const QByteArray blankLine = "\r\n\r\n";
    const QByteArray header = textBetween(request, "", blankLine);
    const QByteArray body = textBetween(request, blankLine, "");
    const QByteArray delimiter = "--" + textBetween(header, "boundary=", "\r\n");
    if (body.size() != textBetween(header, "Content-Length:", "\r\n").trimmed().toInt()) {
        qDebug() << "failed on body size";
        return {};
    }
    const QByteArray name = textBetween(body, "filename=\"", "\"");
    fileName = profile::decodedText({name.constData(), std::size_t(name.size())});
    return textBetween(textBetween(request, delimiter, ""), blankLine, "\r\n" + delimiter);
}

QString lastElement(const QString& name)
{
    return name.mid(
        std::max(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char('\\'))) + 1);
}

void CSVP_WebInterface::requestPost(int connection, const QByteArray& request)
{
    bool isOpen = false;
    try {
        QString fileName;
        const QByteArray content = extractUpload(request, fileName);
        isOpen = handleOpenSVP(fileName, content);
    } catch (const std::exception& error) {
        qDebug() << "CSVP_WebInterface::requestPost - WARNING -" << error.what();
        postErrorText = QStringLiteral("Memory allocation error");
    }
    const QString response =
        isOpen ? QString::fromLatin1(statusOk) : QString::fromLatin1(statusError) + postErrorText;
    Q_EMIT sendPostResponse(connection, response.toLocal8Bit());
}
