#include "yearclose.h"

#include "audit/editlog.h"
#include "care/backups.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "data/unhandlederror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace vantrel {

namespace {

const char *const Opening = "OPENING BALANCE";

QString exact(double value) { return QString::number(value, 'g', 17); }

QString yearsFolder(const QString &database) { return QFileInfo(database).absoluteDir().filePath(QStringLiteral("years")); }
QString newContents(const QString &database) { return database + QStringLiteral(".new"); }

// A file the engine was writing when a kill came, with its journals.
void removeUnfinished(const QString &path)
{
    for (const char *suffix : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
}

// The newest date the books hold, or an invalid date when none can be read.
QDate newestDate(SqliteFile &file)
{
    const ShortDate form;
    QDate newest;
    file.eachRow(QStringLiteral("select distinct dat from salesmain union select distinct dat from purchasemain "
                                "union select distinct dat from ledger"),
                 [&](const SqliteRow &row) {
                     const QDate day = row.isNull(0) ? QDate() : dateOfText(row.text(0), form);
                     if (day.isValid() && (!newest.isValid() || day > newest))
                         newest = day;
                 });
    return newest;
}

// The Receipt screen's total of one receiving account: its list's Amount column walked in the
// order the engine gives it, each added into a single-precision sum.
double receiptScreenTotal(SqliteFile &file, const QString &account)
{
    float total = 0;
    file.eachRow("select refno,dat as Date1,ac as Name_of_Account,credit as Amount from ledger where accnm=" + sqlLiteral(account)
                     + " and type='receipt'",
                 [&](const SqliteRow &row) {
                     const QString type = row.type(3);
                     const double amount = type == QLatin1String("integer") || type == QLatin1String("real") ? row.number(3) : val(row.text(3));
                     total = toSingle(double(total) + amount);
                 });
    return double(total);
}

// The new contents: the books emptied, the stock lots without stock gone, the ledger replaced by
// opening rows that carry every figure the screens compute.
void carryForward(SqliteFile &file, const YearClosePlan &plan, const QString &dateText)
{
    const double credit = file.number(QStringLiteral("select sum(credit) from ledger where type='receipt'"));
    const double debit = file.number(QStringLiteral("select sum(debit) from ledger where type='payment'"));
    const bool anyPayment = file.number(QStringLiteral("select count(*) from ledger where type='payment'")) > 0;
    QStringList rows;
    const QString opening = sqlLiteral(QLatin1String(Opening)), date = sqlLiteral(dateText), balance = sqlLiteral(plan.balance);
    file.eachRow(QStringLiteral("select distinct accnm from ledger where type='receipt'"), [&](const SqliteRow &row) {
        const double total = row.isNull(0) ? 0 : receiptScreenTotal(file, row.text(0));
        rows << QStringLiteral("(0,%1,%2,%3,null,%4,'receipt',%5)").arg(date, opening, exact(total), row.isNull(0) ? "null" : sqlLiteral(row.text(0)), balance);
    });
    if (anyPayment)
        rows << QStringLiteral("(0,%1,%2,null,%3,null,'payment',%4)").arg(date, opening, exact(debit), balance);
    file.eachRow(QStringLiteral("select ac, sum(credit), sum(debit) from ledger group by ac"), [&](const SqliteRow &row) {
        rows << QStringLiteral("(0,%1,%2,%3,%4,null,'opening',%5)")
                    .arg(date, row.isNull(0) ? "null" : sqlLiteral(row.text(0)), row.isNull(1) ? "null" : exact(row.number(1)),
                         row.isNull(2) ? "null" : exact(row.number(2)), balance);
    });
    file.execute(QStringLiteral("delete from sales; delete from salesmain; delete from purchase; delete from purchasemain; "
                                "delete from stock where stk = 0; delete from ledger"));
    if (!rows.isEmpty())
        file.execute("insert into ledger(refno,dat,ac,credit,debit,accnm,type,balance) values " + rows.join(QLatin1Char(',')));
    // The receiving accounts' totals are single-precision sums; one of them takes the little
    // that makes the receipts add up to the very total the engine added before.
    for (int tries = 0; tries < 4; ++tries) {
        const double now = file.number(QStringLiteral("select sum(credit) from ledger where type='receipt'"));
        if (now == credit)
            break;
        file.execute(QStringLiteral("update ledger set credit = credit + %1 where rowid = (select rowid from ledger where type='receipt' "
                                    "order by abs(credit) desc limit 1)").arg(exact(credit - now)));
    }
    file.execute(QStringLiteral("insert into closedyears(name, closed, file) values(%1, %2, %3)")
                     .arg(sqlLiteral(plan.name), date, sqlLiteral(QStringLiteral("years/") + QFileInfo(plan.yearFile).fileName())));
}

// The year's file ends its log with the close; returns the hash the log ends on.
QByteArray noteTheClose(const QString &yearFile, const YearClosePlan &plan)
{
    SqliteFile file(yearFile, SqliteFile::Access::ReadWrite);
    writeEditLogNote(file.handle(), QStringLiteral("close"),
                     QStringLiteral("The year %1 is closed: this file keeps its books and is not written again.").arg(plan.name));
    return lastEditLogHash(file.handle());
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

QString FinancialYear::nameOf(const QDate &day) const
{
    const int first = day < QDate(day.year(), startMonth, startDay) ? day.year() - 1 : day.year();
    return QStringLiteral("%1-%2").arg(first).arg((first + 1) % 100, 2, 10, QLatin1Char('0'));
}

QString YearClosePlan::refusal() const
{
    if (!unsettled.isEmpty()) {
        QStringList shown = unsettled.mid(0, 20);
        if (unsettled.size() > 20)
            shown << QStringLiteral("and %1 more").arg(unsettled.size() - 20);
        return QStringLiteral("The year cannot be closed while invoices or vouchers are open. Settle (End Inventory) or cancel "
                              "these first:\n") + shown.join(QLatin1Char('\n'));
    }
    if (!findings.isEmpty())
        return QStringLiteral("The year cannot be closed until the check finds nothing (vantrel-check):\n") + findings;
    return QString();
}

QString YearClosePlan::question() const
{
    return QStringLiteral("Close the year %1?\n\n"
                          "%2 invoice(s), %3 voucher(s), %4 receipt(s) and %5 payment(s) go into %6, which is never written again.\n"
                          "%7 stock lot(s) that hold stock stay as they are; %8 without stock go.\n"
                          "The ledger starts again with opening rows for %9 account(s), carrying the balance %10.\n"
                          "Invoices, vouchers, receipts and payments are numbered from 1 again.\n"
                          "A backup is taken first.")
        .arg(name)
        .arg(invoices)
        .arg(vouchers)
        .arg(receipts)
        .arg(payments)
        .arg(QDir::toNativeSeparators(yearFile))
        .arg(lotsKept)
        .arg(lotsDropped)
        .arg(accounts)
        .arg(balance);
}

YearClosePlan planYearClose(const QString &database, const FinancialYear &year, const QDate &today)
{
    YearClosePlan plan;
    {
        SqliteFile file(database, SqliteFile::Access::ReadOnly);
        const QDate newest = newestDate(file);
        plan.name = year.nameOf(newest.isValid() ? newest : today);
        const auto count = [&file](const char *sql) { return int(file.number(QLatin1String(sql))); };
        plan.invoices = count("select count(*) from salesmain");
        plan.vouchers = count("select count(*) from purchasemain");
        plan.receipts = count("select count(*) from ledger where type='receipt'");
        plan.payments = count("select count(*) from ledger where type='payment'");
        plan.lotsDropped = count("select count(*) from stock where stk = 0");
        plan.lotsKept = count("select count(*) from stock") - plan.lotsDropped;
        plan.accounts = count("select count(distinct coalesce(ac, '')) from ledger");
        const float credit = toSingle(file.number(QStringLiteral("select sum(credit) from ledger where type='receipt'")));
        const float debit = toSingle(file.number(QStringLiteral("select sum(debit) from ledger where type='payment'")));
        plan.balance = singleText(toSingle(credit <= debit ? double(debit) - double(credit) : double(credit) - double(debit)));
        file.eachRow(QStringLiteral("select 'sales invoice ' || invoice || ' (' || trans || ') of ' || party from sales where status='u' "
                                    "union select 'purchase voucher ' || pono || ' (' || trans || ') of ' || party from purchase where status='u'"),
                     [&plan](const SqliteRow &row) { plan.unsettled << row.text(0); });
    }
    QString name = plan.name;
    for (int n = 2; QFileInfo::exists(QDir(yearsFolder(database)).filePath(name + QStringLiteral(".accdb"))); ++n)
        name = plan.name + QStringLiteral("-%1").arg(n);
    plan.name = name;
    plan.yearFile = QDir(yearsFolder(database)).filePath(name + QStringLiteral(".accdb"));
    const CheckReport report = checkShopFile(database, CheckDepth::Full);
    if (!report.clean())
        plan.findings = report.text();
    return plan;
}

void closeYear(const QString &database, const YearClosePlan &plan, const QDateTime &now, const QString &dateText,
               const std::function<void(int)> &progress)
{
    const auto done = [&progress](int percent) {
        if (progress)
            progress(percent);
    };
    if (!plan.possible())
        throw UnhandledError(plan.refusal());
    finishInterruptedClose(database);
    Backups(database, QFileInfo(database).absoluteDir().filePath(QStringLiteral("backups"))).take(now);
    done(20);
    if (!QDir().mkpath(yearsFolder(database)))
        throw UnhandledError(QStringLiteral("Cannot make the folder %1").arg(yearsFolder(database)));
    const QString part = plan.yearFile + QStringLiteral(".part"), next = newContents(database);
    removeUnfinished(part);
    removeUnfinished(next);
    Backups::copyToNewFile(database, part);
    const QByteArray yearsLastHash = noteTheClose(part, plan);
    done(40);
    Backups::copyToNewFile(database, next);
    {
        SqliteFile file(next, SqliteFile::Access::ReadWrite);
        file.execute(QStringLiteral("begin immediate"));
        file.execute(dropEditLogTriggersText());
        carryForward(file, plan, dateText);
        restartEditLog(file, plan, yearsLastHash);
        file.execute(QStringLiteral("commit"));
    }
    done(60);
    // The moment of the close: until here the database is as it was.
    Backups::copyInto(next, database);
    done(90);
    finishInterruptedClose(database);
    done(100);
}

void finishInterruptedClose(const QString &database)
{
    removeUnfinished(newContents(database));
    const QDir years(yearsFolder(database));
    for (const QString &journal : years.entryList({QStringLiteral("*.accdb.part-*")}, QDir::Files))
        if (!QFileInfo::exists(years.filePath(journal.section(QLatin1Char('-'), 0, -2))))
            QFile::remove(years.filePath(journal));
    const QStringList parts = years.entryList({QStringLiteral("*.accdb.part")}, QDir::Files);
    if (parts.isEmpty())
        return;
    QStringList closed;
    {
        SqliteFile file(database, SqliteFile::Access::ReadOnly);
        closed = file.firstColumn(QStringLiteral("select name from closedyears"));
    }
    for (const QString &part : parts) {
        const QString name = part.chopped(int(qstrlen(".accdb.part")));
        const QString path = years.filePath(part), final = years.filePath(name + QStringLiteral(".accdb"));
        if (!closed.contains(name, Qt::CaseInsensitive)) {
            removeUnfinished(path);
        } else if (!QFile::rename(path, final) || !QFile::setPermissions(final, QFile::ReadOwner)) {
            throw UnhandledError(QStringLiteral("Cannot put the closed year %1 in place").arg(final));
        }
    }
}

QList<QPair<QString, QString>> closedYears(const QString &database)
{
    QList<QPair<QString, QString>> years;
    const QDir folder(yearsFolder(database));
    for (const QString &name : folder.entryList({QStringLiteral("*.accdb")}, QDir::Files, QDir::Name))
        years << qMakePair(name.chopped(6), folder.filePath(name));
    return years;
}

} // namespace vantrel
