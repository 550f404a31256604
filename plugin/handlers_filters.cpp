#include "plugin/csvp_webinterface.h"
#include "plugin/reply.h"
#include "profile/filtertable.h"
#include "profile/protocol.h"

#include <QFileInfo>

// Actions that keep the table of import filters.

using namespace protocol;

namespace {

const char notOpened[] = "File not opened.";
const char notWritten[] = "Cannot write to file.";

} // namespace

void CSVP_WebInterface::handleSaveFilter(const QString& body)
{
    const auto refuse = [this](const QString& reason) {
        send(Reply(action::saveFilter).failure(reason));
    };
    profile::FilterRow row;
    const QString refusal = profile::readSaveFilter(body, row);
    if (!refusal.isEmpty())
        return refuse(refusal);
    QByteArray table;
    // The first filter makes the table.
    if (profile::readFilterTable(table) == profile::FilterFile::NotOpened)
        return refuse(QString::fromLatin1(notOpened));
    if (!profile::writeFilterTable(profile::tableWithFilter(table, row)))
        return refuse(QString::fromLatin1(notWritten));
    send(Reply(action::saveFilter).success());
}

void CSVP_WebInterface::handleGetAllFilters(const QString& body)
{
    Q_UNUSED(body)
    if (!QFileInfo(profile::filterFolder()).isDir())
        return send(Reply(action::allFilters).failure(QStringLiteral("ProgramData not found.")));
    QStringList rows;
    if (readFilters(rows, FilterFaults::Sent))
        send(Reply(action::allFilters).with(reply::filters, rows.join(QLatin1Char('|'))).success());
}

QStringList CSVP_WebInterface::getSvpFilters(FilterFaults faults)
{
    QStringList rows;
    readFilters(rows, faults);
    return rows;
}

bool CSVP_WebInterface::readFilters(QStringList& rows, FilterFaults faults)
{
    const auto report = [this, faults](const QString& reason) {
        if (faults == FilterFaults::Sent)
            send(Reply(action::allFilters).failure(reason));
    };
    QByteArray table;
    if (profile::readFilterTable(table) != profile::FilterFile::Read) {
        report(QString::fromLatin1(notOpened));
        return false;
    }
    const profile::CheckedFilters checked = profile::checkFilters(table);
    for (const QString& fault : checked.faults)
        report(fault);
    rows = checked.rows;
    return true;
}

void CSVP_WebInterface::handleDeleteFilter(const QString& body)
{
    const auto refuse = [this](const char* reason) {
        send(Reply(action::deleteFilter).failure(QString::fromLatin1(reason)));
    };
    QString name = profile::withoutWhiteSpace(body);
    name.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    QByteArray table;
    if (profile::readFilterTable(table) != profile::FilterFile::Read)
        return refuse(notOpened);
    if (!profile::writeFilterTable(profile::tableWithoutFilter(table, name)))
        return refuse(notWritten);
    send(Reply(action::deleteFilter).success());
}
