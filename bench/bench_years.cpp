// The shop's years on a decade of data: the upgrade of a file of the first schema to the current
// one (budget 10 s).
//
// Usage: bench_years [--data DIR]    the decade file is made once into DIR (default bench-data),
//                                    the same file bench_operator uses
#include "care/sqlitefile.h"
#include "data/unhandlederror.h"
#include "shopfile.h"
#include "years/schemaupgrade.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cstdio>

using namespace vantrel;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QStringList args = app.arguments();
    const QString data = args.indexOf("--data") > 0 ? args.value(args.indexOf("--data") + 1) : QDir::currentPath() + "/bench-data";
    try {
        const QString decade = data + "/decade-1.accdb", work = data + "/years";
        if (!QFile::exists(decade)) {
            std::printf("making the decade file (once; kept in %s)...\n", qPrintable(data));
            QDir().mkpath(data);
            bench::makeShopFile(decade, bench::decadeSize());
        }
        QDir(work).removeRecursively();
        QDir().mkpath(work);
        const QString file = work + "/vantrel.accdb";
        QFile::copy(decade, file);
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
        {
            // The first schema: no statistics, no sum indexes, no guards, no recorded version.
            SqliteFile old(file, SqliteFile::Access::ReadWrite);
            for (const QString &trigger : old.firstColumn("select name from sqlite_schema where type = 'trigger'"))
                old.execute("drop trigger " + trigger);
            old.execute("drop index ledger_credit; drop index ledger_debit; drop table sqlite_stat1; pragma user_version = 0; vacuum");
        }
        QElapsedTimer timer;
        timer.start();
        const SchemaUpgrade upgrade = bringToCurrentSchema(file, work + "/backups", QDateTime::currentDateTime());
        const double seconds = double(timer.elapsed()) / 1000;
        std::printf("| upgrade of the decade file (%.0f MB) from schema %d to %d, backup and check included | %.1f s | budget 10 s | %s |\n",
                    double(QFileInfo(file).size()) / 1e6, upgrade.from, upgrade.to, seconds, seconds <= 10 ? "yes" : "NO");
        QDir(work).removeRecursively();
        return 0;
    } catch (const UnhandledError &error) {
        std::fprintf(stderr, "bench_years: %s\n", qPrintable(error.message()));
        return 1;
    }
}
