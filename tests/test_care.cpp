// Looking after the shop file: the check, backups and their pruning and restore.
#include "care/backups.h"
#include "support/steps.h"

#include <QFileInfo>
#include <QRandomGenerator>

using namespace vantrel;

namespace {

QStringList kinds(const CheckReport &report)
{
    QStringList found;
    for (const Finding &finding : report.traces)
        found << finding.kind;
    found.removeDuplicates();
    found.sort();
    return found;
}

CheckReport check(test::TestShop &shop, CheckDepth depth = CheckDepth::Full) { return checkShopFile(shop.file(), depth); }

// The shared shop at the desk. Each write sent to the file is counted; with a cut set, the
// statement after the cut-th write fails before it reaches the file, as if the program had died
// there: the writes before it stay, none after it is made.
struct CareDesk : test::StepDesk {
    int writes = 0;
    int cut = -1;

    CareDesk()
    {
        shop.db().observeStatements([this](const QString &sql) {
            const QString verb = sql.trimmed().section(QLatin1Char(' '), 0, 0).toLower();
            if (verb != QLatin1String("insert") && verb != QLatin1String("update") && verb != QLatin1String("delete"))
                return;
            if (cut >= 0 && writes >= cut)
                throw UnhandledError(QStringLiteral("cut off"));
            ++writes;
        });
    }
};

const QString NoInvoice = QStringLiteral("Lines without their sales invoice");
const QString NoVoucher = QStringLiteral("Lines without their purchase voucher");
const QString SaleTotal = QStringLiteral("A sales invoice whose total differs from its lines");
const QString NoBalance = QStringLiteral("A ledger entry without its balance");

// An action of the operator's, what comes before it, and what the check finds after each cut:
// the k-th entry is what k writes of the action leave behind.
struct CutAction {
    const char *before, *action;
    QList<QStringList> afterCut;
};

const CutAction CutActions[] = {
    {"", "start sale C RAME; add 8901 2", {{NoInvoice}, {NoInvoice}}}, // the line, the stock, the invoice
    // the line, the payment, its balance, the stock, the invoice's total
    {"start sale D RAME; add 8901 2", "add 8902 2", {{SaleTotal}, {NoBalance, SaleTotal}, {SaleTotal}, {SaleTotal}}},
    // each line's stock back (which leaves nothing to see), the lines, the invoice
    {"start sale C RAME; add 8901 2; add 8902 2", "yes; click C&ancel", {{}, {}, {"A sales invoice without lines"}}},
    // the line, the new stock row, its stock, the voucher
    {"", "start pur C RAME; add 8903 5 40", {{NoVoucher}, {"A stock row without its stock", NoVoucher}, {NoVoucher}}},
    {"", "open rcpt; set Account=RAM; set Name Of Account=RAVI MEDICALS; set Amount=100; click &Save", {{NoBalance}}}, // the entry, its balance
};

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
    // Every cut of these actions leaves exactly the traces tabled above, for the full and the
    // quick check alike; the whole action leaves none.
    void theCheckFindsWhatACutActionLeaves()
    {
        for (const CutAction &step : CutActions) {
            const int writesOfAction = int(step.afterCut.size()) + 1;
            for (int cut = 0; cut <= writesOfAction; ++cut) {
                CareDesk d;
                d.run(step.before);
                d.writes = 0;
                d.cut = cut < writesOfAction ? cut : -1;
                d.run(QLatin1String(step.action) + (d.cut >= 0 ? "; ended cut off" : ""));
                const QString where = QStringLiteral("%1, after %2 of its writes").arg(QLatin1String(step.action)).arg(cut);
                QVERIFY2(!QTest::currentTestFailed() && (d.cut >= 0 || d.writes == writesOfAction), qPrintable(where));
                const QStringList expected = cut == 0 || cut == writesOfAction ? QStringList() : step.afterCut[cut - 1];
                const CheckReport full = check(d.shop);
                QVERIFY2(full.damage.isEmpty() && full.pagesChecked, qPrintable(where));
                QVERIFY2(kinds(full) == expected, qPrintable(where + ": " + full.text()));
                QVERIFY2(kinds(check(d.shop, CheckDepth::Quick)) == expected, qPrintable(where + " (quick)"));
            }
        }
        // The findings name the rows: the document, its party, its figures.
        CareDesk d;
        d.run("start sale D RAME; add 8901 2");
        d.cut = d.writes + 1;
        d.run("add 8902 2; ended cut off");
        const QString text = check(d.shop).text();
        QVERIFY2(text.contains("A sales invoice whose total differs from its lines: sales invoice 3 (D) of RAMESH: total 25 in row 4; "
                               "2 line(s) adding up to 195, the last in row 5\n") && text.contains("Found 1 thing(s) to look at."),
                 qPrintable(text));
    }

    void theCheckFindsNothingAfterCompletedActions()
    {
        CareDesk d;
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        for (int action = 0; action < 200 && !QTest::currentTestFailed(); ++action) {
            const QString steps = d.randomAction(random, {"RAM"}, {"8901", "8902", "8903"});
            d.run(steps);
            const CheckReport report = check(d.shop);
            QVERIFY2(report.clean(), qPrintable(QStringLiteral("seed %1, action %2 (%3): %4").arg(seed).arg(action).arg(steps, report.text())));
        }
    }

    // A full disk ends the action with the engine's message; every sale before it stays whole.
    void aFullDiskEndsTheActionNotTheFile()
    {
        CareDesk d;
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
        const CheckReport report = check(d.shop);
        QVERIFY2(report.damage.isEmpty(), qPrintable(report.text()));
        for (const Finding &finding : report.traces)
            QVERIFY2(finding.rows.startsWith(QStringLiteral("sales invoice 1 (C)")), qPrintable(report.text()));
    }

    // A lock held past the busy time ends the save, which writes nothing; released, saves go on.
    void aLockHeldPastTheBusyTimeEndsTheAction()
    {
        CareDesk d;
        SqliteFile other(d.shop.file(), SqliteFile::Access::ReadWrite);
        other.execute("begin immediate");
        d.run("start sale C RAME; add 8901 2; ended database is locked");
        other.execute("rollback");
        d.run("changed; add 8901 2; changed sales +1, salesmain +1, stock ~2");
        QVERIFY(check(d.shop).clean());
    }

    // The quick check reads the newest lines and headers, and the ledger and stock whole.
    void theQuickCheckReadsTheNewestRows()
    {
        test::TestShop shop;
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('900001','PANADOL','RAM',1,10,10,'D','u')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values(900002,'11/20/2020','RAM','D',10)");
        shop.exec("insert into ledger(refno,dat,ac,credit,type) values(1,'11/20/2020','RAM',10,'receipt')");
        const QString sound = QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) ").arg(QuickTailRows + 100);
        shop.exec(sound + "insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) select i, 'PANADOL', 'RAM', 1, 10, 10, 'C', 'u' from n");
        shop.exec(sound + "insert into salesmain(invoice,dat,party,trans,netamt) select i, '11/20/2026', 'RAM', 'C', 10 from n");
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('900003','PANADOL','RAM',1,10,10,'C','u')");
        // an old invoice that gets a new line: its header is old, its newest line is new
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('5','PANADOL','RAM',1,10,10,'C','u')");

        const CheckReport full = check(shop), quick = check(shop, CheckDepth::Quick);
        QCOMPARE(kinds(full), QStringList({NoBalance, SaleTotal, "A sales invoice without lines", NoInvoice}));
        QCOMPARE(kinds(quick), QStringList({NoBalance, SaleTotal, NoInvoice}));
        QCOMPARE(QList<qsizetype>({full.traces.size(), quick.traces.size()}), QList<qsizetype>({5, 3}));
        QVERIFY2(quick.text().contains("sales invoice 900003 (C)") && quick.text().contains("sales invoice 5 (C)") && !quick.text().contains("900001"),
                 qPrintable(quick.text()));
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
