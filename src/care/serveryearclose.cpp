#include "serveryearclose.h"

#include "backups.h"
#include "closedyears.h"
#include "cutoff.h"
#include "data/records.h"
#include "data/servereditlog.h"
#include "data/serverschema.h"
#include "data/shortdate.h"
#include "data/unhandlederror.h"
#include "serversession.h"
#include "yearclose.h"
#include "yearcontents.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace vantrel {

namespace {

// The documents' tables, each with what of it closes: a line closes with its header.
QString closing(const QString &table, const CutOff &cut)
{
    if (table == QLatin1String("sales"))
        return "not " + cut.salesLine();
    if (table == QLatin1String("purchase"))
        return "not " + cut.purchaseLine();
    if (table == QLatin1String("salesmain") || table == QLatin1String("purchasemain") || table == QLatin1String("ledger"))
        return "not " + cut.after();
    return {}; // the masters and the stock: all of it, as it stands
}

QString note(const QString &words)
{
    return sqlLiteral(QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("note"), words}}).toJson(QJsonDocument::Compact)));
}

// The year's books: every table's closing rows with their rowids, the receipt view, the log as
// it ends, and the record of the books' version.
void keepTheYear(ServerSession &books, const QString &schema, const CutOff &cut)
{
    for (const QString &statement : yearSchemaStatements(schema))
        books.run(statement);
    for (const ServerTable &table : serverTables()) {
        const QString columns = table.names().join(QLatin1Char(',')) + QStringLiteral(",rowid"), only = closing(table.name, cut);
        books.run(QStringLiteral("insert into %1.%2(%3) overriding system value select %3 from %2%4 order by rowid")
                      .arg(schema, table.name, columns, only.isEmpty() ? QString() : " where " + only));
    }
    books.run(QStringLiteral("insert into %1.editlog select * from editlog order by id").arg(schema));
}

// Every role that works at the counters (it may write the sales) may read the year, and no more.
void letTheCountersRead(ServerSession &books, const QString &schema)
{
    books.run(QStringLiteral("do $$ declare r name; begin for r in select rolname from pg_roles where not rolsuper and rolname !~ '^pg_' "
                             "and rolname <> current_user and has_table_privilege(oid, 'salesmain', 'insert') loop "
                             "execute format('grant usage on schema %1 to %I', r); execute format('grant select on all tables in schema %1 to %I', r); "
                             "end loop; end $$")
                  .arg(schema));
}

// The live books after the cut-off: what closes goes and the ledger opens with ROWS, unlogged
// (the log starts again from what stays); then the log's entries go, into the year's keeping.
void carryForward(ServerSession &books, const CutOff &cut, const QStringList &rows)
{
    const QStringList documents = {QStringLiteral("sales"), QStringLiteral("salesmain"), QStringLiteral("purchase"), QStringLiteral("purchasemain"),
                                   QStringLiteral("ledger")};
    for (const QString &table : documents)
        books.run(QStringLiteral("alter table %1 disable trigger %1_log").arg(table));
    for (const QString &table : documents)
        books.run(QStringLiteral("delete from %1 where %2").arg(table, closing(table, cut)));
    if (!rows.isEmpty())
        books.run("insert into ledger(refno,dat,ac,credit,debit,accnm,type,balance) values " + rows.join(QLatin1Char(',')));
    for (const QString &table : documents)
        books.run(QStringLiteral("alter table %1 enable trigger %1_log").arg(table));
    books.run(QStringLiteral("alter table editlog disable trigger editlog_kept"));
    books.run(QStringLiteral("delete from editlog"));
    books.run(QStringLiteral("alter table editlog enable trigger editlog_kept"));
}

} // namespace

void closeServerYear(const QString &connection, const YearClosePlan &plan, const QDateTime &now, const std::function<void(int)> &done)
{
    Backups(connection, QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("backups"))).take(now);
    done(20);
    const QString schema = yearSchema(plan.name);
    const CutOff cut(plan.cutOff, true);
    ServerSession books(connection, ServerSession::Mode::Statements);
    books.run(QStringLiteral("begin"));
    try {
        QStringList tables = {QStringLiteral("editlog"), QStringLiteral("closedyears")};
        for (const ServerTable &table : serverTables())
            tables << table.name;
        books.run("lock table " + tables.join(QStringLiteral(", ")) + " in exclusive mode"); // the counters' writes wait for the close
        books.run("insert into editlog(tab, rid, action, old, new) values ('', null, 'close', null, "
                  + note(QStringLiteral("The year %1 is closed: %2 keeps its books up to %3 and is not written again.")
                             .arg(plan.name, schema, ShortDate().text(plan.cutOff)))
                  + ")");
        keepTheYear(books, schema, cut);
        const QString yearsLastHash = books.firstColumn(QStringLiteral("select hash from editlog order by id desc limit 1")).value(0);
        done(50);
        carryForward(books, cut, openingRows(books, cut, plan));
        books.run(QStringLiteral("insert into closedyears(name, closed, file) values (%1, %2, %3)")
                      .arg(sqlLiteral(plan.name), sqlLiteral(ShortDate().text(now.date())), sqlLiteral(schema)));
        letTheCountersRead(books, schema);
        QSqlQuery query(QSqlDatabase::database(books.connectionName(), false));
        writeServerStartNote(query,
                             QStringLiteral("The year %1 was closed into %2; the edit log starts again with the rows carried forward.").arg(plan.name, schema),
                             yearsLastHash);
        books.run(QStringLiteral("commit"));
    } catch (const UnhandledError &) {
        QSqlQuery(QSqlDatabase::database(books.connectionName(), false)).exec(QStringLiteral("rollback"));
        throw;
    }
    done(100);
}

} // namespace vantrel
