#include "servermove.h"

#include "closedyears.h"
#include "data/database.h"
#include "data/editlog.h"
#include "data/records.h"
#include "data/serverconnection.h"
#include "data/serverschema.h"
#include "data/unhandlederror.h"
#include "shopcheck.h"
#include "sqlitefile.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// Rows go to the server this many to a statement.
const int RowsPerStatement = 500;

// A value of the file as a literal of the server's statement: a number in all its digits, a text
// quoted as typed, a null.
QString literal(const BookRow &row, int column)
{
    const QString type = row.type(column);
    if (type == QLatin1String("null"))
        return QStringLiteral("null");
    if (type == QLatin1String("integer"))
        return QString::number(row.integer(column));
    if (type == QLatin1String("real"))
        return QString::number(row.number(column), 'g', 17);
    return QLatin1Char('\'') + row.text(column).replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

void copyTable(SqliteFile &source, QSqlQuery &target, const ServerTable &table, const QString &schema = QString())
{
    const QString columns = table.names().join(QLatin1Char(','));
    const QString insert = QStringLiteral("insert into %1%2(%3) values ").arg(schema.isEmpty() ? QString() : schema + '.', table.name, columns);
    QStringList rows;
    const auto send = [&] {
        if (!rows.isEmpty() && !target.exec(insert + rows.join(QLatin1Char(','))))
            throw UnhandledError(QStringLiteral("the server refused a row of %1: %2").arg(table.name, serverMessage(target.lastError())));
        rows.clear();
    };
    source.eachRow(QStringLiteral("select %1 from %2 order by rowid").arg(columns, table.name), [&](const BookRow &row) {
        QStringList values;
        for (int i = 0; i < int(table.columns.size()); ++i)
            values << literal(row, i);
        rows << QLatin1Char('(') + values.join(QLatin1Char(',')) + QLatin1Char(')');
        if (rows.size() == RowsPerStatement)
            send();
    });
    send();
}

// The log's entries as the file keeps them, each with its number, time and hash.
ServerTable loggedEntries()
{
    ServerTable log{QStringLiteral("editlog"), {}};
    for (const char *name : {"id", "at", "tab", "rid", "action", "old", "new", "source", "hash"})
        log.columns.append({QLatin1String(name), ServerTable::Text});
    return log;
}

struct MovedYear {
    QString name, schema;
    int rows;
};

// The closed years the file records, each moved from its own file into a schema of the server's
// and recorded there.
QVector<MovedYear> moveClosedYears(SqliteFile &source, QSqlQuery &target)
{
    QVector<MovedYear> moved;
    const QDir beside = QFileInfo(source.path()).absoluteDir();
    source.eachRow(QStringLiteral("select name, closed, file from closedyears order by rowid"), [&](const BookRow &row) {
        const QString schema = yearSchema(row.text(0));
        for (const QString &statement : yearSchemaStatements(schema))
            if (!target.exec(statement))
                throw UnhandledError(QStringLiteral("the server refused the closed year %1: %2").arg(row.text(0), serverMessage(target.lastError())));
        SqliteFile year(beside.filePath(row.text(2)), SqliteFile::Access::ReadOnly);
        int rows = 0;
        for (const ServerTable &table : serverTables()) {
            copyTable(year, target, table, schema);
            rows += int(year.number("select count(*) from " + table.name));
        }
        copyTable(year, target, loggedEntries(), schema);
        if (!target.exec(QStringLiteral("insert into closedyears(name, closed, file) values (%1, %2, %3)")
                             .arg(sqlLiteral(row.text(0)), sqlLiteral(row.text(1)), sqlLiteral(schema))))
            throw UnhandledError(QStringLiteral("the server refused the closed year %1: %2").arg(row.text(0), serverMessage(target.lastError())));
        moved.append({row.text(0), schema, rows});
    });
    return moved;
}

// A table's row count and the totals of its Number columns, as the books' own statements read
// them on either engine.
QStringList totals(Database &books, const ServerTable &table)
{
    QStringList sums{QStringLiteral("count(*) as n")};
    for (const ServerTable::Column &column : table.columns)
        if (column.kind != ServerTable::Text)
            sums << QStringLiteral("sum(%1%2) as %1").arg(column.name, books.onServer() && column.kind == ServerTable::Figure ? "__n" : "");
    const Recordset rs = books.query(QStringLiteral("select %1 from %2").arg(sums.join(QLatin1Char(',')), table.name));
    QStringList figures;
    for (const QString &field : rs.fieldNames())
        figures << field + QLatin1Char('=') + rs.text(field);
    return figures;
}

// Whether two engines' totals agree: the counts exactly, each sum to its last few bits (each
// engine adds a million figures in an order of its own, and a double's sum depends on it).
bool sameTotals(const QStringList &here, const QStringList &there)
{
    if (here.size() != there.size())
        return false;
    for (qsizetype i = 0; i < here.size(); ++i) {
        if (here[i] == there[i])
            continue;
        bool bothNumbers = false, other = false;
        const double a = here[i].section(QLatin1Char('='), 1).toDouble(&bothNumbers), b = there[i].section(QLatin1Char('='), 1).toDouble(&other);
        if (i == 0 || !bothNumbers || !other || here[i].section(QLatin1Char('='), 0, 0) != there[i].section(QLatin1Char('='), 0, 0)
            || std::abs(a - b) > 1e-12 * std::max(std::abs(a), std::abs(b)))
            return false;
    }
    return true;
}

// What a check found, in a line: "nothing", or each finding with its rows.
QString findings(const CheckReport &report)
{
    QStringList found = report.damage;
    for (const Finding &finding : report.traces)
        found << finding.kind + ": " + finding.rows;
    return found.isEmpty() ? QStringLiteral("nothing") : found.join(QLatin1String("; "));
}

} // namespace

QStringList moveFileToServer(const QString &file, const QString &connection)
{
    QVector<MovedYear> years;
    {
        SqliteFile source(file, SqliteFile::Access::ReadWrite);
        // What another client wrote into the file's log is sealed first, as the program would.
        if (const QString failed = attachEditLog(source.handle()); !failed.isEmpty())
            throw UnhandledError(QStringLiteral("Cannot keep the file's edit log: %1").arg(failed));
        createServerBooks(
            connection,
            [&](QSqlQuery &target) {
                for (const ServerTable &table : serverTables())
                    copyTable(source, target, table);
                copyTable(source, target, loggedEntries());
                years = moveClosedYears(source, target);
            },
            QStringLiteral("The books moved onto the server from %1: the edit log goes on from the file's.").arg(file));
    }
    Database moved(connection), kept(QStringLiteral("Data Source=%1;").arg(file), Database::Access::ReadOnly);
    // The planner's picture of the books just written, and the map of pages an index alone may answer for.
    moved.execute(QStringLiteral("vacuum analyze"));
    QStringList report;
    for (const ServerTable &table : serverTables()) {
        const QStringList there = totals(moved, table), here = totals(kept, table);
        if (!sameTotals(here, there))
            throw UnhandledError(QStringLiteral("the move is not proven: %1 holds %2 on the file and %3 on the server")
                                     .arg(table.name, here.join(QLatin1Char(' ')), there.join(QLatin1Char(' '))));
        report << QStringLiteral("%1: %2 rows").arg(table.name, there.first().section(QLatin1Char('='), 1));
    }
    // The file's entries, then the server's start: the newest entry but one there is the file's newest.
    const QString lastHere = kept.query(QStringLiteral("select hash from editlog order by id desc limit 1")).text(QStringLiteral("hash"));
    const Recordset there = moved.query(QStringLiteral("select count(*) - 1 as n, (select hash from editlog order by id desc offset 1 limit 1) as hash from editlog"));
    const QString entriesHere = kept.query(QStringLiteral("select count(*) as n from editlog")).text(QStringLiteral("n"));
    if (there.text(QStringLiteral("n")) != entriesHere || there.text(QStringLiteral("hash")) != lastHere)
        throw UnhandledError(QStringLiteral("the move is not proven: the file's edit log holds %1 entries ending in %2, the server's %3 ending in %4")
                                 .arg(entriesHere, lastHere, there.text(QStringLiteral("n")), there.text(QStringLiteral("hash"))));
    report << QStringLiteral("editlog: %1 entries").arg(entriesHere);
    // A closed year's rows, counted as they went, are read back from the server.
    for (const MovedYear &year : std::as_const(years)) {
        QStringList counts;
        for (const ServerTable &table : serverTables())
            counts << QStringLiteral("(select count(*) from %1.%2)").arg(year.schema, table.name);
        const int there = moved.query("select " + counts.join(QLatin1Char('+')) + " as n").text(QStringLiteral("n")).toInt();
        if (there != year.rows)
            throw UnhandledError(QStringLiteral("the move is not proven: the closed year %1 holds %2 rows on the file and %3 on the server")
                                     .arg(year.name)
                                     .arg(year.rows)
                                     .arg(there));
        report << QStringLiteral("the closed year %1: %2 rows into %3").arg(year.name).arg(year.rows).arg(year.schema);
    }
    // The check reads the books there as it read them here: the same findings, row for row.
    const QString checkedHere = findings(checkShopFile(file, CheckDepth::Quick)), checkedThere = findings(checkShopFile(connection, CheckDepth::Quick));
    if (checkedThere != checkedHere)
        throw UnhandledError(QStringLiteral("the move is not proven: the check finds %1 on the file and %2 on the server").arg(checkedHere, checkedThere));
    report << QStringLiteral("the check: %1 on both").arg(checkedHere);
    return report;
}

} // namespace vantrel
