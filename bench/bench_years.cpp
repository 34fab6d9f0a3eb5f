// The shop's years: the full check of a year's file with its edit log (budget 30 s), closing a
// year of a busy shop (30 s, progress shown), opening one of ten closed years (300 ms) and
// upgrading a decade file of the first schema (10 s).
//
// Usage: bench_years [--data DIR]    the year and decade files are made once into DIR (default
//                                    bench-data; the decade file is bench_operator's)
#include "app/mainwindow.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/database.h"
#include "data/unhandlederror.h"
#include "shopfile.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"
#include "care/schemaupgrade.h"
#include "care/yearclose.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cstdio>

using namespace vantrel;

namespace {

// A fresh copy of the shop file made once at DATA/NAME-1.accdb, as DIRECTORY/vantrel.accdb.
QString workCopy(const QString &data, const bench::ShopSize &size, const QString &directory)
{
    const QString made = data + QStringLiteral("/%1-1.accdb").arg(QLatin1String(size.name));
    if (!QFile::exists(made)) {
        std::printf("making the %s file (once; kept in %s)...\n", size.name, qPrintable(data));
        QDir().mkpath(data);
        bench::makeShopFile(made, size);
    }
    QDir(directory).removeRecursively();
    QDir().mkpath(directory);
    const QString file = directory + "/vantrel.accdb";
    QFile::copy(made, file);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    return file;
}

void row(const char *what, double seconds, double budget)
{
    std::printf("| %-78s | %7.2f s | %5.1f s | %-3s |\n", what, seconds, budget, seconds <= budget ? "yes" : "NO");
}

class QuietDialogs final : public Dialogs {
    void inform(const QString &) override {}
    bool ask(const QString &) override { return false; }
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QStringList args = app.arguments();
    const QString data = args.indexOf("--data") > 0 ? args.value(args.indexOf("--data") + 1) : QDir::currentPath() + "/bench-data";
    try {
        std::printf("| %-78s | %9s | %7s | ok  |\n|%s|-----------|---------|-----|\n", "action", "time", "budget", QByteArray(80, '-').constData());
        // Closing a year: its documents settled first, then the plan (with the full check) and the close.
        const QString work = data + "/years";
        const QString year = workCopy(data, bench::yearSize(), work);
        SqliteFile(year, SqliteFile::Access::ReadWrite).execute("update sales set status='p'; update purchase set status='p'");
        QElapsedTimer timer;
        timer.start();
        const CheckReport report = checkShopFile(year, CheckDepth::Full);
        const double checked = double(timer.elapsed()) / 1000;
        {
            SqliteFile file(year, SqliteFile::Access::ReadOnly);
            row(qPrintable(QStringLiteral("full check of a year's file (%1 MB), its edit log of %2 entries (%3 MB) chained and replayed%4")
                               .arg(QFileInfo(year).size() / 1000000)
                               .arg(file.number("select count(*) from editlog"))
                               .arg(file.number("select sum(pgsize) from dbstat where name like 'editlog%'") / 1e6, 0, 'f', 0)
                               .arg(report.clean() ? QString() : QStringLiteral(": NOT CLEAN"))),
                checked, 30);
        }
        timer.restart();
        int reports = 0;
        const YearClosePlan plan = planYearClose(year, FinancialYear{}, QDate(2027, 3, 31), QDate(2027, 4, 1));
        closeYear(year, plan, QDateTime::currentDateTime(), [&reports](int) { ++reports; });
        row(qPrintable(QStringLiteral("closing a year (%1 invoices, %2 receipts and payments), progress told %3 times")
                           .arg(plan.invoices).arg(plan.receipts + plan.payments).arg(reports)),
            double(timer.elapsed()) / 1000, 30);

        // Ten closed years beside the current one; one of them opened with its register.
        for (int y = 2017; y <= 2025; ++y)
            QFile::copy(plan.yearFile, QStringLiteral("%1/years/%2-%3.accdb").arg(work).arg(y).arg((y + 1) % 100, 2, 10, QLatin1Char('0')));
        QuietDialogs dialogs;
        SystemClock clock;
        timer.restart();
        {
            Database db(QStringLiteral("Data Source=%1;").arg(closedYears(year).first().second), Database::Access::ReadOnly);
            Services services{db, dialogs, clock, work, [](const QString &m) { std::fprintf(stderr, "%s\n", qPrintable(m)); }, {}, {}, {}};
            MainWindow window(services, closedYears(year).first().first, nullptr);
            window.show();
            window.openScreen(QStringLiteral("dwsrpt"));
            QCoreApplication::processEvents();
            row("opening a past year (one of ten) with its date-wise sales register", double(timer.elapsed()) / 1000, 0.3);
        }

        // The upgrade of a decade file of the first schema: no statistics, sum indexes, guards or
        // recorded version.
        const QString decade = workCopy(data, bench::decadeSize(), work + "/decade");
        {
            SqliteFile old(decade, SqliteFile::Access::ReadWrite);
            for (const QString &trigger : old.firstColumn("select name from sqlite_schema where type = 'trigger'"))
                old.execute("drop trigger " + trigger);
            old.execute("drop table editlog; drop index ledger_credit; drop index ledger_debit; drop table sqlite_stat1; pragma user_version = 0; vacuum");
        }
        timer.restart();
        const SchemaUpgrade upgrade = bringToCurrentSchema(decade, work + "/decade/backups", QDateTime::currentDateTime());
        row(qPrintable(QStringLiteral("upgrading the decade file (%1 MB) from schema %2 to %3, backup and check included")
                           .arg(QFileInfo(decade).size() / 1000000).arg(upgrade.from).arg(upgrade.to)),
            double(timer.elapsed()) / 1000, 10);
        QDir(work).removeRecursively();
        return 0;
    } catch (const UnhandledError &error) {
        std::fprintf(stderr, "bench_years: %s\n", qPrintable(error.message()));
        return 1;
    }
}
