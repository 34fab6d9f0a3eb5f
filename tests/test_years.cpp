// The shop's years: schema upgrades and the year close. (The close's figures and the start's warning
// of a series' end are in tests/cases/years.txt.)
#include "care/backups.h"
#include "data/records.h"
#include "care/schemaupgrade.h"
#include "care/shoppresence.h"
#include "care/yearclose.h"
#include "support/steps.h"


using namespace vantrel;

namespace {

// What turns a file of the current schema back into each version that landed, newest first.
const QStringList Downgrades = {
    "select 'drop trigger ' || name from sqlite_schema where name like '%log%' and type = 'trigger' "
    "union all values ('drop table editlog'), ('pragma user_version = 6')",          // to 6: no edit log
    "drop table closedyears; pragma user_version = 5",                                // to 5: no closed years
    "pragma user_version = 0",                                                        // to 4: the version not recorded
    "select 'drop trigger ' || name from sqlite_schema where type = 'trigger'",         // to 3: no numbering guards
    "drop index ledger_credit; drop index ledger_debit; delete from sqlite_stat1 where idx like 'ledger_%it'", // to 2
    "drop table sqlite_stat1",                                                        // to 1: no planner statistics
};

void downgrade(SqliteFile &file, int to)
{
    for (int version = CurrentSchemaVersion - 1; version >= to; --version) {
        const QString sql = Downgrades[CurrentSchemaVersion - 1 - version];
        for (const QString &statement : sql.startsWith(QLatin1String("select")) ? file.firstColumn(sql) : QStringList{sql})
            file.execute(statement);
    }
}

// The schema as the engine holds it, the planner's statistics and the recorded version.
QStringList schemaOf(const QString &path)
{
    SqliteFile file(path, SqliteFile::Access::ReadOnly);
    return file.firstColumn("select type || ' ' || name || ': ' || coalesce(sql, '') from sqlite_schema order by name")
        + file.firstColumn("select tbl || ' ' || idx || ' ' || stat from sqlite_stat1 order by idx")
        + file.firstColumn("pragma user_version");
}

} // namespace

class YearsTest : public QObject {
    Q_OBJECT
private slots:
    void everyLandedSchemaUpgradesWithItsDataKept()
    {
        const QStringList current = schemaOf(test::TestShop().file());
        for (int version = 1; version <= CurrentSchemaVersion; ++version) {
            test::StepDesk d;
            test::TestShop &shop = d.shop;
            const QString path = shop.file();
            d.run("changed");
            {
                SqliteFile file(path, SqliteFile::Access::ReadWrite);
                downgrade(file, version);
                QCOMPARE(schemaVersion(file), version);
            }
            const QDateTime now(QDate(2026, 11, 24), QTime(8, 0));
            QStringList told; // what the window says, from before the backup on
            const SchemaUpgrade upgrade = bringToCurrentSchema(path, shop.directory() + "/backups", now, [&told](const QString &doing, int percent) {
                told << QString::number(percent) + ' ' + doing;
            });
            QCOMPARE(told.size(), version < CurrentSchemaVersion ? 4 : 0);
            if (!told.isEmpty())
                QCOMPARE(told.first(), QStringLiteral("0 Bringing the shop's file from schema %1 to %2: taking a backup first...").arg(version).arg(CurrentSchemaVersion));
            QCOMPARE(upgrade.from, version);
            QCOMPARE(schemaOf(path), current);
            d.run("changed");
            QCOMPARE(Backups(path, shop.directory() + "/backups").list().size(), version < CurrentSchemaVersion ? 1 : 0);
            if (upgrade.upgraded()) {
                QCOMPARE(Backups::verify(upgrade.backup), QStringList{"ok"});
                QCOMPARE(schemaVersion(*std::make_unique<SqliteFile>(upgrade.backup, SqliteFile::Access::ReadOnly)), version);
                QVERIFY2(upgrade.notice().startsWith(QStringLiteral("The shop's file was brought from schema %1 to %2").arg(version).arg(CurrentSchemaVersion)), qPrintable(upgrade.notice()));
            }
            QCOMPARE(shop.rows("select action, json_extract(new, '$.note') from editlog where id = (select max(id) from editlog where action = 'start')").first(),
                     (QStringList{"start", version < CurrentSchemaVersion ? QStringLiteral("The file was brought from schema %1 to %2; the edit log starts here, "
                                                                                           "with the rows the file held.").arg(version).arg(CurrentSchemaVersion)
                                                                         : QStringLiteral("A new shop file: the edit log starts with it.")}));
            QVERIFY2(checkShopFile(path, CheckDepth::Full).clean(), qPrintable(checkShopFile(path, CheckDepth::Full).text()));
            // The guards are in force again.
            QVERIFY_THROWS_EXCEPTION(UnhandledError, shop.db().execute("insert into ledger(refno) values('X')"));
        }
    }

    void aFailedUpgradeOrANewerFileChangesNothing()
    {
        test::TestShop shop(test::TestShop::Filled);
        const QString path = shop.file();
        {
            SqliteFile file(path, SqliteFile::Access::ReadWrite);
            downgrade(file, 2);
            file.execute("create table ledger_credit(a)");
        }
        const QStringList before = schemaOf(path);
        const QDateTime now(QDate(2026, 11, 24), QTime(8, 0));
        QVERIFY_THROWS_EXCEPTION(UnhandledError, bringToCurrentSchema(path, shop.directory() + "/backups", now));
        QCOMPARE(schemaOf(path), before);

        SqliteFile(path, SqliteFile::Access::ReadWrite).execute("drop table ledger_credit; pragma user_version = 8");
        const QStringList newer = schemaOf(path);
        const QString refused = test::errorOf([&] { bringToCurrentSchema(path, shop.directory() + "/later", now); });
        QVERIFY2(refused.endsWith("was written by a newer Vantrel (schema version 8; this program knows up to 7). Nothing was changed; start the newer program."),
                 qPrintable(refused));
        QCOMPARE(schemaOf(path), newer);
        QVERIFY(!QDir(shop.directory() + "/later").exists());
    }

    // At the wall (32,767 payments), after the close the next credit line books payment 1 with the
    // balance of both years' receipts and payments; the receipts' total is carried to the paisa.
    // The closed year's file is its owner's to read, sound, and ends its log with the close,
    // from which the shop's log starts again. Another copy of the program keeps the close off.
    void aCloseAtTheWallBooksPaymentOneWithTheBalanceOfBothYears()
    {
        test::StepDesk d;
        const QString path = d.shop.file();
        d.run("exec update sales set status='p'; exec update purchase set status='p'; exec delete from ledger");
        d.shop.exec("with recursive n(i) as (select 1 union all select i + 1 from n where i < 32767) insert into ledger(refno,dat,ac,debit,type,balance) "
                    "select i, '11/20/2026', 'RAM', (i % 997) * 0.01 + 1, 'payment', 0 from n");
        d.shop.exec("with recursive n(i) as (select 1 union all select i + 1 from n where i < 3000) insert into ledger(refno,dat,ac,credit,accnm,type,balance) "
                    "select i, '11/20/2026', 'RAVI MEDICALS', (i % 89) * 0.37 + 0.01, 'ACC ' || (i % 20), 'receipt', 0 from n");
        d.shop.services().whyTheShopIsShared = [] { return QStringLiteral("Another copy has it."); };
        d.run("open closeyear; said Another copy has it.");
        d.shop.services().whyTheShopIsShared = nullptr;
        d.run("today 04/01/2027; yes; open closeyear; start sale D RAME; add 8901 1");
        const QString year = closedYears(path).value(0).second;
        QCOMPARE(year, QDir(d.shop.directory()).filePath("years/2026-27.accdb"));
        QCOMPARE(QFile::permissions(year) & 0x7077, QFileDevice::ReadOwner);
        QVERIFY(checkShopFile(path, CheckDepth::Full).clean() && checkShopFile(year, CheckDepth::Full).clean());
        SqliteFile closed(year, SqliteFile::Access::ReadOnly);
        QCOMPARE(closed.number("select sum(netamt) from salesmain"), 132.5);
        const QStringList yearEnds = closed.firstColumn("select action || ',' || hash from editlog order by id desc limit 1");
        QCOMPARE(yearEnds.value(0).section(',', 0, 0), QStringLiteral("close"));
        d.run("sql select action || ',' || json_extract(new, '$.closedYearLastHash') from editlog order by id limit 1 => start," + yearEnds.value(0).section(',', 1));
        const double credits = closed.number("select sum(credit) from ledger where type='receipt'");
        const double carried = d.shop.db().query("select sum(credit) as c from ledger where type='receipt'").number("c");
        QVERIFY2(std::round(carried * 100) == std::round(credits * 100), qPrintable(QString::number(carried, 'g', 17) + " against " + QString::number(credits, 'g', 17)));
        const float credit = toSingle(credits), debit = toSingle(closed.number("select sum(debit) from ledger where type='payment'") + 12.5);
        d.run("sql select refno,balance from ledger where type='payment' and refno>0 => 1," + singleText(toSingle(std::abs(double(credit) - double(debit)))));
    }

    // A close cut off at any step leaves, after the next start, the old file or the new pair.
    void aCloseCutOffLeavesTheOldFileOrTheNewPair()
    {
        for (const int cutAt : {20, 40, 60, 90}) {
            test::TestShop shop(test::TestShop::Filled);
            shop.exec("update sales set status='p'");
            shop.exec("update purchase set status='p'");
            const QString path = shop.file();
            const YearClosePlan plan = planYearClose(path, FinancialYear{}, QDate(2027, 3, 31), QDate(2027, 4, 1));
            QVERIFY_THROWS_EXCEPTION(UnhandledError, closeYear(path, plan, QDateTime(QDate(2027, 4, 1), QTime(18, 0)), [cutAt](int percent) {
                if (percent == cutAt)
                    throw UnhandledError("cut off");
            }));
            finishInterruptedClose(path);
            const bool closed = cutAt == 90;
            QCOMPARE(QList<qsizetype>({shop.rows("select * from salesmain").size(), closedYears(path).size(), QDir(shop.directory() + "/years").entryList(QDir::Files).size()}),
                     closed ? QList<qsizetype>({0, 1, 1}) : QList<qsizetype>({3, 0, 0}));
            QVERIFY(!QFile::exists(path + ".new") && checkShopFile(path, CheckDepth::Full).clean());
        }
        ShopPresence one(QDir::tempPath() + "/presence.accdb"), other(QDir::tempPath() + "/presence.accdb");
        QVERIFY(one.othersPresent() && other.othersPresent() && one.problem().isEmpty());
        QCOMPARE(one.whyShared(), QStringLiteral("Another copy of Vantrel has the shop open. Close it first, then close the year."));
        { ShopPresence third(QDir::tempPath() + "/alone.accdb"); QVERIFY(!third.othersPresent() && third.whyShared().isEmpty()); }
        // No lock file: said, and the close refused for it, while a start still finishes a close.
        const ShopPresence blind(QDir::tempPath() + "/no such folder/vantrel.accdb");
        QCOMPARE(blind.problem(), QDir::tempPath() + "/no such folder/vantrel.accdb.open cannot be made (No such file or directory): another "
                                  "copy of Vantrel that has the shop open cannot be seen, so the year cannot be closed.");
        QVERIFY(!blind.othersPresent() && blind.whyShared() == blind.problem());
    }
};

VANTREL_TEST_MAIN(YearsTest)
#include "test_years.moc"
