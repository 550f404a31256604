#include "settings/tokenstore_database.h"

#include "platform/platform.h"

#include <QFileInfo>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <cmath>

namespace settings {

namespace {

constexpr int language = 1;

struct TokenTable
{
    const char* name;
    const char* statement;
    TokenKind kind;
};

// A name that is in two tables has the kind and the value of the later one.
constexpr TokenTable tokenTables[] = {
    {"float_values",
     "select value_id, token, float_values.value from token_value "
     "inner join float_values on token_value.value_id = float_values.id",
     TokenKind::Float},
    {"integer_values",
     "select value_id, token, integer_values.value from token_value "
     "inner join integer_values on token_value.value_id = integer_values.id",
     TokenKind::Integer},
    {"varchar_values",
     "select value_id, token, varchar_values.value from token_value "
     "inner join varchar_values on token_value.value_id = varchar_values.id",
     TokenKind::Text},
};

/// A connection to a SQLite file that is closed and forgotten with the object. Queries must be
/// gone by then.
class Connection
{
  public:
    explicit Connection(const QString& path)
    {
        const QString usual = QLatin1String(QSqlDatabase::defaultConnection);
        // A second connection of that name would throw the host's own out.
        m_name = QSqlDatabase::contains(usual) ? QStringLiteral("svp-editor-tokens") : usual;
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        m_database.setDatabaseName(path);
        m_database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    }
    ~Connection()
    {
        m_database.close();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    Q_DISABLE_COPY(Connection)

    QSqlDatabase& database() { return m_database; }

  private:
    QString m_name;
    QSqlDatabase m_database;
};

QJsonValue valueOf(const QVariant& cell, TokenKind kind)
{
    if (cell.isNull())
        return QString();
    // SQLite keeps what it was given, whatever its column declares.
    bool isNumber = false;
    if (kind != TokenKind::Text && cell.type() != QVariant::Double) {
        const qint64 whole = cell.toLongLong(&isNumber);
        if (isNumber)
            return whole;
    }
    if (kind != TokenKind::Text) {
        const double number = cell.toDouble(&isNumber);
        // JSON has no number for an infinity; the text says what it is.
        if (isNumber && std::isfinite(number))
            return number;
    }
    return cell.toString();
}

/// Bounds what is taken from a database: more than a mirror can hold is of no use.
class Allowance
{
  public:
    /// Whether another entry with so many letters is still within the bound.
    bool take(qint64 letters)
    {
        constexpr qint64 leastEntry = 16; // rows without a letter cost as well
        m_left -= letters + leastEntry;
        return m_left >= 0;
    }
    static QString exceeded() { return QStringLiteral("more tokens than a mirror can hold"); }

  private:
    qint64 m_left = platform::maxFileSize;
};

/// The descriptions of tokens: from the token's name over the description's number in our language
/// to its text. Read once, each table in one pass.
class Descriptions
{
  public:
    /// False when there is more than the allowance; a table that cannot be read has no rows.
    bool read(const QSqlDatabase& database, Allowance& allowance)
    {
        return readPairs(database, QStringLiteral("select token, description_id from token_value"),
                         allowance, m_ofToken) &&
               readPairs(database,
                         QStringLiteral("select id, description_id from descriptions_language "
                                        "where language='%1'")
                             .arg(language),
                         allowance, m_ofLanguage) &&
               readPairs(database, QStringLiteral("select id, description from descriptions"),
                         allowance, m_text);
    }

    /// The description of a token, whose name the database has in upper case; empty where it has
    /// none.
    QString of(const QString& name) const
    {
        return m_text.value(m_ofLanguage.value(m_ofToken.value(asciiUpper(name))));
    }

  private:
    using Pairs = QHash<QString, QString>;

    static bool readPairs(const QSqlDatabase& database, const QString& statement,
                          Allowance& allowance, Pairs& pairs)
    {
        QSqlQuery query(database);
        query.setForwardOnly(true);
        query.exec(statement);
        while (query.next()) {
            const QString key = query.value(0).toString();
            const QString value = query.value(1).toString();
            if (!allowance.take(key.size() + value.size()))
                return false;
            if (!pairs.contains(key)) // the first row counts
                pairs.insert(key, value);
        }
        return true;
    }
    // As SQLite's upper() does it: other letters stay.
    static QString asciiUpper(QString text)
    {
        for (QChar& letter : text) {
            if (letter >= QLatin1Char('a') && letter <= QLatin1Char('z'))
                letter = QChar(letter.unicode() - 'a' + 'A');
        }
        return text;
    }

    Pairs m_ofToken;
    Pairs m_ofLanguage;
    Pairs m_text;
};

bool readTable(const QSqlDatabase& database, const TokenTable& table, Allowance& allowance,
               TokenMap& tokens, QString& error)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.exec(QLatin1String(table.statement));
    while (query.next()) {
        Token token;
        token.name = query.value(1).toString();
        token.kind = table.kind;
        token.value = valueOf(query.value(2), table.kind);
        if (!allowance.take(token.name.size() + token.value.toString().size())) {
            error = Allowance::exceeded();
            return false;
        }
        tokens.insert(token.name, token);
    }
    error = query.lastError().isValid() ? query.lastError().text() : QString();
    return error.isEmpty();
}

// Not by QSqlDatabase::tables, which has no tables for a file that it cannot read.
bool readTableNames(const QSqlDatabase& database, QStringList& names, QString& error)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.exec(QStringLiteral("select name from sqlite_master"));
    while (query.next())
        names.append(query.value(0).toString());
    error = query.lastError().isValid() ? query.lastError().text() : QString();
    return error.isEmpty();
}

bool readTokens(const QSqlDatabase& database, TokenMap& tokens, QString& error)
{
    Allowance allowance;
    // A survey system that keeps no texts, say, has no such table.
    QStringList present;
    if (!readTableNames(database, present, error))
        return false;
    const auto isPresent = [&present](const char* table) {
        return present.contains(QLatin1String(table), Qt::CaseInsensitive);
    };
    for (const TokenTable& table : tokenTables) {
        if (isPresent("token_value") && isPresent(table.name) &&
            !readTable(database, table, allowance, tokens, error))
            return false;
    }
    Descriptions descriptions;
    if (!descriptions.read(database, allowance)) {
        error = Allowance::exceeded();
        return false;
    }
    for (Token& token : tokens) {
        token.description = descriptions.of(token.name);
        if (!allowance.take(token.description.size())) {
            error = Allowance::exceeded();
            return false;
        }
    }
    return true;
}

} // namespace

DatabaseRead readTokenDatabase(const QString& path, TokenMap& tokens, QString& error)
{
    tokens.clear();
    const QFileInfo file(path);
    if (path.isEmpty() || !file.exists()) {
        error = QStringLiteral("there is no token database");
        return DatabaseRead::Absent;
    }
    if (!file.isFile()) {
        error = QStringLiteral("the token database is no file");
        return DatabaseRead::Unreadable;
    }
    Connection connection(path);
    QSqlDatabase& database = connection.database();
    // One transaction, so that a change in the middle is seen by all statements or by none.
    if (!database.open() || !database.transaction()) {
        error = database.lastError().text();
        return DatabaseRead::Unreadable;
    }
    if (readTokens(database, tokens, error))
        return DatabaseRead::Whole;
    tokens.clear();
    return DatabaseRead::Unreadable;
}

} // namespace settings
