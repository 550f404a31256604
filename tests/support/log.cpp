#include "tests/support/log.h"

#include "platform/platform.h"

#include <QtGlobal>
#include <gtest/gtest.h>

#include <cstdio>

namespace testlog {

namespace {

struct Announced
{
    QString text;
    bool came;
};

QStringList logLines;
QStringList traceTexts;
QStringList unexpected;
QVector<Announced> announced;

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // The engine logs whole requests: kept at their length, those of megabytes fill the memory.
    constexpr int keptLength = 4096;
    logLines.append(text.left(keptLength));
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    bool isKnown = false;
    for (Announced& warning : announced) {
        if (text.contains(warning.text)) {
            warning.came = true;
            isKnown = true;
        }
    }
    if (!isKnown)
        unexpected.append(text);
    if (type == QtFatalMsg)
        std::fprintf(stderr, "fatal: %s\n", qPrintable(text));
}

class Listener : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override
    {
        logLines.clear();
        traceTexts.clear();
        unexpected.clear();
        announced.clear();
    }
    void OnTestEnd(const testing::TestInfo&) override
    {
        for (const QString& text : qAsConst(unexpected))
            ADD_FAILURE() << "unexpected warning: " << qPrintable(text);
        for (const Announced& warning : qAsConst(announced))
            EXPECT_TRUE(warning.came)
                << "announced warning did not come: " << qPrintable(warning.text);
    }
};

} // namespace

void install()
{
    qInstallMessageHandler(handleMessage);
    platform::setDebugSink(
        [](const std::string& text) { traceTexts.append(QString::fromStdString(text)); });
    testing::UnitTest::GetInstance()->listeners().Append(new Listener);
}

void expectWarning(const QString& text)
{
    announced.append({text, false});
}

const QStringList& lines()
{
    return logLines;
}

const QStringList& traces()
{
    return traceTexts;
}

bool hasLine(const QString& text)
{
    return logLines.contains(text);
}

} // namespace testlog
