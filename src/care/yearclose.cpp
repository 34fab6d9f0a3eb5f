#include "yearclose.h"

#include "care/backups.h"
#include "care/serveryearclose.h"
#include "data/serverconnection.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "care/unreadabledates.h"
#include "closedyearfile.h"
#include "cutoff.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "data/unhandlederror.h"
#include "yearcontents.h"

#include <QDir>
#include <QFileInfo>

namespace vantrel {

namespace {

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
            return QStringLiteral("The year %1 is closed already, its books kept in %2.").arg(closed, yearPlaceShown(database, file));
    if (const QString place = newYearPlace(database, name); yearPlaceTaken(database, place))
        return QStringLiteral("%1 is there already; move it away first.").arg(yearPlaceShown(database, place));
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
    const bool server = isServerConnection(database);
    plan.yearFile = newYearPlace(database, plan.name);
    if (server)
        plan.yearFile = yearPlaceShown(database, plan.yearFile);
    plan.cutOffProblem = cutOffProblem(database, year, cutOff, today);
    if (!plan.cutOffProblem.isEmpty())
        return plan;
    {
        const std::unique_ptr<BooksReader> books = openBooksReader(database);
        BooksReader &file = *books;
        for (const UnreadableDate &row : unreadableDates(file))
            plan.unreadable << QStringLiteral("%1: date '%2'").arg(row.document, row.date);
        if (!plan.unreadable.isEmpty())
            return plan;
        const CutOff cut(cutOff, server);
        const auto count = [&file](const QString &sql) { return int(file.number(sql)); };
        const auto counts = [&](const QString &rows, int &closing, int &staying) {
            staying = count("select count(*) from " + rows + " and " + cut.after());
            closing = count("select count(*) from " + rows + " and not " + cut.after());
        };
        counts(QStringLiteral("salesmain where 1 = 1"), plan.invoices, plan.invoicesStaying);
        counts(QStringLiteral("purchasemain where 1 = 1"), plan.vouchers, plan.vouchersStaying);
        counts(QStringLiteral("ledger where type='receipt'"), plan.receipts, plan.receiptsStaying);
        counts(QStringLiteral("ledger where type='payment'"), plan.payments, plan.paymentsStaying);
        plan.lots = count(QStringLiteral("select count(*) from stock"));
        // The accounts as the opening rows group them: a name in several spellings is one.
        plan.accounts = count("select count(*) from (select ac from ledger where not " + cut.after() + " group by ac) accounts");
        const float credit = toSingle(file.number("select sum(" + cut.figure(QStringLiteral("credit")) + ") from ledger where type='receipt' and not " + cut.after()));
        const float debit = toSingle(file.number("select sum(" + cut.figure(QStringLiteral("debit")) + ") from ledger where type='payment' and not " + cut.after()));
        plan.balance = singleText(toSingle(credit <= debit ? double(debit) - double(credit) : double(credit) - double(debit)));
        file.eachRow("select 'sales invoice ' || invoice || ' (' || trans || ') of ' || party from sales where status='u' and not "
                         + cut.salesLine() + " union select 'purchase voucher ' || pono || ' (' || trans || ') of ' || party from purchase "
                         "where status='u' and not " + cut.purchaseLine(),
                     [&plan](const BookRow &row) { plan.unsettled << row.text(0); });
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
    if (isServerConnection(database))
        return closeServerYear(database, plan, now, done);
    finishInterruptedClose(database);
    Backups(database, QFileInfo(database).absoluteDir().filePath(QStringLiteral("backups"))).take(now);
    done(20);
    if (!QDir().mkpath(yearsFolder(database)))
        throw UnhandledError(QStringLiteral("Cannot make the folder %1").arg(yearsFolder(database)));
    const QString part = plan.yearFile + QStringLiteral(".part"), next = newContentsOf(database);
    removeUnfinished(part);
    removeUnfinished(next);
    Backups::copyToNewFile(database, part);
    const QByteArray yearsLastHash = makeClosedYearFile(part, plan);
    done(40);
    Backups::copyToNewFile(database, next);
    buildNewContents(next, plan, ShortDate().text(now.date()), yearsLastHash);
    done(60);
    // The moment of the close: until here the database is as it was.
    Backups::copyInto(next, database);
    done(90);
    finishInterruptedClose(database);
    done(100);
}

} // namespace vantrel
