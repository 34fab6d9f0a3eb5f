#include "yearclose.h"

#include "data/editlog.h"
#include "care/backups.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "care/unreadabledates.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "data/transaction.h"
#include "data/unhandlederror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace vantrel {

namespace {

const char *const Opening = "OPENING BALANCE";

QString yearsFolder(const QString &database) { return QFileInfo(database).absoluteDir().filePath(QStringLiteral("years")); }
QString newContents(const QString &database) { return database + QStringLiteral(".new"); }

// A file the engine was writing when a kill came, with its journals.
void removeUnfinished(const QString &path)
{
    for (const char *suffix : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
}

// An amount as an operator types it: rounded to the paisa, in its shortest text; null stays null.
QString paisa(const SqliteRow &row, int column)
{
    return row.isNull(column) ? QStringLiteral("null") : doubleText(std::round(row.number(column) * 100) / 100);
}

// Which rows stay in the shop file at a close up to a cut-off: the documents dated after it. A
// line stays with a header of its own that stays; a line without one, and a row without a date,
// close with the year. The conditions need the connection's cdate (registerSqlFunctions).
struct CutOff {
    explicit CutOff(const QDate &day) : iso(day.toString(Qt::ISODate)) {}
    QString iso;
    // Whether the date in COLUMN lies after the cut-off.
    QString after(const QString &column = QStringLiteral("dat")) const { return "coalesce(cdate(" + column + ") > '" + iso + "', 0)"; }
    QString salesLine() const
    {
        return "exists (select 1 from salesmain m where m.invoice = sales.invoice and m.trans = sales.trans and " + after(QStringLiteral("m.dat")) + ")";
    }
    QString purchaseLine() const
    {
        return "exists (select 1 from purchasemain m where m.pono = purchase.pono and m.trans = purchase.trans and " + after(QStringLiteral("m.dat")) + ")";
    }
    // Deletes from FILE what closes (STAYING true: the shop file's new contents are what stays)
    // or what stays (false: the closed year's file).
    void keepOnly(SqliteFile &file, bool staying) const
    {
        const QString no = staying ? QStringLiteral("not ") : QString();
        file.execute("delete from sales where " + no + salesLine() + "; delete from salesmain where " + no + after()
                     + "; delete from purchase where " + no + purchaseLine() + "; delete from purchasemain where " + no + after()
                     + "; delete from ledger where " + no + after());
    }
};

// The ledger's opening rows for what closes: one receipt per receiving account carrying its
// receipts, one payment carrying the payments, and per account an "opening" row with its
// receipts and payments; every amount to the paisa, each with the overall balance at the cut-off.
QStringList openingRows(SqliteFile &file, const CutOff &cut, const YearClosePlan &plan)
{
    QStringList rows;
    const QString closing = "not " + cut.after(), opening = sqlLiteral(QLatin1String(Opening)), date = sqlLiteral(plan.openingDate()),
                  balance = sqlLiteral(plan.balance);
    const auto name = [](const SqliteRow &row, int column) { return row.isNull(column) ? QStringLiteral("null") : sqlLiteral(row.text(column)); };
    file.eachRow("select accnm, sum(credit) from ledger where type='receipt' and " + closing + " group by accnm", [&](const SqliteRow &row) {
        rows << QStringLiteral("(0,%1,%2,%3,null,%4,'receipt',%5)").arg(date, opening, paisa(row, 1), name(row, 0), balance);
    });
    file.eachRow("select sum(debit) from ledger where type='payment' and " + closing + " having count(*) > 0", [&](const SqliteRow &row) {
        rows << QStringLiteral("(0,%1,%2,null,%3,null,'payment',%4)").arg(date, opening, paisa(row, 0), balance);
    });
    file.eachRow("select ac, sum(credit), sum(debit) from ledger where " + closing + " group by ac", [&](const SqliteRow &row) {
        rows << QStringLiteral("(0,%1,%2,%3,%4,null,'opening',%5)").arg(date, name(row, 0), paisa(row, 1), paisa(row, 2), balance);
    });
    return rows;
}

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

// The closed year's file keeps the documents up to the cut-off (those after it are deleted
// there through the log, as the program's) and ends its log with the close; returns the hash
// the log ends on.
QByteArray closeTheYearsFile(const QString &yearFile, const YearClosePlan &plan)
{
    SqliteFile file(yearFile, SqliteFile::Access::ReadWrite);
    registerSqlFunctions(file.handle(), ShortDate());
    if (const QString failed = attachEditLog(file.handle()); !failed.isEmpty())
        throw UnhandledError(failed);
    CutOff(plan.cutOff).keepOnly(file, false);
    writeEditLogNote(file.handle(), QStringLiteral("close"),
                     QStringLiteral("The year %1 is closed: this file keeps its books up to %2 and is not written again.")
                         .arg(plan.name, ShortDate().text(plan.cutOff)));
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

// Why a close up to CUTOFF cannot be: not a year's last day, after today, or a year already closed.
QString cutOffProblem(const QString &database, const FinancialYear &year, const QDate &cutOff, const QDate &today)
{
    if (!year.isYearEnd(cutOff))
        return QStringLiteral("%1 is not the last day of a financial year (the year starts on %2).")
            .arg(ShortDate().text(cutOff), QDate(2000, year.startMonth, year.startDay).toString(QStringLiteral("d MMMM")));
    if (cutOff > today)
        return QStringLiteral("The year ending %1 has not ended yet.").arg(ShortDate().text(cutOff));
    const QString name = year.nameOf(cutOff);
    for (const auto &[closed, file] : closedYears(database))
        if (closed.left(7) >= name)
            return QStringLiteral("The year %1 is closed already, its books kept in %2.").arg(closed, QDir::toNativeSeparators(file));
    return QString();
}

} // namespace

QString YearClosePlan::refusal() const
{
    const auto listed = [](const QStringList &items) {
        QStringList shown = items.mid(0, 20);
        if (items.size() > 20)
            shown << QStringLiteral("and %1 more").arg(items.size() - 20);
        return shown.join(QLatin1Char('\n'));
    };
    if (!cutOffProblem.isEmpty())
        return QStringLiteral("The year cannot be closed: ") + cutOffProblem;
    if (!unreadable.isEmpty())
        return QStringLiteral("The year cannot be closed while dates cannot be read (Tools > Correct a Date...):\n") + listed(unreadable);
    if (!unsettled.isEmpty())
        return QStringLiteral("The year cannot be closed while invoices or vouchers are open. Settle (End Inventory) or cancel "
                              "these first:\n") + listed(unsettled);
    if (!findings.isEmpty())
        return QStringLiteral("The year cannot be closed until the check finds nothing (vantrel-check):\n") + findings;
    return QString();
}

QString YearClosePlan::question() const
{
    const bool nothingStays = invoicesStaying + vouchersStaying + receiptsStaying + paymentsStaying == 0;
    return QStringLiteral("Close the year %1, up to %2?\n\n"
                          "%3 invoice(s), %4 voucher(s), %5 receipt(s) and %6 payment(s) dated up to %2 go into %7, which is never written again.\n"
                          "%8 invoice(s), %9 voucher(s), %10 receipt(s) and %11 payment(s) dated after it stay, with their numbers.\n"
                          "Every stock lot (%12) stays as it is.\n"
                          "The ledger starts with opening rows dated %13 for %14 account(s), carrying the balance %15.\n"
                          "%16\n"
                          "A backup is taken first.")
        .arg(name, ShortDate().text(cutOff))
        .arg(invoices)
        .arg(vouchers)
        .arg(receipts)
        .arg(payments)
        .arg(QDir::toNativeSeparators(yearFile))
        .arg(invoicesStaying)
        .arg(vouchersStaying)
        .arg(receiptsStaying)
        .arg(paymentsStaying)
        .arg(lots)
        .arg(openingDate())
        .arg(accounts)
        .arg(balance,
             nothingStays ? QStringLiteral("Invoices, vouchers, receipts and payments are numbered from 1 again.")
                          : QStringLiteral("Each series goes on after the highest number that stays; a series with nothing left starts at 1 again."));
}

QString YearClosePlan::openingDate() const { return ShortDate().text(cutOff.addDays(1)); }

YearClosePlan planYearClose(const QString &database, const FinancialYear &year, const QDate &cutOff, const QDate &today)
{
    YearClosePlan plan;
    plan.cutOff = cutOff;
    plan.name = year.nameOf(cutOff);
    plan.yearFile = QDir(yearsFolder(database)).filePath(plan.name + QStringLiteral(".accdb"));
    plan.cutOffProblem = cutOffProblem(database, year, cutOff, today);
    if (!plan.cutOffProblem.isEmpty())
        return plan;
    {
        SqliteFile file(database, SqliteFile::Access::ReadOnly);
        for (const UnreadableDate &row : unreadableDates(file))
            plan.unreadable << QStringLiteral("%1: date '%2'").arg(row.document, row.date);
        if (!plan.unreadable.isEmpty())
            return plan;
        registerSqlFunctions(file.handle(), ShortDate());
        const CutOff cut(cutOff);
        const auto count = [&file](const QString &sql) { return int(file.number(sql)); };
        const auto counts = [&](const QString &rows, int &closing, int &staying) {
            staying = count("select count(*) from " + rows + " and " + cut.after());
            closing = count("select count(*) from " + rows + " and not " + cut.after());
        };
        counts(QStringLiteral("salesmain where 1"), plan.invoices, plan.invoicesStaying);
        counts(QStringLiteral("purchasemain where 1"), plan.vouchers, plan.vouchersStaying);
        counts(QStringLiteral("ledger where type='receipt'"), plan.receipts, plan.receiptsStaying);
        counts(QStringLiteral("ledger where type='payment'"), plan.payments, plan.paymentsStaying);
        plan.lots = count(QStringLiteral("select count(*) from stock"));
        plan.accounts = count("select count(distinct coalesce(ac, '')) from ledger where not " + cut.after());
        const float credit = toSingle(file.number("select sum(credit) from ledger where type='receipt' and not " + cut.after()));
        const float debit = toSingle(file.number("select sum(debit) from ledger where type='payment' and not " + cut.after()));
        plan.balance = singleText(toSingle(credit <= debit ? double(debit) - double(credit) : double(credit) - double(debit)));
        file.eachRow("select 'sales invoice ' || invoice || ' (' || trans || ') of ' || party from sales where status='u' and not "
                         + cut.salesLine() + " union select 'purchase voucher ' || pono || ' (' || trans || ') of ' || party from purchase "
                         "where status='u' and not " + cut.purchaseLine(),
                     [&plan](const SqliteRow &row) { plan.unsettled << row.text(0); });
    }
    const CheckReport report = checkShopFile(database, CheckDepth::Full);
    if (!report.clean())
        plan.findings = report.text();
    return plan;
}

void closeYear(const QString &database, const YearClosePlan &plan, const QDateTime &now, const std::function<void(int)> &progress)
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
    const QByteArray yearsLastHash = closeTheYearsFile(part, plan);
    done(40);
    Backups::copyToNewFile(database, next);
    {
        SqliteFile file(next, SqliteFile::Access::ReadWrite);
        registerSqlFunctions(file.handle(), ShortDate());
        Transaction transaction(file.handle());
        file.execute(dropEditLogTriggersText());
        carryForward(file, plan, ShortDate().text(now.date()));
        restartEditLog(file, plan, yearsLastHash);
        transaction.commit();
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
