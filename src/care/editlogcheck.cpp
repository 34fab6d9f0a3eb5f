#include "editlogcheck.h"

#include "care/sqlitefile.h"
#include "data/editlog.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <sqlite3.h>

namespace vantrel {

namespace {

// A kind of finding is named at most this many times, then counted.
constexpr int MostNamed = 20;

class LogChecker {
public:
    LogChecker(SqliteFile &file, CheckReport &report) : m_db(file.handle()), m_file(file), m_report(report) {}
    ~LogChecker() { flushCounts(); }

    bool tableStands()
    {
        if (m_file.number(QStringLiteral("select count(*) from sqlite_schema where type = 'table' and name = 'editlog'")) > 0)
            return true;
        trace(QStringLiteral("The edit log is missing"), QStringLiteral("the file holds no table editlog"));
        return false;
    }

    // Each statement of the log as the engine keeps it.
    void triggers()
    {
        QMap<QString, QString> stored;
        m_file.eachRow(QStringLiteral("select name, sql from sqlite_schema where type = 'trigger'"),
                       [&](const SqliteRow &row) { stored.insert(row.text(0), row.text(1)); });
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

    // The chain from the first entry, which must be the log's start; returns the digests the
    // newest start recorded, table by table.
    QJsonObject chain()
    {
        EngineStatement entries(m_db, QStringLiteral("select id, at, tab, rid, action, old, new, source, hash from editlog order by id"));
        QByteArray previous;
        QJsonObject digests;
        bool first = true, broken = false;
        while (entries.step() == SQLITE_ROW) {
            const QByteArray action = entries.text(4);
            if (first && action != "start")
                trace(QStringLiteral("The edit log does not begin with its start"), QStringLiteral("its first entry is %1").arg(entryName(entries)));
            first = false;
            if (action == "start")
                digests = QJsonDocument::fromJson(entries.text(6)).object().value(QStringLiteral("tables")).toObject();
            const QByteArray hash = chainHash(previous, entryFields(entries.get()));
            if (!broken && sqlite3_column_type(entries.get(), 8) != SQLITE_NULL && entries.text(8) != hash) {
                broken = true;
                trace(QStringLiteral("The edit log's chain is broken"),
                      QStringLiteral("at %1: it, or an entry before it, was changed, deleted or put in out of turn").arg(entryName(entries)));
            }
            if (entries.text(7) != "program" && entries.text(2) != "")
                notice(QStringLiteral("A change made outside the program"), entryName(entries));
            previous = hash;
        }
        if (first)
            trace(QStringLiteral("The edit log does not begin with its start"), QStringLiteral("the edit log is empty"));
        return digests;
    }

    // The rows of TABLE against its entries, row by row in rowid order: each row's entries must
    // follow on from each other and leave it as it stands; the rows before its first entry
    // (and the rows no entry touches) are the rows the log started from.
    void replay(const LoggedTable &table, const QByteArray &startDigest)
    {
        EngineStatement rows(m_db, rowsAsLoggedText(table));
        EngineStatement entries(m_db, QStringLiteral("select id, rid, action, old, new, at from editlog where tab = '%1' "
                                                     "and action in ('insert', 'update', 'delete') order by rid, id").arg(table.name));
        const bool startedEmpty = startDigest == QCryptographicHash::hash(QByteArray(), QCryptographicHash::Sha256).toHex();
        QCryptographicHash baseline(QCryptographicHash::Sha256);
        bool haveRow = rows.step() == SQLITE_ROW, haveEntry = entries.step() == SQLITE_ROW;
        bool unlogged = false;
        while (haveRow || haveEntry) {
            const qint64 rid = !haveEntry || (haveRow && rows.integer(0) < entries.integer(1)) ? rows.integer(0) : entries.integer(1);
            const bool present = haveRow && rows.integer(0) == rid;
            const QByteArray current = present ? rows.text(1) : QByteArray();
            QByteArray state, startRow;
            bool hasEntries = false, inLog = false, startedPresent = false;
            for (; haveEntry && entries.integer(1) == rid; haveEntry = entries.step() == SQLITE_ROW) {
                const QByteArray action = entries.text(2), old = entries.text(3);
                if (!hasEntries) {
                    startedPresent = inLog = action != "insert";
                    state = startRow = old;
                    hasEntries = true;
                }
                const QString at = QStringLiteral("%1 row %2 before entry %3 of %4: ").arg(table.name).arg(rid).arg(entries.integer(0)).arg(QString::fromUtf8(entries.text(5)));
                if (action == "insert" && inLog)
                    trace(QStringLiteral("A row changed while the edit log was off"), at + QStringLiteral("an insert where the log holds %1").arg(QString::fromUtf8(state)));
                else if (action != "insert" && (!inLog || old != state))
                    trace(QStringLiteral("A row changed while the edit log was off"), at + difference(table, inLog, state, true, old));
                inLog = action != "delete";
                state = entries.text(4);
            }
            if (hasEntries && (inLog != present || (present && state != current)))
                trace(QStringLiteral("A row changed while the edit log was off"),
                      QStringLiteral("%1 row %2: %3").arg(table.name).arg(rid).arg(difference(table, inLog, state, present, current)));
            if (!hasEntries && present && startedEmpty) {
                unlogged = true;
                trace(QStringLiteral("A row written while the edit log was off"),
                      QStringLiteral("%1 row %2 holds %3 and the log has no entry of it").arg(table.name).arg(rid).arg(QString::fromUtf8(current)));
            }
            if (hasEntries ? startedPresent : present) {
                baseline.addData(QByteArray::number(rid) + '\x1f');
                baseline.addData(hasEntries ? startRow : current);
                baseline.addData(QByteArrayView("\n"));
            }
            if (present)
                haveRow = rows.step() == SQLITE_ROW;
        }
        if (!unlogged && baseline.result().toHex() != startDigest)
            trace(QStringLiteral("The rows the edit log started from are not as they were"),
                  QStringLiteral("%1: a row was written, changed or deleted while the log was off").arg(table.name));
    }

private:
    static QString entryName(const EngineStatement &entry)
    {
        const QByteArray table = entry.text(2);
        return QStringLiteral("entry %1 of %2 (%3)")
            .arg(entry.integer(0))
            .arg(QString::fromUtf8(entry.text(1)),
                 table.isEmpty() ? QString::fromUtf8(entry.text(4))
                                 : QStringLiteral("%1 of %2 row %3").arg(QString::fromUtf8(entry.text(4)), QString::fromUtf8(table)).arg(entry.integer(3)));
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

    void trace(const QString &kind, const QString &rows) { add(m_report.traces, kind, rows); }
    void notice(const QString &kind, const QString &rows) { add(m_report.notices, kind, rows); }

    void add(QList<Finding> &list, const QString &kind, const QString &rows)
    {
        if (++m_counts[&list][kind] <= MostNamed)
            list << Finding{kind, rows};
    }

    void flushCounts()
    {
        for (auto lists = m_counts.cbegin(); lists != m_counts.cend(); ++lists)
            for (auto kinds = lists->cbegin(); kinds != lists->cend(); ++kinds)
                if (kinds.value() > MostNamed)
                    lists.key()->append(Finding{kinds.key(), QStringLiteral("and %1 more").arg(kinds.value() - MostNamed)});
    }

    sqlite3 *m_db;
    SqliteFile &m_file;
    CheckReport &m_report;
    QMap<QList<Finding> *, QMap<QString, int>> m_counts;
};

} // namespace

void checkEditLog(SqliteFile &file, CheckDepth depth, CheckReport &report)
{
    LogChecker checker(file, report);
    if (!checker.tableStands())
        return;
    checker.triggers();
    if (depth == CheckDepth::Quick)
        return;
    const QJsonObject digests = checker.chain();
    for (const LoggedTable &table : loggedTables())
        checker.replay(table, digests.value(table.name).toString().toLatin1());
}

} // namespace vantrel
