#include "platform/filelock.h"
#include "platform/platform.h"
#include "tests/settings/tokenfixture.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using settings::Token;
using settings::TokenKind;
using settings::TokenStatus;
using settings::TokenStore;

namespace {

const QString readFailed = QStringLiteral("CGetToken - read failed");
const QString gaveUp = QStringLiteral("File lock failed. Giving up after 100 tries");
const QString sleepSome = QStringLiteral("File lock failed. Sleep some");

/// Three tokens of the three kinds.
const QByteArray threeTokens =
    R"({"Name":"SVP_WOA_EXTEND","Descr":"Use it","Type":1,"Value":1},)"
    R"({"Name":"DEPTH_STEP","Descr":"","Type":0,"Value":2.5},)"
    R"({"Name":"SVP_WOA_FILE_S","Descr":"Salinity file","Type":2,"Value":"C:\\woa\\größe.nc"})";

QStringList joined(const QStringList& one, const QStringList& other)
{
    return one + other;
}

const QStringList readLines{
    QStringLiteral("File lock secured"),
    QStringLiteral("Read json file"),
    QStringLiteral("CGetToken - read OK"),
};

} // namespace

TEST_F(TokenStoreTest, TheFilesLieBelowTheDataRoot)
{
#ifdef Q_OS_WIN
    EXPECT_EQ(paths.database, QStringLiteral("C:\\ProgramData\\Ardentide\\tqrv\\tqrv.db"));
    EXPECT_EQ(QDir::fromNativeSeparators(paths.mirror),
              folder.path(QStringLiteral("tqrv/QRVTokens.json")));
    EXPECT_EQ(paths.lock, QStringLiteral("c:\\temp\\token.lck"));
    EXPECT_EQ(paths.missing, QStringLiteral("c:/temp/missingtokens.txt"));
#else
    EXPECT_EQ(paths.database, folder.path(QStringLiteral("tqrv/tqrv.db")));
    EXPECT_EQ(paths.mirror, folder.path(QStringLiteral("tqrv/QRVTokens.json")));
    EXPECT_EQ(paths.lock, folder.path(QStringLiteral("temp/token.lck")));
    EXPECT_EQ(paths.missing, folder.path(QStringLiteral("temp/missingtokens.txt")));
#endif
}

TEST_F(TokenStoreTest, WithoutADataRootThereAreNoTokens)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "the places of the files are fixed on Windows, see TheFilesLieBelowTheDataRoot";
#else
    qunsetenv("ProgramData");
    const settings::TokenPaths none = settings::systemTokenPaths();
    EXPECT_TRUE(none.database.isEmpty() && none.mirror.isEmpty());
    EXPECT_TRUE(none.lock.isEmpty() && none.missing.isEmpty());
    TokenStore lost(none);
    EXPECT_FALSE(lost.initialise());
    testlog::expectWarning(readFailed);
    qint64 value = 7;
    EXPECT_EQ(lost.integerValue(QStringLiteral("A"), value), TokenStatus::Unreadable);
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(lost.addInteger(QStringLiteral("A"), QString(), 1));
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("Error creating handle to new file.")));
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("saveJson - Error creating handle to new file.")));
#endif
}

TEST_F(TokenStoreTest, ATokenIsFoundByItsName)
{
    writeMirror(mirrorText(threeTokens));
    EXPECT_TRUE(store.initialise());

    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Found);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(testlog::lines(), joined({QStringLiteral("Get token SVP_WOA_EXTEND")}, readLines));

    QString text;
    EXPECT_EQ(store.textValue(QStringLiteral("SVP_WOA_FILE_S"), text), TokenStatus::Found);
    EXPECT_EQ(text, QStringLiteral("C:\\woa\\größe.nc"));

    Token token;
    EXPECT_EQ(store.tokenValue(QStringLiteral("DEPTH_STEP"), token), 0);
    EXPECT_EQ(token.name, QStringLiteral("DEPTH_STEP"));
    EXPECT_EQ(token.kind, TokenKind::Float);
    EXPECT_EQ(token.value.toDouble(), 2.5);

    EXPECT_EQ(store.tokens().size(), 3);
    EXPECT_EQ(store.tokens().value(QStringLiteral("SVP_WOA_EXTEND")).description,
              QStringLiteral("Use it"));
    EXPECT_TRUE(waits.isEmpty());
    EXPECT_TRUE(missing().isEmpty());
    EXPECT_TRUE(QFileInfo::exists(paths.lock));
}

TEST_F(TokenStoreTest, AnUnknownTokenIsNotedOncePerLookup)
{
    writeMirror(mirrorText(threeTokens));
    qint64 number = 7;
    QString text = QStringLiteral("as before");
    Token token;
    token.name = text;
    const QString name = QStringLiteral("NO_SUCH");

    EXPECT_EQ(store.integerValue(name, number), TokenStatus::Absent);
    QStringList expected = joined({QStringLiteral("Get token NO_SUCH")}, readLines);
    expected += QStringLiteral("CGetToken - Not found");
    EXPECT_EQ(testlog::lines(), expected);
    EXPECT_EQ(store.textValue(name, text), TokenStatus::Absent);
    EXPECT_EQ(testlog::lines(), expected + expected);
    EXPECT_EQ(store.tokenValue(name, token), -1);
    EXPECT_EQ(testlog::lines().last(), QStringLiteral("get_token_value - Not found NO_SUCH"));
    EXPECT_EQ(store.tokenValue(QStringLiteral("zwölf"), token), -1);
    // Names differ by case.
    EXPECT_EQ(store.integerValue(QStringLiteral("svp_woa_extend"), number), TokenStatus::Absent);

    EXPECT_EQ(missing(), (QList<QByteArray>{
                             "getTokValueInt missing token NO_SUCH",
                             "getTokValueStr missing token NO_SUCH",
                             "get_token_value missing token NO_SUCH",
                             "get_token_value missing token zwölf",
                             "getTokValueInt missing token svp_woa_extend",
                         }));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(text, QStringLiteral("as before"));
    EXPECT_EQ(token.name, text);
}

TEST_F(TokenStoreTest, TheLogOfMissingTokensIsContinued)
{
    writeMirror(mirrorText(threeTokens));
    EXPECT_TRUE(store.initialise());
    EXPECT_TRUE(QFileInfo::exists(paths.missing));
    writeBytes(paths.missing, "earlier\n");
    EXPECT_TRUE(store.initialise());
    Token token;
    store.tokenValue(QStringLiteral("X"), token);
    EXPECT_EQ(bytesOf(paths.missing).replace("\r\n", "\n"),
              "earlier\nget_token_value missing token X\n");
}

TEST_F(TokenStoreTest, AValueIsTakenForAnotherKindOnlyWhereNothingIsLost)
{
    struct Case
    {
        const char* value; ///< with its type
        TokenStatus integerStatus;
        qint64 integer;
        TokenStatus textStatus;
        const char* text;
    };
    constexpr TokenStatus found = TokenStatus::Found;
    constexpr TokenStatus wrong = TokenStatus::WrongKind;
    constexpr Case cases[] = {
        {R"("Type":1,"Value":-12)", found, -12, found, "-12"},
        {R"("Type":1,"Value":"12")", found, 12, found, "12"},
        {R"("Type":1,"Value":9007199254740993)", found, 9007199254740993, found,
         "9007199254740993"},
        {R"("Type":1,"Value":9223372036854775807)", found, 9223372036854775807, found,
         "9223372036854775807"},
        {R"("Type":1,"Value":1e19)", wrong, 0, found, "1e+19"},
        {R"("Type":2,"Value":"9223372036854775808")", wrong, 0, found, "9223372036854775808"},
        {R"("Type":0,"Value":2.0)", found, 2, found, "2"},
        {R"("Type":0,"Value":2.5)", wrong, 0, found, "2.5"},
        {R"("Type":0,"Value":"2.0")", found, 2, found, "2.0"},
        {R"("Type":2,"Value":"")", wrong, 0, found, ""},
        {R"("Type":2,"Value":"1x")", wrong, 0, found, "1x"},
        {R"("Type":2,"Value":"nan")", wrong, 0, found, "nan"},
        {R"("Type":2,"Value":"0x10")", wrong, 0, found, "0x10"},
        {R"("Type":"other","Value":4)", found, 4, found, "4"},
        {R"("Type":1,"Value":true)", wrong, 0, wrong, ""},
        {R"("Type":1,"Value":null)", wrong, 0, wrong, ""},
        {R"("Type":1,"Value":[1])", wrong, 0, wrong, ""},
        {R"("Type":1,"Value":{"a":1})", wrong, 0, wrong, ""},
        {R"("Type":1)", wrong, 0, wrong, ""},
    };
    const QString name = QStringLiteral("A");
    for (const Case& row : cases) {
        SCOPED_TRACE(row.value);
        writeMirror(mirrorText(R"({"Name":"A",)" + QByteArray(row.value) + "}"));
        qint64 integer = 0;
        EXPECT_EQ(store.integerValue(name, integer), row.integerStatus);
        EXPECT_EQ(integer, row.integer);
        QString text;
        EXPECT_EQ(store.textValue(name, text), row.textStatus);
        EXPECT_EQ(text, QString::fromUtf8(row.text));
        Token token;
        EXPECT_EQ(store.tokenValue(name, token), row.textStatus == found ? 0 : -2);
    }
    // A token that is there is not missing.
    EXPECT_TRUE(missing().isEmpty());
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("CGetToken - Not an integer: A")));
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("CGetToken - Neither text nor number: A")));
}

TEST_F(TokenStoreTest, AMirrorThatCannotBeReadIsLeftAlone)
{
    struct Case
    {
        QByteArray mirror;
        const char* line;
    };
    const QByteArray whole = mirrorText(threeTokens);
    const QString name = QStringLiteral("SVP_WOA_EXTEND");
    const Case cases[] = {
        {"", "CGetToken - isObject is false"},
        {whole.left(whole.size() - 1), "CGetToken - isObject is false"},
        {whole.left(whole.size() / 2), "CGetToken - isObject is false"},
        {whole + "x", "CGetToken - isObject is false"},
        {"[" + whole + "]", "CGetToken - isObject is false"},
        {"null", "CGetToken - isObject is false"},
        {QByteArray(100000, '['), "CGetToken - isObject is false"},
        {QByteArray(1000, '\0'), "CGetToken - isObject is false"},
        {R"({"tokens":null})", "CGetToken - tokens is no array"},
        {R"({"tokens":{"Name":"SVP_WOA_EXTEND"}})", "CGetToken - tokens is no array"},
        {R"({"tokens":"SVP_WOA_EXTEND"})", "CGetToken - tokens is no array"},
    };
    testlog::expectWarning(readFailed);
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mirror.left(80).toStdString());
        writeMirror(row.mirror);
        const int before = testlog::lines().size();
        qint64 number = 7;
        EXPECT_EQ(store.integerValue(name, number), TokenStatus::Unreadable);
        EXPECT_EQ(number, 7);
        EXPECT_EQ(
            testlog::lines().mid(before),
            (QStringList{QStringLiteral("Get token SVP_WOA_EXTEND"),
                         QStringLiteral("File lock secured"), QStringLiteral("Read json file"),
                         QLatin1String(row.line), readFailed}));
        Token token;
        EXPECT_EQ(store.tokenValue(name, token), -1);
        EXPECT_FALSE(store.addInteger(name, QString(), 0));
        EXPECT_FALSE(store.addText(name, QString(), QStringLiteral("x")));
        EXPECT_TRUE(store.initialise());
        EXPECT_EQ(mirror(), row.mirror);
    }
    EXPECT_TRUE(missing().isEmpty());
}

TEST_F(TokenStoreTest, AMirrorThatIsTooLargeOrNoFileIsNotOpened)
{
    testlog::expectWarning(readFailed);
    QString text;
    const QByteArray whole = mirrorText(threeTokens);
    const auto lookUp = [&] { return store.textValue(QStringLiteral("SVP_WOA_FILE_S"), text); };

    EXPECT_EQ(lookUp(), TokenStatus::Unreadable); // there is none
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("Couldn't open file.")));
    EXPECT_FALSE(store.addText(QStringLiteral("A"), QString(), QString()));
    EXPECT_FALSE(QFileInfo::exists(paths.mirror));

    writeMirror(whole + QByteArray(int(platform::maxFileSize) - whole.size(), ' '));
    EXPECT_EQ(lookUp(), TokenStatus::Found);
    writeMirror(whole + QByteArray(int(platform::maxFileSize) - whole.size() + 1, ' '));
    EXPECT_EQ(lookUp(), TokenStatus::Unreadable);
    EXPECT_FALSE(store.addText(QStringLiteral("A"), QString(), QString()));
    EXPECT_EQ(QFileInfo(paths.mirror).size(), platform::maxFileSize + 1);

    QFile::remove(paths.mirror);
    EXPECT_TRUE(QDir().mkpath(paths.mirror));
    EXPECT_EQ(lookUp(), TokenStatus::Unreadable);
}

TEST_F(TokenStoreTest, NoMirrorIsMadeThatCouldNotBeRead)
{
    writeMirror(mirrorText(QByteArray()));
    const QByteArray before = mirror();
    EXPECT_FALSE(store.addText(QStringLiteral("A"), QString(),
                               QString(int(platform::maxFileSize), QLatin1Char('x'))));
    EXPECT_EQ(mirror(), before);
    EXPECT_TRUE(testlog::hasLine(QStringLiteral("saveJson - more than a mirror can hold")));
}

TEST_F(TokenStoreTest, ElementsThatAreNoTokensHarmNoOthers)
{
    const QByteArray odd = R"(7,null,"x",[1],{},{"Name":5,"Value":1},)";
    writeMirror(mirrorText(odd + threeTokens));
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Found);
    EXPECT_EQ(store.tokens().size(), 3);
    EXPECT_TRUE(store.addInteger(QStringLiteral("NEW"), QString(), 3));
    const QJsonArray kept =
        QJsonDocument::fromJson(mirror()).object().value(QStringLiteral("tokens")).toArray();
    EXPECT_EQ(kept.size(), 10);
    EXPECT_EQ(kept.at(2).toString(), QStringLiteral("x"));
}

TEST_F(TokenStoreTest, AnEmptyListIsReadAndHoldsNothing)
{
    writeMirror(mirrorText(QByteArray()));
    QString text;
    EXPECT_EQ(store.textValue(QStringLiteral("A"), text), TokenStatus::Absent);
    EXPECT_EQ(testlog::lines(),
              (QStringList{QStringLiteral("Get token A"), QStringLiteral("File lock secured"),
                           QStringLiteral("Read json file"), QStringLiteral("token size is 0"),
                           QStringLiteral("CGetToken - read OK"),
                           QStringLiteral("CGetToken - Not found")}));
    EXPECT_TRUE(store.addText(QStringLiteral("A"), QString(), QStringLiteral("x")));
    EXPECT_EQ(store.textValue(QStringLiteral("A"), text), TokenStatus::Found);
}

TEST_F(TokenStoreTest, WhatIsNoLongerInTheMirrorIsForgotten)
{
    writeMirror(mirrorText(threeTokens));
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Found);
    writeMirror(mirrorText(R"({"Name":"B","Type":1,"Value":2})"));
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Absent);
    EXPECT_EQ(store.tokens().size(), 1);
}

TEST_F(TokenStoreTest, AHeldLockIsTriedAHundredTimes)
{
    writeMirror(mirrorText(threeTokens));
    const QByteArray before = mirror();
    QDir().mkpath(QFileInfo(paths.lock).path());
    TokenProcess other({QStringLiteral("hold"), paths.lock});
    ASSERT_TRUE(other.waitUntilReady());
    testlog::expectWarning(gaveUp);
    testlog::expectWarning(readFailed);

    qint64 number = 7;
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number),
              TokenStatus::Unreadable);
    EXPECT_EQ(waits, QVector<int>(100, 100));
    QStringList expected{QStringLiteral("Get token SVP_WOA_EXTEND")};
    for (int i = 0; i < 100; ++i)
        expected += sleepSome;
    EXPECT_EQ(testlog::lines(), joined(expected, {gaveUp, readFailed}));

    EXPECT_FALSE(store.addInteger(QStringLiteral("SVP_WOA_EXTEND"), QString(), 0));
    EXPECT_EQ(waits.size(), 200);
    EXPECT_EQ(testlog::lines().count(QStringLiteral("saveJson - ") + sleepSome), 100);
    EXPECT_EQ(testlog::lines().count(QStringLiteral("saveJson - ") + gaveUp), 1);
    EXPECT_EQ(mirror(), before);
    EXPECT_TRUE(missing().isEmpty());

    EXPECT_TRUE(other.finish());
    EXPECT_EQ(store.integerValue(QStringLiteral("SVP_WOA_EXTEND"), number), TokenStatus::Found);
    EXPECT_EQ(waits.size(), 200);
}

TEST_F(TokenStoreTest, ALockThatIsGivenBackInTimeIsTaken)
{
    writeMirror(mirrorText(threeTokens));
    QDir().mkpath(QFileInfo(paths.lock).path());
    platform::FileLock held;
    ASSERT_TRUE(held.open(paths.lock) && held.tryLock());
    // Gone before the hundredth try.
    int rounds = 0;
    TokenStore patient(paths, [&](int) {
        if (++rounds == 99)
            held.close();
    });
    QString text;
    EXPECT_EQ(patient.textValue(QStringLiteral("SVP_WOA_FILE_S"), text), TokenStatus::Found);
    EXPECT_EQ(rounds, 99);
    EXPECT_EQ(testlog::lines().count(sleepSome), 99);
}

TEST_F(TokenStoreTest, TheLockIsGivenBackOnEveryPath)
{
    testlog::expectWarning(readFailed);
    const auto isFree = [this] {
        platform::FileLock lock;
        return lock.open(paths.lock) && lock.tryLock();
    };
    QString text;
    store.textValue(QStringLiteral("A"), text); // no mirror
    EXPECT_TRUE(isFree());
    writeMirror("[]");
    store.textValue(QStringLiteral("A"), text);
    EXPECT_TRUE(isFree());
    store.addText(QStringLiteral("A"), QString(), QString());
    EXPECT_TRUE(isFree());
    writeMirror(mirrorText(threeTokens));
    store.textValue(QStringLiteral("A"), text);
    EXPECT_TRUE(isFree());
    store.addText(QStringLiteral("A"), QString(), QString());
    EXPECT_TRUE(isFree());
}
