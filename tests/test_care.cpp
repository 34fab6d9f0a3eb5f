// Looking after the shop file: the check, backups and their pruning and restore.
#include "care/backups.h"
#include "support/steps.h"

#include <QFileInfo>
#include <QRandomGenerator>

using namespace vantrel;

namespace {

void damage(const QString &path, qint64 at, qint64 length, char with)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.seek(at < 0 ? file.size() + at : at);
    file.write(QByteArray(int(length < 0 ? file.size() - at : length), with));
}

} // namespace

class TestCare : public QObject {
    Q_OBJECT

private slots:
    // After each of a run of random completed actions the check finds nothing. (What a cut
    // action leaves, and the quick check, are in tests/cases/care.txt.)
    void theCheckFindsNothingAfterCompletedActions()
    {
        test::StepDesk d;
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        for (int action = 0; action < 200 && !QTest::currentTestFailed(); ++action) {
            const QString steps = d.randomAction(random, {"RAM"}, {"8901", "8902", "8903"});
            d.run(steps);
            const CheckReport report = checkShopFile(d.shop.file(), CheckDepth::Full);
            QVERIFY2(report.clean(), qPrintable(QStringLiteral("seed %1, action %2 (%3): %4").arg(seed).arg(action).arg(steps, report.text())));
        }
    }

    // A full disk ends the action with the engine's message; every sale before it stays whole.
    void aFullDiskEndsTheActionNotTheFile()
    {
        test::StepDesk d;
        const int pages = int(SqliteFile(d.shop.file(), SqliteFile::Access::ReadOnly).number("pragma page_count"));
        d.shop.exec(QStringLiteral("pragma max_page_count = %1").arg(pages + 2));
        d.mayEnd = true;
        int completed = 0; // sales, the one the disk ended not counted
        for (; completed < 500 && d.shop.unhandledErrors.isEmpty(); ++completed)
            d.run("start sale C RAM; add 8901 2; add 8902 2");
        --completed;
        QCOMPARE(d.shop.unhandledErrors, QStringList{"database or disk is full"});
        QVERIFY(completed > 0);
        d.shop.exec("pragma max_page_count = 1073741823");
        // The party's unsettled invoice comes back each time, so every sale adds to invoice 1.
        const int lines = d.shop.rows("select count(*) from sales where invoice='1' and trans='C'").first().first().toInt() - 1;
        QVERIFY2(lines >= 2 * completed && lines <= 2 * completed + 2, qPrintable(QString::number(lines)));
        const CheckReport report = checkShopFile(d.shop.file(), CheckDepth::Full);
        QVERIFY2(report.damage.isEmpty(), qPrintable(report.text()));
        for (const Finding &finding : report.traces)
            QVERIFY2(finding.rows.startsWith(QStringLiteral("sales invoice 1 (C)")), qPrintable(report.text()));
    }

    // A lock held past the busy time (whose wait keeps it out of the screens' quick cases) ends the
    // save, which writes nothing; released, saves go on.
    void aLockHeldPastTheBusyTimeEndsTheAction()
    {
        test::StepDesk d;
        d.run("lock; start sale C RAME; add 8901 2; ended database is locked; changed; unlock; add 8901 2");
        d.run("changed sales +1, salesmain +1, stock ~2; checks");
    }

    // A backup holds what was written before it, not an open write, is checked, its owner's alone
    // and whole in itself; a restore keeps the file aside; a damaged file's copy is not kept.
    void aBackupIsACheckedCopyTakenWhileTheProgramWrites()
    {
        test::TestShop shop(test::TestShop::Filled);
        QTemporaryDir folder;
        Backups backups(shop.file(), folder.filePath("backups"));
        SqliteFile other(shop.file(), SqliteFile::Access::ReadWrite);
        other.execute("begin immediate");
        other.execute("insert into salesmain(invoice,trans,netamt) values(51,'C',10)");
        const QString path = backups.take(QDateTime(QDate(2026, 11, 23), QTime(9, 30, 5)));
        other.execute("rollback");

        QCOMPARE(QFileInfo(path).fileName(), QStringLiteral("vantrel-2026-11-23-093005.accdb"));
        QCOMPARE(Backups::verify(path), QStringList{"ok"});
        QCOMPARE(QFileInfo(path).permissions() & 0x0077, QFileDevice::Permissions());
        QVERIFY(!QFileInfo::exists(path + "-wal"));
        QCOMPARE(SqliteFile(path, SqliteFile::Access::ReadOnly).number("select sum(netamt) from salesmain"), 132.5);
        QCOMPARE(backups.list(), QStringList{path});
        shop.exec("insert into salesmain(invoice,trans,netamt) values(52,'C',10)");
        const QString aside = backups.restore(path, QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
        QCOMPARE(QFileInfo(aside).fileName(), QStringLiteral("before-restore-2026-11-23-100000.accdb"));
        shop.exec("insert into salesmain(invoice,trans,netamt) values(53,'C',1)");
        QCOMPARE(shop.rows("select sum(netamt) from salesmain").first().first(), "133.5");
        QCOMPARE(SqliteFile(aside, SqliteFile::Access::ReadOnly).number("select sum(netamt) from salesmain"), 142.5);
        QCOMPARE(Backups::verify(shop.file()), QStringList{"ok"});
        damage(path, 4096, -1, '\x33');
        QVERIFY_THROWS_EXCEPTION(UnhandledError, backups.restore(path, QDateTime(QDate(2026, 11, 23), QTime(11, 0))));
        QCOMPARE(shop.rows("select sum(netamt) from salesmain").first().first(), "133.5");

        const QString file = folder.filePath("damaged.accdb");
        {
            SqliteFile db(file, SqliteFile::Access::Create);
            db.execute("create table t(a text); create index t_a on t(a)");
            db.execute("with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) insert into t select printf('%08d', i) from n");
        }
        damage(file, -3 * 4096 + 100, 2000, '\x5a');
        Backups ofDamaged(file, folder.filePath("more"));
        QVERIFY_THROWS_EXCEPTION(UnhandledError, ofDamaged.take(QDateTime(QDate(2026, 11, 23), QTime(10, 0))));
        QCOMPARE(QDir(folder.filePath("more")).entryList(QDir::Files), QStringList());
    }

    // Four backups a day for a year and a half (at 19:59, 13:59, 7:59 and 1:59), today a Monday:
    // the newest seven, the newest of each day of the last 14 (11/10 to 11/23), of each week met
    // in the last 56 days (to Sunday 10/04) and of each of the last 12 months stay; that is
    // 7 + 12 days + 6 weeks + 11 months.
    void pruningKeepsTheNewestAndOnePerDayWeekAndMonth()
    {
        const QDateTime now(QDate(2026, 11, 23), QTime(20, 0));
        QList<QDateTime> times;
        for (int i = 0; i < 4 * 540; ++i)
            times << now.addSecs(-i * 6 * 3600 - 60);
        const QList<QDateTime> pruned = Backups::prunable(times, now);
        QCOMPARE(times.size() - pruned.size(), 36);
        const auto kept = [&](int month, int day, int hour, int year = 2026) { return !pruned.contains(QDateTime(QDate(year, month, day), QTime(hour, 59))); };
        QVERIFY(kept(11, 22, 7) && !kept(11, 22, 1));              // the newest seven
        QVERIFY(kept(11, 10, 19) && !kept(11, 10, 13) && !kept(11, 9, 19)); // days
        QVERIFY(kept(11, 8, 19) && kept(10, 4, 19) && !kept(9, 27, 19) && !kept(10, 3, 19)); // Sundays, the newest of their weeks
        QVERIFY(kept(10, 31, 19) && kept(12, 31, 19, 2025) && !kept(11, 30, 19, 2025)); // months
    }
};

VANTREL_TEST_MAIN(TestCare)
#include "test_care.moc"
