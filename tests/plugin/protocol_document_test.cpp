#include "tests/places.h"
#include "tests/support/enginefixture.h"
#include "tests/support/udpport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <gtest/gtest.h>

#include <cmath>

// The examples of docs/protocol.md, sent to the engine in their order.

namespace {

struct Example
{
    QString request;
    QByteArray answer; ///< JSON
};

QList<QByteArray> protocolLines()
{
    return bytesOf(QStringLiteral(SVP_DOCS_DIR "/protocol.md")).split('\n');
}

// Each block that holds a whole request, with the block of JSON that follows it.
QVector<Example> examples()
{
    QVector<Example> found;
    QByteArray block;
    bool isInside = false;
    const QList<QByteArray> lines = protocolLines();
    for (const QByteArray& line : lines) {
        if (!line.startsWith("```")) {
            block += line + '\n';
            continue;
        }
        isInside = !isInside;
        if (isInside) {
            block.clear();
        } else if (block.startsWith("page,ACTION=") && !block.contains("<action>")) {
            found.append({QString::fromUtf8(block.trimmed()), {}});
        } else if (block.startsWith('{') && !found.isEmpty() &&
                   found.constLast().answer.isEmpty()) {
            found.last().answer = block;
        }
    }
    return found;
}

// Numbers that are computed may differ in their last digit.
bool areEqual(const QJsonValue& left, const QJsonValue& right)
{
    if (left.isDouble() && right.isDouble())
        return std::abs(left.toDouble() - right.toDouble()) <= 1e-9 * std::abs(left.toDouble());
    if (left.isArray() && right.isArray()) {
        const QJsonArray a = left.toArray();
        const QJsonArray b = right.toArray();
        bool equal = a.size() == b.size();
        for (int i = 0; equal && i < a.size(); ++i)
            equal = areEqual(a.at(i), b.at(i));
        return equal;
    }
    return left == right;
}

} // namespace

TEST(ProtocolDocument, EveryExampleIsAnsweredAsItSays)
{
    testlog::expectWarning(QStringLiteral("No tokens in database"));
    QUdpSocket surveySystem; // that no other test's receiver gets what is sent
    ASSERT_TRUE(bindPatiently(surveySystem, 14002));
    Engine engine;
    engine.folder.writeProfile(QStringLiteral("x.asvp"),
                               "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 sample NA 2 "
                               ")\r\n0.1 1500.25\r\n10 1499\r\n");
    engine.folder.writeProfile(QStringLiteral("deep.txt"),
                               "// comment\r\n500.0 1498.5\r\n12000.0 1602\r\n");
    const QVector<Example> documented = examples();
    ASSERT_GT(documented.size(), 15);
    for (const Example& example : documented) {
        SCOPED_TRACE(example.request.toStdString());
        engine.message(example.request);
        const QVector<QJsonObject> packets = engine.packets();
        ASSERT_FALSE(packets.isEmpty());
        const QJsonObject& answer = packets.at(0);
        const QByteArray here =
            QByteArray(example.answer)
                .replace("/data/Ardentide/", engine.folder.path(QString()).toUtf8());
        const QJsonObject documentedAnswer = QJsonDocument::fromJson(here).object();
        EXPECT_FALSE(documentedAnswer.isEmpty()) << "no answer is documented";
        EXPECT_EQ(answer.keys(), documentedAnswer.keys());
        for (auto field = documentedAnswer.begin(); field != documentedAnswer.end(); ++field) {
            EXPECT_TRUE(areEqual(field.value(), answer.value(field.key())))
                << field.key().toStdString() << ": "
                << QJsonDocument(answer).toJson().toStdString();
        }
    }
}

TEST(ProtocolDocument, EveryActionHasAnExample)
{
    // The actions are the first column of the table of messages.
    QSet<QString> listed;
    const QList<QByteArray> lines = protocolLines();
    const int head = lines.indexOf("| action | answers as | served |");
    ASSERT_GE(head, 0);
    for (int i = head + 2; i < lines.size() && lines.at(i).startsWith('|'); ++i) {
        const QStringList names = QString::fromUtf8(lines.at(i).split('|').at(1))
                                      .remove(QLatin1Char('`'))
                                      .split(QLatin1Char(','));
        for (const QString& name : names)
            listed.insert(name.trimmed());
    }
    EXPECT_EQ(listed.size(), 20);
    QSet<QString> shown;
    const QVector<Example> documented = examples();
    for (const Example& example : documented)
        shown.insert(example.request.section(QLatin1Char('/'), 1).section(QLatin1Char(','), 0, 0));
    EXPECT_EQ(listed, shown);
}
