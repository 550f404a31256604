#include "settings/tokenstore_database.h"

#include "platform/platform.h"

#include <QFileInfo>
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
    const char* statement;
    TokenKind kind;
};

// A name that is in two tables has the kind and the value of the later one.
constexpr TokenTable tokenTables[] = {
    {"select value_id, token, float_values.value from token_value "
     "inner join float_values on token_value.value_id = float_values.id",
     TokenKind::Float},
    {"select value_id, token, integer_values.value from token_value "
     "inner join integer_values on token_value.value_id = integer_values.id",
     TokenKind::Integer},
    {"select value_id, token, varchar_values.value from token_value "
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

/// Finds descriptions by three statements, each prepared once. Names travel as values, so that a
/// quote in one is a letter like any other.
class Descriptions
{
  public:
    explicit Descriptions(const QSqlDatabase& database)
        : m_ofToken(database), m_ofLanguage(database), m_text(database)
    {
        m_isReady = prepare(m_ofToken, "select description_id from token_value "
                                       "where token=upper(?)") &&
                    prepare(m_ofLanguage, "select description_id from descriptions_language "
                                          "where id=? and language=?") &&
                    prepare(m_text, "select description from descriptions where id=?");
    }

    /// The description of a token; empty where it has none.
    QString of(const QString& name)
    {
        if (!m_isReady)
            return {};
        const QVariant inAnyLanguage = firstCell(m_ofToken, {name});
        if (inAnyLanguage.isNull())
            return {};
        const QVariant inOurs =
            firstCell(m_ofLanguage, {inAnyLanguage.toString(), QString::number(language)});
        return inOurs.isNull() ? QString() : firstCell(m_text, {inOurs.toString()}).toString();
    }

  private:
    static bool prepare(QSqlQuery& query, const char* statement)
    {
        query.setForwardOnly(true);
        return query.prepare(QLatin1String(statement));
    }
    // The values are bound as text, which SQLite compares with a column of numbers as it does a
    // quoted number.
    static QVariant firstCell(QSqlQuery& query, const QStringList& values)
    {
        for (int i = 0; i < values.size(); ++i)
            query.bindValue(i, values.at(i));
        QVariant cell;
        if (query.exec() && query.next())
            cell = query.value(0);
        query.finish();
        return cell;
    }

    QSqlQuery m_ofToken;
    QSqlQuery m_ofLanguage;
    QSqlQuery m_text;
    bool m_isReady = false;
};

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

bool readTokens(const QSqlDatabase& database, TokenMap& tokens, QString& error)
{
    Allowance allowance;
    for (const TokenTable& table : tokenTables) {
        if (!readTable(database, table, allowance, tokens, error))
            return false;
    }
    Descriptions descriptions(database);
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
