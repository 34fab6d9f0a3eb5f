// The shop's years: files of every schema that has landed are brought to the current one, with a
// checked backup first and in one transaction; a newer file is refused untouched; the start warns
// when a 16-bit series nears its end.
#include "care/backups.h"
#include "care/sqlitefile.h"
#include "data/schema.h"
#include "data/unhandlederror.h"
#include "support/testmain.h"
#include "support/testshop.h"
#include "years/schemaupgrade.h"
#include "years/serieswarning.h"

#include <QDir>
#include <QTemporaryDir>

using namespace vantrel;

namespace {

// What turns a file of the current schema back into the one that landed as each version (the
// SQL of each later step undone, newest first).
const QStringList Downgrades = {
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

QStringList contentsOf(test::TestShop &shop)
{
    QStringList rows;
    for (const char *table : {"companymaster", "productmaster", "suppliermaster", "salesmain", "sales", "purchasemain", "purchase", "stock", "ledger"})
        for (const QStringList &row : shop.rows(QStringLiteral("select * from %1").arg(QLatin1String(table))))
            rows << row.join(QLatin1Char('|'));
    return rows;
}

} // namespace

class YearsTest : public QObject {
    Q_OBJECT
private slots:
    void everyLandedSchemaUpgradesWithItsDataKept()
    {
        QTemporaryDir fresh;
        createDatabaseFile(fresh.filePath("vantrel.accdb"));
        const QStringList current = schemaOf(fresh.filePath("vantrel.accdb"));
        for (int version = 1; version <= CurrentSchemaVersion; ++version) {
            test::TestShop shop(test::TestShop::Filled);
            const QString path = QDir(shop.directory()).filePath("vantrel.accdb");
            {
                SqliteFile file(path, SqliteFile::Access::ReadWrite);
                downgrade(file, version);
                QCOMPARE(schemaVersion(file), version);
            }
            const QStringList before = contentsOf(shop);
            const QDateTime now(QDate(2026, 11, 24), QTime(8, 0));
            const SchemaUpgrade upgrade = bringToCurrentSchema(path, shop.directory() + "/backups", now);
            QCOMPARE(upgrade.from, version);
            QCOMPARE(schemaOf(path), current);
            QCOMPARE(contentsOf(shop), before);
            QCOMPARE(Backups(path, shop.directory() + "/backups").list().size(), version < CurrentSchemaVersion ? 1 : 0);
            if (upgrade.upgraded()) {
                QCOMPARE(Backups::verify(upgrade.backup), QStringList{"ok"});
                QCOMPARE(schemaVersion(*std::make_unique<SqliteFile>(upgrade.backup, SqliteFile::Access::ReadOnly)), version);
                QVERIFY2(upgrade.notice().startsWith(QStringLiteral("The shop's file was brought from schema %1 to 6").arg(version)), qPrintable(upgrade.notice()));
            }
            // The guards are in force again.
            QVERIFY_THROWS_EXCEPTION(UnhandledError, shop.db().execute("insert into ledger(refno) values('X')"));
        }
    }

    // A step that fails leaves the file at its old version whole; a newer file is refused
    // before anything is written.
    void aFailedUpgradeOrANewerFileChangesNothing()
    {
        test::TestShop shop(test::TestShop::Filled);
        const QString path = QDir(shop.directory()).filePath("vantrel.accdb");
        {
            SqliteFile file(path, SqliteFile::Access::ReadWrite);
            downgrade(file, 2);
            file.execute("create table ledger_credit(a)");
        }
        const QStringList before = schemaOf(path);
        const QDateTime now(QDate(2026, 11, 24), QTime(8, 0));
        QVERIFY_THROWS_EXCEPTION(UnhandledError, bringToCurrentSchema(path, shop.directory() + "/backups", now));
        QCOMPARE(schemaOf(path), before);

        SqliteFile(path, SqliteFile::Access::ReadWrite).execute("drop table ledger_credit; pragma user_version = 7");
        const QStringList newer = schemaOf(path);
        try {
            bringToCurrentSchema(path, shop.directory() + "/later", now);
            QFAIL("a newer file was accepted");
        } catch (const UnhandledError &error) {
            QVERIFY2(error.message().endsWith("was written by a newer Vantrel (schema version 7; this program knows up to 6). "
                                              "Nothing was changed; start the newer program."), qPrintable(error.message()));
        }
        QCOMPARE(schemaOf(path), newer);
        QVERIFY(!QDir(shop.directory() + "/later").exists());
    }

    void theStartWarnsWhenASeriesNearsItsEnd()
    {
        test::TestShop shop(test::TestShop::Filled);
        QCOMPARE(seriesWarning(shop.db()), QString());
        shop.exec("insert into ledger(refno,type) values(30000,'payment'), (30001,'receipt')");
        QCOMPARE(seriesWarning(shop.db()), QStringLiteral("Close the year soon: the receipt numbers are at 30001, 2766 left (the last is 32767)."));
        shop.exec("insert into ledger(refno,type) values(32767,'payment')");
        QCOMPARE(seriesWarning(shop.db()), QStringLiteral("Close the year soon: the receipt numbers are at 30001, 2766 left; "
                                                          "the payment numbers are at 32767, 0 left (the last is 32767)."));
    }
};

VANTREL_TEST_MAIN(YearsTest)
#include "test_years.moc"
