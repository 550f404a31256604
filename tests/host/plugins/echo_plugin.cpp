#include "echo_plugin.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <QTimer>
#include <QtDebug>

#include <cstdio>
#include <stdexcept>

namespace {

QByteArray indented(const QJsonObject& object)
{
    return QJsonDocument(object).toJson();
}

} // namespace

QStringList EchoPlugin::getRegisterWebSocket()
{
    return {QStringLiteral("SVP_WebInterface"), QStringLiteral("Echo_Second")};
}

QStringList EchoPlugin::getRegisterPost()
{
    return {QStringLiteral("SVP_WebInterface")};
}

void EchoPlugin::echo(int connection, const QString& name, const QString& data)
{
    emit sendWSPacket(name, indented({{QStringLiteral("whoami"), QStringLiteral("echo")},
                                      {QStringLiteral("connection"), connection},
                                      {QStringLiteral("data"), data}}));
}

void EchoPlugin::requestWebSocket(int connection, QString name, QString data)
{
    const QString command = data.section(QLatin1Char(','), 0, 0);
    const int number = data.section(QLatin1Char(','), 1, 1).toInt();
    const QString rest = data.section(QLatin1Char(','), 2);
    if (command == QLatin1String("slow")) {
        QThread::msleep(static_cast<unsigned long>(number));
        echo(connection, name, rest);
    } else if (command == QLatin1String("hold")) {
        echo(connection, name, QStringLiteral("begun"));
        QThread::msleep(static_cast<unsigned long>(number));
    } else if (command == QLatin1String("later")) {
        QTimer::singleShot(number, this, [=] { echo(connection, name, rest); });
    } else if (command == QLatin1String("flood")) {
        const QString filling(rest.toInt(), QLatin1Char('x'));
        for (int i = 0; i < number; ++i)
            echo(i, name, filling);
    } else if (command == QLatin1String("log")) {
        qDebug().noquote() << "first line\n" + QString(number, QLatin1Char('y'));
        echo(connection, name, command);
    } else if (command == QLatin1String("garbage")) {
        emit sendWSPacket(name, "{\"whoami\": oops");
    } else if (command == QLatin1String("throw")) {
        throw std::runtime_error("thrown on demand");
    } else if (command == QLatin1String("about")) {
        char number15[16];
        std::snprintf(number15, sizeof(number15), "%.1f", 1.5);
        const bool onMainThread = thread() == QThread::currentThread() &&
                                  thread() == QCoreApplication::instance()->thread();
        emit sendWSPacket(
            name, indented({{QStringLiteral("programData"), qEnvironmentVariable("ProgramData")},
                            {QStringLiteral("number"), QLatin1String(number15)},
                            {QStringLiteral("onMainThread"), onMainThread}}));
    } else {
        echo(connection, name, data);
    }
}

void EchoPlugin::requestPost(int connection, const QByteArray& request)
{
    const QByteArray line = request.left(request.indexOf("\r\n"));
    const QByteArray response =
        "HTTP/1.0 200 Ok\r\nContent-Type: application/octet-stream\r\n\r\n" + request;
    if (line.contains("throw"))
        throw std::runtime_error("thrown on demand");
    if (line.contains("silent"))
        return;
    if (line.contains("later")) {
        QTimer::singleShot(200, this, [=] { emit sendPostResponse(connection, response); });
        return;
    }
    emit sendPostResponse(connection, response);
    if (line.contains("twice"))
        emit sendPostResponse(connection, "HTTP/1.0 500 Twice\r\n\r\n");
}
