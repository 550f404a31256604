#include "platform/filelock.h"
#include "settings/tokenstore_database.h"
#include "tests/settings/tokenfixture.h"
#include "tests/support/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <cmath>
#ifndef Q_OS_WIN
#include <sys/inotify.h>
#include <unistd.h>
#endif

using settings::DatabaseRead;
using settings::Token;
using settings::TokenKind;
using settings::TokenMap;
using settings::TokenStatus;
using settings::TokenStore;

namespace {

const QString noTokens = QStringLiteral("No tokens in database");

const QStringList tables{
    QStringLiteral("create table token_value (value_id integer, token text, "
                   "description_id integer)"),
    QStringLiteral("create table float_values (id integer primary key, value real)"),
    QStringLiteral("create table integer_values (id integer primary key, value integer)"),
    QStringLiteral("create table varchar_values (id integer primary key, value varchar(200))"),
    QStringLiteral("create table descriptions (id integer primary key, description text)"),
    QStringLiteral("create table descriptions_language (id integer, language integer, "
                   "description_id integer)"),
};

/// Three tokens of three kinds; the descriptions of two in two languages, that of one in the
/// second only.
const QStringList rows{
    QStringLiteral("insert into float_values values (1, 2.25)"),
    QStringLiteral("insert into integer_values values (2, -7)"),
    QStringLiteral("insert into varchar_values values (3, 'C:\\woa\\größe.nc')"),
    QStringLiteral("insert into token_value values (1, 'DEPTH_STEP', 11), (2, 'OFFSET', 12), "
                   "(3, 'SVP_WOA_FILE_S', 13)"),
    QStringLiteral("insert into descriptions_language values (11, 2, 102), (11, 1, 101), "
                   "(12, 1, 103), (13, 2, 104)"),
    QStringLiteral("insert into descriptions values (101, 'Step of depths'), "
                   "(102, 'Schrittweite'), (103, 'Offset'), (104, 'Salzgehalt'), "
                   "(1, 'wrong'), (11, 'wrong'), (12, 'wrong')"),
};

/// Makes a database with these statements, on a connection of its own.
void makeDatabase(const QString& path, const QStringList& statements)
{
    QDir().mkpath(QFileInfo(path).path());
    const QString name = QStringLiteral("making");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        ASSERT_TRUE(database.open());
        // A test's database need not survive a power cut.
        QSqlQuery(database).exec(QStringLiteral("pragma synchronous=off"));
        for (const QString& statement : statements) {
            QSqlQuery query(database);
            EXPECT_TRUE(query.exec(statement)) << qPrintable(query.lastError().text());
        }
    }
    QSqlDatabase::removeDatabase(name);
}

#ifdef Q_OS_WIN

/// Tells whether the database was opened. Windows tells no program of that: it is made one that
/// nobody can read, which is logged.
class OpenCounter
{
  public:
    explicit OpenCounter(const QString& path) { writeBytes(path, "no database"); }

    static bool sawAny()
    {
        return !testlog::lines().filter(QStringLiteral("not a database")).isEmpty();
    }
};

#else

/// Tells whether a file was opened, by whomever.
class OpenCounter
{
  public:
    explicit OpenCounter(const QString& path)
    {
        m_watch = inotify_add_watch(m_queue, QFile::encodeName(path).constData(), IN_OPEN);
        EXPECT_GE(m_watch, 0);
    }
    ~OpenCounter() { ::close(m_queue); }
    Q_DISABLE_COPY(OpenCounter)

    bool sawAny() const
    {
        alignas(inotify_event) char events[4096];
        return ::read(m_queue, events, sizeof events) > 0;
    }

  private:
    int m_queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    int m_watch = -1;
};

#endif

} // namespace

TEST_F(TokenStoreTest, WithoutAMirrorTheDatabaseIsLoadedAndMirrored)
{
    makeDatabase(paths.database, tables + rows);
    EXPECT_TRUE(store.initialise());
    EXPECT_EQ(testlog::lines(), (QStringList{QStringLiteral("Init tokens. Empty list"),
                                             QStringLiteral("saveJson - File lock secured")}));
    const TokenMap loaded = store.tokens();
    EXPECT_EQ(loaded.keys(), (QStringList{QStringLiteral("DEPTH_STEP"), QStringLiteral("OFFSET"),
                                          QStringLiteral("SVP_WOA_FILE_S")}));
    Token token;
    EXPECT_EQ(store.tokenValue(QStringLiteral("DEPTH_STEP"), token), 0);
    EXPECT_EQ(token.kind, TokenKind::Float);
    EXPECT_EQ(token.value, QJsonValue(2.25));
    EXPECT_EQ(token.description, QStringLiteral("Step of depths"));
    EXPECT_EQ(store.tokenValue(QStringLiteral("OFFSET"), token), 0);
    EXPECT_EQ(token.kind, TokenKind::Integer);
    EXPECT_EQ(token.value, QJsonValue(-7));
    EXPECT_EQ(token.description, QStringLiteral("Offset"));
    EXPECT_EQ(store.tokenValue(QStringLiteral("SVP_WOA_FILE_S"), token), 0);
    EXPECT_EQ(token.kind, TokenKind::Text);
    EXPECT_EQ(token.value, QJsonValue(QStringLiteral("C:\\woa\\größe.nc")));
    EXPECT_EQ(token.description, QString()); // in the other language only
    EXPECT_TRUE(QSqlDatabase::connectionNames().isEmpty());
}

TEST_F(TokenStoreTest, WithAMirrorTheDatabaseIsNotOpened)
{
    makeDatabase(paths.database, tables + rows);
    writeMirror(mirrorText(R"({"Name":"A","Type":1,"Value":1})"));
    const OpenCounter opened(paths.database);
    EXPECT_TRUE(store.initialise());
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("OFFSET"), number), TokenStatus::Absent);
    EXPECT_TRUE(store.addInteger(QStringLiteral("OFFSET"), QString(), 1));
    // Not even for a mirror that cannot be read.
    writeMirror("x");
    EXPECT_TRUE(store.initialise());
    EXPECT_FALSE(opened.sawAny());
    EXPECT_FALSE(testlog::hasLine(QStringLiteral("Init tokens. Empty list")));

    QFile::remove(paths.mirror);
#ifdef Q_OS_WIN
    testlog::expectWarning(QStringLiteral("No tokens in database"));
#endif
    TokenStore other(paths);
    other.initialise();
    EXPECT_TRUE(opened.sawAny());
}

TEST_F(TokenStoreTest, WhatIsInMemoryIsMirroredAgain)
{
    writeMirror(mirrorText(R"({"Name":"A","Type":1,"Value":1})"));
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("A"), number), TokenStatus::Found);
    QFile::remove(paths.mirror);
    EXPECT_TRUE(store.initialise());
    EXPECT_FALSE(testlog::hasLine(QStringLiteral("Init tokens. Empty list")));
    EXPECT_EQ(store.integerValue(QStringLiteral("A"), number), TokenStatus::Found);
}

TEST_F(TokenStoreTest, WithoutADatabaseTheMirrorBeginsEmpty)
{
    testlog::expectWarning(noTokens);
    EXPECT_TRUE(store.initialise());
    EXPECT_EQ(testlog::lines().count(noTokens), 1);
    EXPECT_FALSE(QFile::exists(paths.database)); // none is made
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("A"), number), TokenStatus::Absent);
    EXPECT_TRUE(store.addInteger(QStringLiteral("A"), QString(), 1));
    EXPECT_EQ(store.integerValue(QStringLiteral("A"), number), TokenStatus::Found);
}

TEST_F(TokenStoreTest, ADatabaseWithoutTokensIsSaid)
{
    makeDatabase(paths.database, tables);
    testlog::expectWarning(noTokens);
    EXPECT_TRUE(store.initialise());
    EXPECT_EQ(mirror().isEmpty(), false);
}

TEST_F(TokenStoreTest, ADatabaseThatCannotBeReadIsNotReplacedByAnEmptyMirror)
{
    testlog::expectWarning(noTokens);
    const auto refused = [this] {
        EXPECT_FALSE(store.initialise());
        EXPECT_TRUE(store.tokens().isEmpty());
        EXPECT_FALSE(store.addInteger(QStringLiteral("A"), QString(), 1));
        EXPECT_FALSE(QFile::exists(paths.mirror));
        EXPECT_TRUE(QSqlDatabase::connectionNames().isEmpty());
    };
    writeBytes(paths.database, "this is no database, but a text that is long enough for one");
    refused();
    QFile::remove(paths.database);
    QDir().mkpath(paths.database);
    refused();
    QDir().rmdir(paths.database);
    // Cut off in the middle.
    makeDatabase(paths.database, tables + rows);
    const QByteArray whole = bytesOf(paths.database);
    for (const int size : {100, 4096, 8192, whole.size() - 4096}) {
        SCOPED_TRACE(size);
        writeBytes(paths.database, whole.left(size));
        refused();
    }
    writeBytes(paths.database, whole);
    EXPECT_TRUE(store.initialise());
    EXPECT_EQ(store.tokens().size(), 3);
}

TEST_F(TokenStoreTest, ATableThatIsMissingHoldsNothing)
{
    // No texts, no descriptions.
    makeDatabase(paths.database, tables.mid(0, 3) + rows.mid(0, 2) + rows.mid(3, 1));
    EXPECT_TRUE(store.initialise());
    EXPECT_FALSE(store.tokens().isEmpty());
    for (const settings::Token& token : store.tokens())
        EXPECT_EQ(token.description, QString());
}

TEST_F(TokenStoreTest, ADatabaseWithoutTablesHasNoTokens)
{
    writeBytes(paths.database, QByteArray());
    testlog::expectWarning(noTokens);
    EXPECT_TRUE(store.initialise());
    EXPECT_TRUE(store.tokens().isEmpty());
    EXPECT_EQ(bytesOf(paths.database), QByteArray());
    EXPECT_TRUE(store.addInteger(QStringLiteral("A"), QString(), 1));
}

TEST_F(TokenStoreTest, ADatabaseMayHaveAnyNameAndALongOne)
{
    QString deep = folder.path(QStringLiteral("Süd 測深"));
    for (int i = 0; i < 8; ++i)
        deep += QLatin1Char('/') + QString(40, QLatin1Char(char('a' + i)));
    for (const QString& place : {folder.path(QStringLiteral("Daten für Süd & 測深 Ω")), deep}) {
        makeDatabase(paths.database, tables + rows);
        const QString path = place + QStringLiteral("/größe 測.sqlite");
        QDir().mkpath(place);
        ASSERT_TRUE(QFile::rename(paths.database, path)) << qPrintable(place);
        TokenMap tokens;
        QString error;
        EXPECT_EQ(settings::readTokenDatabase(path, tokens, error), DatabaseRead::Whole)
            << qPrintable(place + QLatin1Char(' ') + error);
        EXPECT_EQ(tokens.size(), 3);
    }
}

TEST_F(TokenStoreTest, AMirrorThatAppearsWhileTheDatabaseIsReadStays)
{
    makeDatabase(paths.database, tables + rows);
    QDir().mkpath(QFileInfo(paths.lock).path());
    platform::FileLock held;
    ASSERT_TRUE(held.open(paths.lock) && held.tryLock());
    const QByteArray others = mirrorText(R"({"Name":"A","Type":1,"Value":1})");
    TokenStore slow(paths, [&](int) {
        writeMirror(others);
        held.close();
    });
    EXPECT_TRUE(slow.initialise());
    EXPECT_EQ(mirror(), others);
    qint64 number = 0;
    EXPECT_EQ(slow.integerValue(QStringLiteral("A"), number), TokenStatus::Found);
}

TEST_F(TokenStoreTest, ALockedMirrorIsMadeLater)
{
    makeDatabase(paths.database, tables + rows);
    QDir().mkpath(QFileInfo(paths.lock).path());
    testlog::expectWarning(
        QStringLiteral("saveJson - File lock failed. Giving up after 100 tries"));
    {
        TokenProcess other({QStringLiteral("hold"), paths.lock});
        ASSERT_TRUE(other.waitUntilReady());
        EXPECT_FALSE(store.initialise());
        EXPECT_EQ(waits, QVector<int>(100, 100));
        EXPECT_FALSE(QFile::exists(paths.mirror));
    }
    EXPECT_TRUE(store.initialise());
    QString text;
    EXPECT_EQ(store.textValue(QStringLiteral("SVP_WOA_FILE_S"), text), TokenStatus::Found);
}

TEST_F(TokenStoreTest, TheHostsOwnDefaultConnectionIsLeftAlone)
{
    makeDatabase(paths.database, tables + rows);
    {
        QSqlDatabase host = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        host.setDatabaseName(QStringLiteral(":memory:"));
        ASSERT_TRUE(host.open());
        QSqlQuery(host).exec(QStringLiteral("create table mine (a integer)"));
        EXPECT_TRUE(store.initialise());
        EXPECT_EQ(store.tokens().size(), 3);
        EXPECT_EQ(QSqlDatabase::connectionNames(),
                  QStringList{QLatin1String(QSqlDatabase::defaultConnection)});
        EXPECT_TRUE(host.isOpen());
        EXPECT_EQ(host.tables(), QStringList{QStringLiteral("mine")});
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

TEST_F(TokenStoreTest, AnyNameInTheDatabaseIsSafe)
{
    makeDatabase(
        paths.database,
        tables +
            QStringList{
                QStringLiteral("insert into integer_values values (1, 1), (2, 2), (3, 3), (4, 4)"),
                QStringLiteral("insert into token_value values (1, 'O''BRIEN', 1), "
                               "(2, '''; DROP TABLE DESCRIPTIONS; --', 2), (3, 'A\"B', 3), "
                               "(4, 'Lower', 4)"),
                QStringLiteral("insert into descriptions_language values (1, 1, 1), (2, 1, 2), "
                               "(3, 1, 3), (4, 1, 4)"),
                QStringLiteral("insert into descriptions values (1, 'it''s'), (2, 'none'), "
                               "(3, 'say \"x\"'), (4, 'never found')"),
            });
    EXPECT_TRUE(store.initialise());
    const auto described = [this](const char* name) {
        return store.tokens().value(QLatin1String(name)).description;
    };
    EXPECT_EQ(described("O'BRIEN"), QStringLiteral("it's"));
    EXPECT_EQ(described("'; DROP TABLE DESCRIPTIONS; --"), QStringLiteral("none"));
    EXPECT_EQ(described("A\"B"), QStringLiteral("say \"x\""));
    // Descriptions are looked up by the name in upper case.
    EXPECT_EQ(described("Lower"), QString());
    EXPECT_TRUE(store.tokens().contains(QStringLiteral("Lower")));
    qint64 number = 0;
    EXPECT_EQ(store.integerValue(QStringLiteral("O'BRIEN"), number), TokenStatus::Found);
}

TEST_F(TokenStoreTest, OddValuesInTheDatabase)
{
    makeDatabase(
        paths.database,
        tables + QStringList{
                     QStringLiteral("insert into float_values values (1, 9e999), (2, 'high'), "
                                    "(3, null), (4, 5), (9, 1.5)"),
                     QStringLiteral("insert into integer_values values (5, 'many'), "
                                    "(6, 9223372036854775807), (7, 2.5), (9, 8)"),
                     QStringLiteral("insert into varchar_values values (8, 12)"),
                     QStringLiteral("insert into token_value select id, 'F' || id, null from "
                                    "float_values where id < 9"),
                     QStringLiteral("insert into token_value select id, 'I' || id, 77 from "
                                    "integer_values where id < 9"),
                     QStringLiteral("insert into token_value values (8, 'T8', 1), (9, 'BOTH', 1), "
                                    "(99, 'NO_VALUE', 1), (4, null, 1)"),
                 });
    TokenMap tokens;
    QString error;
    ASSERT_EQ(settings::readTokenDatabase(paths.database, tokens, error), DatabaseRead::Whole);
    EXPECT_EQ(error, QString());
    const auto value = [&tokens](const char* name) {
        return tokens.value(QLatin1String(name)).value;
    };
    EXPECT_EQ(value("F1"), QJsonValue(QStringLiteral("inf")));
    EXPECT_EQ(value("F2"), QJsonValue(QStringLiteral("high")));
    EXPECT_EQ(value("F3"), QJsonValue(QString()));
    EXPECT_EQ(value("F4").toDouble(), 5.0);
    EXPECT_EQ(value("I5"), QJsonValue(QStringLiteral("many")));
    EXPECT_EQ(value("I6").toVariant().toLongLong(), 9223372036854775807);
    EXPECT_EQ(value("I7"), QJsonValue(2.5));
    EXPECT_EQ(value("T8"), QJsonValue(QStringLiteral("12")));
    // In two tables: the later one counts.
    EXPECT_EQ(value("BOTH"), QJsonValue(8));
    EXPECT_EQ(tokens.value(QStringLiteral("BOTH")).kind, TokenKind::Integer);
    EXPECT_FALSE(tokens.contains(QStringLiteral("NO_VALUE")));
}

TEST_F(TokenStoreTest, ADatabaseThatAnotherProgramHasOpenIsRead)
{
    makeDatabase(paths.database, QStringList{QStringLiteral("pragma journal_mode=wal")} + tables);
    {
        QSqlDatabase writer =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("writer"));
        writer.setDatabaseName(paths.database);
        ASSERT_TRUE(writer.open());
        for (const QString& statement : rows)
            QSqlQuery(writer).exec(statement);
        EXPECT_TRUE(store.initialise());
        EXPECT_EQ(store.tokens().size(), 3);
        // As after a crash of that program: what it wrote last is in a file beside the database.
        const QString left = folder.path(QStringLiteral("left/tqrv.db"));
        const QString log = QStringLiteral("-wal");
        writeBytes(left, bytesOf(paths.database));
        writeBytes(left + log, bytesOf(paths.database + log));
        ASSERT_FALSE(bytesOf(left + log).isEmpty());
        TokenMap tokens;
        QString error;
        EXPECT_EQ(settings::readTokenDatabase(left, tokens, error), DatabaseRead::Whole);
        EXPECT_EQ(tokens.size(), 3);
        // Putting it in order is that program's business.
        EXPECT_EQ(bytesOf(left), bytesOf(paths.database));
        EXPECT_EQ(bytesOf(left + log), bytesOf(paths.database + log));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("writer"));
}

TEST_F(TokenStoreTest, ADatabaseWithMoreThanAMirrorHoldsIsRefused)
{
    // Few bytes in the file, many in its rows.
    makeDatabase(paths.database,
                 QStringList{QStringLiteral("create view token_value as with recursive n(i) as "
                                            "(select 1 union all select i + 1 from n limit 1100) "
                                            "select 1 as value_id, hex(zeroblob(16000)) as token, "
                                            "1 as description_id from n")} +
                     tables.mid(1) +
                     QStringList{QStringLiteral("insert into float_values values (1, 1)")});
    TokenMap tokens;
    QString error;
    EXPECT_EQ(settings::readTokenDatabase(paths.database, tokens, error), DatabaseRead::Unreadable);
    EXPECT_EQ(error, QStringLiteral("more tokens than a mirror can hold"));
    EXPECT_TRUE(tokens.isEmpty());
}
