#include "yearcontents.h"

#include "cutoff.h"
#include "data/editlog.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "data/transaction.h"
#include "yearclose.h"

#include <QFileInfo>
#include <cmath>

namespace vantrel {

namespace {

const char *const Opening = "OPENING BALANCE";


// An amount as an operator types it: rounded to the paisa, in its shortest text; null stays null.
QString paisa(const BookRow &row, int column)
{
    return row.isNull(column) ? QStringLiteral("null") : doubleText(std::round(row.number(column) * 100) / 100);
}

} // namespace

QStringList openingRows(BooksReader &file, const CutOff &cut, const YearClosePlan &plan)
{
    QStringList rows;
    const QString closing = "not " + cut.after(), opening = sqlLiteral(QLatin1String(Opening)), date = sqlLiteral(plan.openingDate()),
                  balance = sqlLiteral(plan.balance);
    const auto name = [](const BookRow &row, int column) { return row.isNull(column) ? QStringLiteral("null") : sqlLiteral(row.text(column)); };
    const QString credit = cut.figure(QStringLiteral("credit")), debit = cut.figure(QStringLiteral("debit"));
    // A name kept in several spellings ("RAM", "Ram") is one account; it is carried in the
    // spelling of its newest row, on the file and the server alike.
    const auto newestSpelling = [](const QString &name, const QString &sums, const QString &rows) {
        return "select l." + name + ", g.* from (select max(rowid) as newest, " + sums + " from ledger where " + rows + " group by " + name
               + ") g join ledger l on l.rowid = g.newest order by l." + name + " nulls first";
    };
    file.eachRow(newestSpelling(QStringLiteral("accnm"), "sum(" + credit + ")", "type='receipt' and " + closing), [&](const BookRow &row) {
        rows << QStringLiteral("(0,%1,%2,%3,null,%4,'receipt',%5)").arg(date, opening, paisa(row, 2), name(row, 0), balance);
    });
    file.eachRow("select sum(" + debit + ") from ledger where type='payment' and " + closing + " having count(*) > 0", [&](const BookRow &row) {
        rows << QStringLiteral("(0,%1,%2,null,%3,null,'payment',%4)").arg(date, opening, paisa(row, 0), balance);
    });
    file.eachRow(newestSpelling(QStringLiteral("ac"), "sum(" + credit + "), sum(" + debit + ")", closing), [&](const BookRow &row) {
        rows << QStringLiteral("(0,%1,%2,%3,%4,null,'opening',%5)").arg(date, name(row, 0), paisa(row, 2), paisa(row, 3), balance);
    });
    return rows;
}

namespace {

// The new contents: the documents up to the cut-off gone, every stock lot as it stands, the
// ledger's closing rows replaced by opening rows that carry every figure the screens compute.
void carryForward(SqliteFile &file, const YearClosePlan &plan, const QString &closedOn)
{
    const CutOff cut(plan.cutOff);
    const QStringList rows = openingRows(file, cut, plan);
    cut.keepOnly(file, true);
    if (!rows.isEmpty())
        file.execute("insert into ledger(refno,dat,ac,credit,debit,accnm,type,balance) values " + rows.join(QLatin1Char(',')));
    file.execute(QStringLiteral("insert into closedyears(name, closed, file) values(%1, %2, %3)")
                     .arg(sqlLiteral(plan.name), sqlLiteral(closedOn), sqlLiteral(QStringLiteral("years/") + QFileInfo(plan.yearFile).fileName())));
}

// The new contents start a log of their own, from the rows carried forward, chained to the
// closed year's by the hash its log ends on. Its triggers were dropped while the books were
// emptied; they stand again before the transaction ends.
void restartEditLog(SqliteFile &file, const YearClosePlan &plan, const QByteArray &yearsLastHash)
{
    file.execute(QStringLiteral("drop table editlog"));
    file.execute(editLogStatements().join(QStringLiteral(";\n")));
    writeEditLogNote(file.handle(), QStringLiteral("start"),
                     QStringLiteral("The year %1 was closed into years/%2; the edit log starts again with the rows carried forward.")
                         .arg(plan.name, QFileInfo(plan.yearFile).fileName()),
                     QString::fromLatin1(yearsLastHash));
}

} // namespace

void buildNewContents(const QString &next, const YearClosePlan &plan, const QString &closedOn, const QByteArray &yearsLastHash)
{
    SqliteFile file(next, SqliteFile::Access::ReadWrite);
    registerSqlFunctions(file.handle(), ShortDate());
    Transaction transaction(file.handle());
    file.execute(dropEditLogTriggersText());
    carryForward(file, plan, closedOn);
    restartEditLog(file, plan, yearsLastHash);
    transaction.commit();
}

} // namespace vantrel
