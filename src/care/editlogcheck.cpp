#include "editlogcheck.h"

#include "care/booksreader.h"
#include "data/editlogchain.h"
#include "data/servereditlog.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <algorithm>
#include <limits>

namespace vantrel {

namespace {

// A kind of finding is named at most this many times, then counted.
constexpr int MostNamed = 20;

const char *const ChangedWhileOff = "A row changed while the edit log was off";

// One row's entries replayed, oldest first, from the row as the first of them found it.
struct History {
    bool startedPresent = false; // the row stood before its first entry (that entry is no insert)
    QByteArray startRow;         // as it stood then
    bool present = false;        // the row stands after the last entry
    QByteArray row;              // as the last entry leaves it
};

class LogChecker {
public:
    explicit LogChecker(BooksReader &books) : m_server(books.onServer()), m_file(books) {}

    // What the checker found, each kind named at most MostNamed times, then counted.
    void addTo(CheckReport &report) const
    {
        addCapped(report.traces, m_traces);
        addCapped(report.notices, m_notices);
    }

    bool tableStands()
    {
        if (m_file.number(m_server ? QStringLiteral("select count(*) from pg_tables where tablename = 'editlog' and schemaname = current_schema()")
                                   : QStringLiteral("select count(*) from sqlite_schema where type = 'table' and name = 'editlog'"))
            > 0)
            return true;
        trace(QStringLiteral("The edit log is missing"), QStringLiteral("the file holds no table editlog"));
        return false;
    }

    // Each statement of the log as the engine keeps it.
    void triggers()
    {
        if (m_server)
            return serverTriggers();
        QMap<QString, QString> stored;
        m_file.eachRow(QStringLiteral("select name, sql from sqlite_schema where type = 'trigger'"),
                       [&](const BookRow &row) { stored.insert(row.text(0), row.text(1)); });
        for (const QString &statement : editLogStatements()) {
            if (!statement.startsWith(QLatin1String("create trigger ")))
                continue;
            const QString name = statement.section(QLatin1Char(' '), 2, 2);
            if (!stored.contains(name))
                trace(QStringLiteral("An edit log trigger was dropped"),
                      name.startsWith(QLatin1String("editlog_")) ? QStringLiteral("%1: the log's entries can be rewritten").arg(name)
                                                                 : QStringLiteral("%1: the changes it logs go unlogged").arg(name));
            else if (stored.value(name).mid(qstrlen("create trigger")) != statement.mid(qstrlen("create trigger"))) // the engine writes its keywords in capitals
                trace(QStringLiteral("An edit log trigger was changed"), QStringLiteral("%1 is not as the program made it").arg(name));
        }
    }

    // The server's triggers: each standing, switched on, of its kind and running its function as
    // the program wrote it.
    void serverTriggers()
    {
        QMap<QString, QStringList> stored;
        m_file.eachRow(QStringLiteral("select t.tgname, c.relname, t.tgtype, t.tgenabled, p.proname, p.prosrc from pg_trigger t "
                                      "join pg_class c on c.oid = t.tgrelid join pg_proc p on p.oid = t.tgfoid where not t.tgisinternal"),
                       [&](const BookRow &row) { stored.insert(row.text(0), {row.text(1), row.text(2), row.text(3), row.text(4), row.text(5)}); });
        for (const ServerLogTrigger &trigger : serverLogTriggers()) {
            const QStringList found = stored.value(trigger.name);
            if (found.isEmpty())
                trace(QStringLiteral("An edit log trigger was dropped"),
                      trigger.table == QLatin1String("editlog") ? QStringLiteral("%1: the log's entries can be rewritten").arg(trigger.name)
                                                                : QStringLiteral("%1: the changes it logs go unlogged").arg(trigger.name));
            else if (found.at(2) == QLatin1String("D"))
                trace(QStringLiteral("An edit log trigger was switched off"), QStringLiteral("%1 on %2").arg(trigger.name, trigger.table));
            else if (found.at(0) != trigger.table || found.at(1).toInt() != trigger.type || found.at(3) != trigger.function
                     || found.at(4) != serverLogFunctionBody(trigger.function))
                trace(QStringLiteral("An edit log trigger was changed"), QStringLiteral("%1 is not as the program made it").arg(trigger.name));
        }
    }

    // The chain from the first entry, which must be the log's start; returns the digests the
    // newest start recorded, table by table, and leaves its entry's number in m_start.
    QJsonObject chain()
    {
        const std::unique_ptr<BookRows> entries = m_file.rows(QStringLiteral("select id, at, tab, rid, action, old, new, source, hash from editlog order by id"));
        QByteArray previous;
        QJsonObject digests;
        bool first = true, broken = false;
        while (entries->next()) {
            const QByteArray action = entries->bytes(4);
            if (first && action != "start")
                trace(QStringLiteral("The edit log does not begin with its start"), QStringLiteral("its first entry is %1").arg(entryName(*entries)));
            first = false;
            if (action == "start") {
                digests = QJsonDocument::fromJson(entries->bytes(6)).object().value(QStringLiteral("tables")).toObject();
                m_start = entries->integer(0);
            }
            const QByteArray hash = chainHash(previous, fieldsOf(*entries));
            if (!broken && !entries->isNull(8) && entries->bytes(8) != hash) {
                broken = true;
                trace(QStringLiteral("The edit log's chain is broken"),
                      QStringLiteral("at %1: it, or an entry before it, was changed, deleted or put in out of turn").arg(entryName(*entries)));
            }
            // The program writes its counter's name; anything else leaves "other".
            const QByteArray source = entries->bytes(7);
            if (source == "other" && !entries->bytes(2).isEmpty())
                notice(QStringLiteral("A change made outside the program"), entryName(*entries));
            previous = hash;
        }
        if (first)
            trace(QStringLiteral("The edit log does not begin with its start"), QStringLiteral("the edit log is empty"));
        return digests;
    }

    // The rows of TABLE against its entries: two streams in rowid order merged. A row with
    // entries must stand as they leave it; a row without any is one the log started from (and
    // one written while the log was off, when the log started from no rows). The rows the log
    // started from must digest as its start recorded.
    void replay(const LoggedTable &table, const QByteArray &startDigest)
    {
        const std::unique_ptr<BookRows> rows = m_file.rows(m_server ? serverRowsAsLoggedText(*serverTable(table.name)) : rowsAsLoggedText(table));
        const std::unique_ptr<BookRows> entries =
            m_file.rows(QStringLiteral("select id, rid, action, old, new, at from editlog where tab = '%1' "
                                       "and action in ('insert', 'update', 'delete') and id > %2 order by rid, id")
                            .arg(table.name)
                            .arg(m_start));
        const bool startedEmpty = startDigest == QCryptographicHash::hash(QByteArray(), QCryptographicHash::Sha256).toHex();
        QCryptographicHash baseline(QCryptographicHash::Sha256);
        const auto startedFrom = [&baseline](qint64 rid, const QByteArray &row) {
            baseline.addData(QByteArray::number(rid) + '\x1f');
            baseline.addData(row);
            baseline.addData(QByteArrayView("\n"));
        };
        bool unlogged = false;
        bool haveRow = rows->next(), haveEntry = entries->next();
        while (haveRow || haveEntry) {
            const qint64 none = std::numeric_limits<qint64>::max();
            const qint64 rowId = haveRow ? rows->integer(0) : none, entryId = haveEntry ? entries->integer(1) : none;
            const qint64 rid = std::min(rowId, entryId);
            const bool present = rowId == rid;
            const QByteArray current = present ? rows->bytes(1) : QByteArray();
            if (entryId == rid) {
                const History history = replayRow(table, rid, *entries, haveEntry);
                if (history.present != present || (present && history.row != current))
                    trace(QLatin1String(ChangedWhileOff),
                          QStringLiteral("%1 row %2: %3").arg(table.name).arg(rid).arg(difference(table, history.present, history.row, present, current)));
                if (history.startedPresent)
                    startedFrom(rid, history.startRow);
            } else {
                if (startedEmpty) {
                    unlogged = true;
                    trace(QStringLiteral("A row written while the edit log was off"),
                          QStringLiteral("%1 row %2 holds %3 and the log has no entry of it").arg(table.name).arg(rid).arg(QString::fromUtf8(current)));
                }
                startedFrom(rid, current);
            }
            if (present)
                haveRow = rows->next();
        }
        if (!unlogged && baseline.result().toHex() != startDigest)
            trace(QStringLiteral("The rows the edit log started from are not as they were"),
                  QStringLiteral("%1: a row was written, changed or deleted while the log was off").arg(table.name));
    }

private:
    // Replays the entries of row RID, on the first of which ENTRIES stand, leaving them on the
    // next row's first entry (HAVEENTRY false past the last). An entry that does not follow on
    // from the one before it was written over a change made while the log was off.
    History replayRow(const LoggedTable &table, qint64 rid, BookRows &entries, bool &haveEntry)
    {
        History history;
        history.startedPresent = history.present = entries.bytes(2) != "insert";
        history.startRow = history.row = entries.bytes(3);
        for (; haveEntry && entries.integer(1) == rid; haveEntry = entries.next()) {
            const QByteArray action = entries.bytes(2), old = entries.bytes(3);
            const QString at = QStringLiteral("%1 row %2 before entry %3 of %4: ").arg(table.name).arg(rid).arg(entries.integer(0)).arg(entries.text(5));
            if (action == "insert" && history.present)
                trace(QLatin1String(ChangedWhileOff), at + QStringLiteral("an insert where the log holds %1").arg(QString::fromUtf8(history.row)));
            else if (action != "insert" && (!history.present || old != history.row))
                trace(QLatin1String(ChangedWhileOff), at + difference(table, history.present, history.row, true, old));
            history.present = action != "delete";
            history.row = entries.bytes(4);
        }
        return history;
    }

    static QString entryName(const BookRow &entry)
    {
        const QString table = entry.text(2);
        return QStringLiteral("entry %1 of %2 (%3)")
            .arg(entry.integer(0))
            .arg(entry.text(1), table.isEmpty() ? entry.text(4) : QStringLiteral("%1 of %2 row %3").arg(entry.text(4), table).arg(entry.integer(3)));
    }

    // An entry's fields from id to source as the chain reads them, each of its kind.
    static EntryFields fieldsOf(const BookRow &entry)
    {
        EntryFields fields;
        for (int i = 0; i < 8; ++i) {
            const QString type = entry.type(i);
            fields[i] = {type == QLatin1String("null") ? 'N' : type == QLatin1String("integer") ? 'I' : 'T', entry.isNull(i) ? QByteArray() : entry.bytes(i)};
        }
        return fields;
    }

    // What differs between the row as the log leaves it and as it was found, column by column.
    static QString difference(const LoggedTable &table, bool expected, const QByteArray &expectedRow, bool found, const QByteArray &foundRow)
    {
        if (!expected)
            return QStringLiteral("the log has no such row, but it holds %1").arg(QString::fromUtf8(foundRow));
        if (!found)
            return QStringLiteral("the log leaves it as %1, but it is gone").arg(QString::fromUtf8(expectedRow));
        const QJsonArray want = QJsonDocument::fromJson("{\"r\":" + expectedRow + "}").object().value(QStringLiteral("r")).toArray();
        const QJsonArray have = QJsonDocument::fromJson("{\"r\":" + foundRow + "}").object().value(QStringLiteral("r")).toArray();
        QStringList columns;
        for (int i = 0; i < table.columns.size(); ++i)
            if (want.at(i) != have.at(i))
                columns << QStringLiteral("%1 is %2 where the log has %3").arg(table.columns.at(i), shownValue(have.at(i)), shownValue(want.at(i)));
        return columns.isEmpty() ? QStringLiteral("it holds %1 where the log has %2").arg(QString::fromUtf8(foundRow), QString::fromUtf8(expectedRow))
                                 : columns.join(QStringLiteral("; "));
    }

    static QString shownValue(const QJsonValue &value)
    {
        return value.isNull() || value.isUndefined() ? QStringLiteral("nothing")
                                                     : QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact)).mid(1).chopped(1);
    }

    void trace(const QString &kind, const QString &rows) { m_traces << Finding{kind, rows}; }
    void notice(const QString &kind, const QString &rows) { m_notices << Finding{kind, rows}; }

    // FOUND added to LIST in order, each kind's first MostNamed named; then, kind by kind, how
    // many more there were.
    static void addCapped(QList<Finding> &list, const QList<Finding> &found)
    {
        QMap<QString, int> counts;
        for (const Finding &finding : found)
            if (++counts[finding.kind] <= MostNamed)
                list << finding;
        for (auto kind = counts.cbegin(); kind != counts.cend(); ++kind)
            if (kind.value() > MostNamed)
                list << Finding{kind.key(), QStringLiteral("and %1 more").arg(kind.value() - MostNamed)};
    }

    bool m_server;
    BooksReader &m_file;
    qint64 m_start = 0; // the newest start's entry
    QList<Finding> m_traces, m_notices;
};

} // namespace

void checkEditLog(BooksReader &file, CheckDepth depth, CheckReport &report)
{
    LogChecker checker(file);
    if (checker.tableStands()) {
        checker.triggers();
        if (depth == CheckDepth::Full) {
            const QJsonObject digests = checker.chain();
            QVector<LoggedTable> tables = loggedTables();
            if (file.onServer()) { // the server keeps no record of closed years
                tables.clear();
                for (const ServerTable &table : serverTables())
                    tables.append({table.name, table.names()});
            }
            for (const LoggedTable &table : std::as_const(tables))
                checker.replay(table, digests.value(table.name).toString().toLatin1());
        }
    }
    checker.addTo(report);
}

void checkEditLogChain(BooksReader &file, CheckReport &report)
{
    LogChecker checker(file);
    if (checker.tableStands()) {
        checker.triggers();
        checker.chain();
    }
    checker.addTo(report);
}

} // namespace vantrel
