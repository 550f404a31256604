#include "tests/settings/tokenfixture.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#ifdef Q_OS_WIN
#include "tests/support/heldfile.h"
#endif

using settings::TokenStatus;
using settings::TokenStore;

namespace {

/// The elements of a mirror by their names.
QMap<QString, QJsonObject> elementsOf(const QByteArray& mirror)
{
    QMap<QString, QJsonObject> elements;
    const QJsonArray tokens =
        QJsonDocument::fromJson(mirror).object().value(QStringLiteral("tokens")).toArray();
    for (const QJsonValue& token : tokens)
        elements.insert(token.toObject().value(QStringLiteral("Name")).toString(),
                        token.toObject());
    return elements;
}

} // namespace

TEST_F(TokenStoreTest, AddedTokensStandInTheMirror)
{
    writeMirror(mirrorText(QByteArray()));
    const QDateTime before = QDateTime::currentDateTimeUtc();
    EXPECT_TRUE(store.addInteger(QStringLiteral("SVP_WOA_EXTEND"),
                                 QStringLiteral("Use WOA for svp extentions"), 0));
    EXPECT_EQ(testlog::lines(),
              (QStringList{QStringLiteral("Add token SVP_WOA_EXTEND"),
                           QStringLiteral("saveJson - File lock secured"),
                           QStringLiteral("Read json file"), QStringLiteral("token size is 0"),
                           QStringLiteral("CGetToken - read OK")}));
    EXPECT_TRUE(store.addText(QStringLiteral("SVP_WOA_FILE_S"),
                              QStringLiteral("WOA database Salinity file"), QString()));

    const QJsonObject object = QJsonDocument::fromJson(mirror()).object();
    EXPECT_EQ(object.keys(), (QStringList{QStringLiteral("lastsave"), QStringLiteral("tokens"),
                                          QStringLiteral("version")}));
    EXPECT_EQ(object.value(QStringLiteral("version")), QJsonValue(1));
    const QDateTime saved = QDateTime::fromString(
        object.value(QStringLiteral("lastsave")).toString() + QLatin1Char('Z'),
        QStringLiteral("yyyyMMdd_hhmmsst"));
    ASSERT_TRUE(saved.isValid());
    EXPECT_LE(qAbs(before.secsTo(saved)), 60);

    const QMap<QString, QJsonObject> elements = elementsOf(mirror());
    EXPECT_EQ(elements.value(QStringLiteral("SVP_WOA_EXTEND")),
              (QJsonObject{{QStringLiteral("Name"), QStringLiteral("SVP_WOA_EXTEND")},
                           {QStringLiteral("Descr"), QStringLiteral("Use WOA for svp extentions")},
                           {QStringLiteral("Type"), 1},
                           {QStringLiteral("Value"), 0}}));
    EXPECT_EQ(elements.value(QStringLiteral("SVP_WOA_FILE_S")),
              (QJsonObject{{QStringLiteral("Name"), QStringLiteral("SVP_WOA_FILE_S")},
                           {QStringLiteral("Descr"), QStringLiteral("WOA database Salinity file")},
                           {QStringLiteral("Type"), 2},
                           {QStringLiteral("Value"), QString()}}));
    EXPECT_EQ(elements.size(), 2);
    EXPECT_EQ(store.tokens().size(), 2);

    TokenStore other(paths);
    qint64 number = 7;
    EXPECT_EQ(other.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Found);
    EXPECT_EQ(number, 0);
}

TEST_F(TokenStoreTest, ATokenIsReplacedOrKept)
{
    writeMirror(mirrorText(R"({"Name":"A","Descr":"old","Type":1,"Value":1,"Unit":"m"})"));
    const QByteArray before = mirror();
    const QString name = QStringLiteral("A");
    EXPECT_TRUE(store.addInteger(name, QStringLiteral("new"), 0, TokenStore::Existing::Kept));
    EXPECT_EQ(mirror(), before);
    EXPECT_EQ(store.tokens().value(name).value, QJsonValue(1));

    EXPECT_TRUE(store.addText(name, QStringLiteral("new"), QStringLiteral("x")));
    EXPECT_EQ(elementsOf(mirror()).value(name),
              (QJsonObject{{QStringLiteral("Name"), name},
                           {QStringLiteral("Descr"), QStringLiteral("new")},
                           {QStringLiteral("Type"), 2},
                           {QStringLiteral("Value"), QStringLiteral("x")},
                           {QStringLiteral("Unit"), QStringLiteral("m")}}));
}

TEST_F(TokenStoreTest, WhatOthersWroteStays)
{
    writeMirror(R"({"version":"2.1","owner":"another program","tokens":[)"
                R"({"Name":"BIG","Type":1,"Value":9007199254740993},)"
                R"({"Name":"SMALL","Type":1,"Value":-9007199254740993},)"
                R"({"Name":"FITS","Type":1,"Value":9007199254740992},)"
                R"({"Name":"FINE","Type":0,"Value":0.1},)"
                R"({"Name":"TWICE","Type":1,"Value":1},{"Name":"TWICE","Type":1,"Value":2}]})");
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("TWICE"), number), TokenStatus::Found);
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(store.addInteger(QStringLiteral("A"), QString(), 5));
    EXPECT_TRUE(store.addInteger(QStringLiteral("TWICE"), QString(), 3));
    const QByteArray text = mirror();
    EXPECT_TRUE(text.contains("\"9007199254740993\""));
    EXPECT_TRUE(text.contains("\"-9007199254740993\""));
    EXPECT_TRUE(text.contains(" 9007199254740992\n"));
    EXPECT_TRUE(text.contains(" 0.1\n"));
    EXPECT_EQ(store.integerValue(QStringLiteral("BIG"), number), TokenStatus::Found);
    EXPECT_EQ(number, 9007199254740993);
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    EXPECT_EQ(object.value(QStringLiteral("version")).toString(), QStringLiteral("2.1"));
    EXPECT_EQ(object.value(QStringLiteral("owner")).toString(), QStringLiteral("another program"));
    const QJsonArray tokens = object.value(QStringLiteral("tokens")).toArray();
    EXPECT_EQ(tokens.size(), 7);
    EXPECT_EQ(tokens.at(4).toObject().value(QStringLiteral("Value")), QJsonValue(3));
    EXPECT_EQ(tokens.at(5).toObject().value(QStringLiteral("Value")), QJsonValue(3));
}

TEST_F(TokenStoreTest, AnyNameAndDescriptionIsKeptToTheLetter)
{
    writeMirror(mirrorText(QByteArray()));
    const QStringList names{
        QStringLiteral("O'Brien"),     QStringLiteral("\"quoted\""),
        QStringLiteral("back\\slash"), QStringLiteral("'; drop table"),
        QStringLiteral("größe 測 😀"),  QString(),
        QStringLiteral("a\nb\t%s%n"),
    };
    for (const QString& name : names)
        EXPECT_TRUE(store.addText(name, name + QLatin1Char('!'), name + QLatin1Char('?')));
    for (const QString& name : names) {
        QString value;
        EXPECT_EQ(store.textValue(name, value), TokenStatus::Found);
        EXPECT_EQ(value, name + QLatin1Char('?'));
        EXPECT_EQ(store.tokens().value(name).description, name + QLatin1Char('!'));
    }
    EXPECT_EQ(store.tokens().size(), names.size());
}

TEST_F(TokenStoreTest, AMirrorThatCannotBeReplacedStays)
{
    // A name of the greatest length leaves no room for that of the temporary file beside it.
    paths.mirror = folder.path(QStringLiteral("tqrv/")) + QString(255, QLatin1Char('m'));
    const QByteArray before = mirrorText(R"({"Name":"A","Type":1,"Value":1})");
    writeMirror(before);
    TokenStore narrow(paths);
    EXPECT_FALSE(narrow.addInteger(QStringLiteral("B"), QString(), 2));
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("Couldn't open save file.")));
    EXPECT_EQ(mirror(), before);
    EXPECT_FALSE(narrow.tokens().contains(QStringLiteral("B")));
}

#ifdef Q_OS_WIN
TEST_F(TokenStoreTest, AMirrorThatIsHeldStaysAndCanBeRead)
{
    writeMirror(mirrorText(R"({"Name":"A","Type":1,"Value":1})"));
    const QByteArray before = mirror();
    {
        const HeldFile held(paths.mirror);
        ASSERT_TRUE(held.isHeld());
        EXPECT_FALSE(store.addInteger(QStringLiteral("B"), QString(), 2));
        EXPECT_TRUE(testlog::hasLine(QStringLiteral("Couldn't open save file.")));
        EXPECT_EQ(mirror(), before);
        EXPECT_EQ(QDir(QFileInfo(paths.mirror).path()).entryList(QDir::Files).size(), 1);
        qint64 number = 0;
        EXPECT_EQ(store.integerValue(QStringLiteral("A"), number), TokenStatus::Found);
        EXPECT_EQ(number, 1);
    }
    EXPECT_TRUE(store.addInteger(QStringLiteral("B"), QString(), 2));
    EXPECT_NE(mirror(), before);
}
#endif

TEST_F(TokenStoreTest, ALinkToTheMirrorIsFollowed)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Windows lets only administrators make links";
#else
    const QString real = folder.path(QStringLiteral("elsewhere/mirror.json"));
    writeBytes(real, mirrorText(R"({"Name":"A","Type":1,"Value":1})"));
    QDir().mkpath(QFileInfo(paths.mirror).path());
    ASSERT_TRUE(QFile::link(real, paths.mirror));
    EXPECT_TRUE(store.addInteger(QStringLiteral("B"), QString(), 2));
    EXPECT_EQ(elementsOf(bytesOf(real)).size(), 2);
    EXPECT_TRUE(QFileInfo(paths.mirror).isSymLink());
#endif
}

TEST_F(TokenStoreTest, TwoProcessesThatAddAtOnceLoseNothing)
{
    writeMirror(mirrorText(R"({"Name":"SEED","Descr":"","Type":2,"Value":"s"})"));
    constexpr int count = 40;
    const auto words = [this](const char* prefix) {
        return QStringList{QStringLiteral("add"), paths.mirror, paths.lock, QLatin1String(prefix),
                           QString::number(count)};
    };
    TokenProcess one(words("ONE_"));
    TokenProcess other(words("TWO_"));
    ASSERT_TRUE(one.waitUntilReady() && other.waitUntilReady());
    one.go();
    other.go();
    EXPECT_TRUE(one.finish());
    EXPECT_TRUE(other.finish());

    const QMap<QString, QJsonObject> elements = elementsOf(mirror());
    EXPECT_EQ(elements.size(), 2 * count + 1);
    for (int i = 0; i < count; ++i) {
        for (const char* prefix : {"ONE_", "TWO_"}) {
            const QString name = QLatin1String(prefix) + QString::number(i);
            EXPECT_EQ(elements.value(name).value(QStringLiteral("Value")), QJsonValue(i)) << i;
        }
    }
    EXPECT_TRUE(elements.contains(QStringLiteral("SEED")));
    EXPECT_EQ(QDir(QFileInfo(paths.mirror).path()).entryList(QDir::Files),
              QStringList{QStringLiteral("QRVTokens.json")});
}
