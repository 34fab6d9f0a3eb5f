// Looking after the shop file: the check finds what an action cut off between two statements
// leaves behind (the screens driven for real, the cut made where a crash could fall), the
// quick check reads the newest rows, backups are checked copies taken while the program writes,
// pruned by age and restored with the current file saved aside.
#include "accounts/receiptscreen.h"
#include "care/backups.h"
#include "care/sqlitefile.h"
#include "care/shopcheck.h"
#include "data/unhandlederror.h"
#include "purchase/purchasescreen.h"
#include "sales/salesscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <functional>

using namespace vantrel;
using test::field;

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

QString shopFile(test::TestShop &shop)
{
    return QDir(shop.directory()).filePath(QStringLiteral("vantrel.accdb"));
}

// A trading shop at the desk. Each write sent to the file is counted; with a cut set, the
// statement after the cut-th write fails before it reaches the file, as if the program had died
// there: the writes before it stay, none after it is made.
struct CareDesk : test::Desk {
    int writes = 0;
    int cut = -1;

    CareDesk()
    {
        shop.exec("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP','1','PANADOL','8901','12.5'),"
                  "('CIP','2','PANTOCID 40','8902','85'),('CIP','3','ZINCOVIT','8903','40')");
        shop.exec("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) values"
                  "('CIP','1','1','PANADOL','8901','RAM','10','10','100','0','10'),('CIP','1','2','PANTOCID 40','8902','RAM','6','80','480','1','5')");
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM STORES'),('2','CASH ACCOUNT')");
        shop.db().observeStatements([this](const QString &sql) {
            const QString verb = sql.trimmed().section(QLatin1Char(' '), 0, 0).toLower();
            if (verb != QLatin1String("insert") && verb != QLatin1String("update") && verb != QLatin1String("delete"))
                return;
            if (cut >= 0 && writes >= cut)
                throw UnhandledError(QStringLiteral("cut off"));
            ++writes;
        });
    }

    void sale(const QString &mode, const QStringList &codes, const QString &qty = "2")
    {
        auto *sales = open<SalesScreen>("sale");
        field(sales, "C/D")->clear();
        test::type(sales, "C/D", mode);
        test::pickFromList(sales, "Party:", "RAM", "party list");
        for (const QString &code : codes) {
            if (!shop.unhandledErrors.isEmpty())
                return; // the program has ended
            test::keyItem(sales, "item code", code, qty);
            test::click(sales, "&Add");
        }
    }
    // Brings document NUMBER of MODE back onto the screen of menu ENTRY and presses BUTTON,
    // answering its question Yes.
    void closeDocument(const char *entry, const QString &mode, const QString &number, const QString &button)
    {
        window.findChild<QAction *>(entry)->trigger();
        QWidget *screen = window.screen(entry);
        field(screen, "C/D")->clear();
        test::type(screen, "C/D", mode);
        QLineEdit *numberField = screen->findChild<QLineEdit *>("txtpono");
        numberField->clear();
        test::type(screen, numberField->accessibleName(), number);
        test::press(screen, numberField->accessibleName(), Qt::Key_Return);
        shop.dialogs.answers = {true};
        test::click(screen, button);
    }
    void cancelSale()
    {
        shop.dialogs.answers << true;
        test::click(window.screen("sale"), "C&ancel");
    }
    void purchase(const QString &code, const QString &mode = "C", const QString &qty = "5")
    {
        auto *screen = open<PurchaseScreen>("pur");
        field(screen, "C/D")->clear();
        test::type(screen, "C/D", mode);
        test::type(screen, "Party:", "RAM");
        QTest::keyClick(field(screen, "Party:"), Qt::Key_Down);
        QTest::keyClick(test::grid(screen, "party grid"), Qt::Key_Return);
        test::keyItem(screen, "Item code", code, qty, "40");
        test::click(screen, "&Add");
    }
    void receipt()
    {
        auto *screen = open<ReceiptScreen>("rcpt");
        field(screen, "Account")->setText("RAM STORES");
        field(screen, "Name Of Account")->setText("CASH ACCOUNT");
        field(screen, "Amount")->setText("100");
        test::click(screen, "&Save");
    }
};

const QString NoInvoice = QStringLiteral("Lines without their sales invoice");
const QString NoVoucher = QStringLiteral("Lines without their purchase voucher");
const QString SaleTotal = QStringLiteral("A sales invoice whose total differs from its lines");
const QString SaleWithoutLines = QStringLiteral("A sales invoice without lines");
const QString NoBalance = QStringLiteral("A ledger entry without its balance");
const QString BadStock = QStringLiteral("A stock row without its stock");

// An action of the operator's, what comes before it, and what the check finds after each cut:
// the k-th entry is what k writes of the action leave behind.
struct CutAction {
    const char *name;
    std::function<void(CareDesk &)> before;
    std::function<void(CareDesk &)> action;
    QList<QStringList> afterCut;
};

QList<CutAction> actions()
{
    return {
        {"a cash sale's first line", [](CareDesk &) {}, [](CareDesk &d) { d.sale("C", {"8901"}); },
         // the line, the stock, then the invoice
         {{NoInvoice}, {NoInvoice}}},
        {"a credit sale's second line", [](CareDesk &d) { d.sale("D", {"8901"}); },
         [](CareDesk &d) {
             auto *sales = d.window.screen("sale");
             test::keyItem(sales, "item code", "8902", "2");
             test::click(sales, "&Add");
         },
         // the line, the payment, its balance, the stock, then the invoice's total
         {{SaleTotal}, {NoBalance, SaleTotal}, {SaleTotal}, {SaleTotal}}},
        {"cancelling a two-line sale", [](CareDesk &d) { d.sale("C", {"8901", "8902"}); }, [](CareDesk &d) { d.cancelSale(); },
         // each line's stock comes back (which leaves nothing to see), the lines go, then the invoice
         {{}, {}, {SaleWithoutLines}}},
        {"buying a product for the first time", [](CareDesk &) {}, [](CareDesk &d) { d.purchase("8903"); },
         // the line, the new stock row, its stock, then the voucher
         {{NoVoucher}, {BadStock, NoVoucher}, {NoVoucher}}},
        {"a receipt", [](CareDesk &) {}, [](CareDesk &d) { d.receipt(); },
         // the entry, then its balance
         {{NoBalance}}},
    };
}

// A file of COUNT cash invoices of one line each, all sound, numbered from FIRST.
void addSoundInvoices(test::TestShop &shop, int first, int count)
{
    shop.exec(QStringLiteral("with recursive n(i) as (select %1 union all select i + 1 from n where i < %2) "
                             "insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) "
                             "select i, 'PANADOL', 'RAM STORES', 1, 10, 10, 'C', 'u' from n")
                  .arg(first)
                  .arg(first + count - 1));
    shop.exec(QStringLiteral("with recursive n(i) as (select %1 union all select i + 1 from n where i < %2) "
                             "insert into salesmain(invoice,dat,party,trans,netamt) select i, '11/20/2026', 'RAM STORES', 'C', 10 from n")
                  .arg(first)
                  .arg(first + count - 1));
}

QString toolPath(const char *name)
{
    return QDir(QStringLiteral(VANTREL_TOOLS_DIR)).filePath(QLatin1String(name));
}

} // namespace

class TestCare : public QObject {
    Q_OBJECT

private slots:
    // Every cut between two statements of these actions, and the whole action: a completed
    // action leaves nothing to report, and each cut leaves exactly the traces tabled above,
    // for the full and the quick check alike.
    void theCheckFindsWhatACutActionLeaves()
    {
        for (const CutAction &step : actions()) {
            const int writesOfAction = int(step.afterCut.size()) + 1;
            for (int cut = 0; cut <= writesOfAction; ++cut) {
                CareDesk d;
                step.before(d);
                QVERIFY2(d.shop.unhandledErrors.isEmpty(), step.name);
                d.writes = 0;
                d.cut = cut < writesOfAction ? cut : -1;
                step.action(d);
                const QString where = QStringLiteral("%1, after %2 of its writes").arg(QLatin1String(step.name)).arg(cut);
                if (cut == writesOfAction)
                    QVERIFY2(d.writes == writesOfAction && d.shop.unhandledErrors.isEmpty(), qPrintable(where + ": it made more or fewer"));
                const QStringList expected = cut == 0 || cut == writesOfAction ? QStringList() : step.afterCut[cut - 1];
                const CheckReport full = checkShopFile(shopFile(d.shop), CheckDepth::Full);
                const CheckReport quick = checkShopFile(shopFile(d.shop), CheckDepth::Quick);
                QVERIFY2(full.damage.isEmpty() && full.pagesChecked, qPrintable(where));
                QVERIFY2(kinds(full) == expected, qPrintable(where + ": " + full.text()));
                QVERIFY2(kinds(quick) == expected, qPrintable(where + " (quick): " + quick.text()));
            }
        }
    }

    // Completed actions in a random order, fractional quantities, both modes, cancels and
    // settles of earlier documents, receipts: the check finds nothing after any of them.
    void theCheckFindsNothingAfterCompletedActions()
    {
        CareDesk d;
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        const QStringList codes = {"8901", "8902", "8903"}, quantities = {"1", "2.5", "0.75", "3", "1.5"}, modes = {"C", "D"};
        auto any = [&](const QStringList &from) { return from[int(random.bounded(quint32(from.size())))]; };
        auto anyDocument = [&](const char *table, const char *number) {
            const auto rows = d.shop.rows(QStringLiteral("select %1, trans from %2 order by random() limit 1").arg(number, table));
            return rows.isEmpty() ? QStringList() : rows.first();
        };
        for (int action = 0; action < 500; ++action) {
            QString done;
            switch (random.bounded(7)) {
            case 0:
            case 1:
                d.sale(any(modes), {any(codes), any(codes)}, any(quantities));
                done = "a sale";
                break;
            case 2:
                d.purchase(any(codes), any(modes), any(quantities));
                done = "a purchase";
                break;
            case 3:
            case 4: {
                const QStringList doc = anyDocument("salesmain", "invoice");
                if (!doc.isEmpty())
                    d.closeDocument("sale", doc[1], doc[0], random.bounded(2) ? "C&ancel" : "&End Inventory");
                done = "closing sales invoice " + doc.join(' ');
                break;
            }
            case 5: {
                const QStringList doc = anyDocument("purchasemain", "pono");
                if (!doc.isEmpty())
                    d.closeDocument("pur", doc[1], doc[0], random.bounded(2) ? "C&ancel" : "&End Inventory");
                done = "closing purchase voucher " + doc.join(' ');
                break;
            }
            default:
                d.receipt();
                done = "a receipt";
            }
            const CheckReport report = checkShopFile(shopFile(d.shop), CheckDepth::Full);
            QVERIFY2(d.shop.unhandledErrors.isEmpty() && report.clean(),
                     qPrintable(QStringLiteral("seed %1, action %2 (%3): %4 %5").arg(seed).arg(action).arg(done, d.shop.unhandledErrors.join(' '), report.text())));
        }
    }

    // A disk that fills up in the middle of the day's sales: the statement that finds no room
    // fails with the engine's message and ends its action; every sale before it stays whole,
    // the pages stay sound, and all that is left half done is that one action.
    void aFullDiskEndsTheActionNotTheFile()
    {
        CareDesk d;
        const int pages = int(SqliteFile(shopFile(d.shop), SqliteFile::Access::ReadOnly).number("pragma page_count"));
        d.shop.exec(QStringLiteral("pragma max_page_count = %1").arg(pages + 2));
        int completed = 0;
        while (d.shop.unhandledErrors.isEmpty() && completed < 500) {
            d.sale("C", {"8901", "8902"});
            if (d.shop.unhandledErrors.isEmpty())
                ++completed;
        }
        QCOMPARE(d.shop.unhandledErrors, QStringList{"database or disk is full"});
        QVERIFY(completed > 0);
        d.shop.exec("pragma max_page_count = 1073741823");
        // The party's unsettled invoice comes back each time, so every sale adds to invoice 1.
        const int lines = d.shop.rows("select count(*) from sales where invoice='1' and trans='C'").first().first().toInt();
        QVERIFY2(lines >= 2 * completed && lines <= 2 * completed + 2, qPrintable(QString::number(lines)));
        const CheckReport report = checkShopFile(shopFile(d.shop), CheckDepth::Full);
        QVERIFY2(report.damage.isEmpty(), qPrintable(report.text()));
        for (const Finding &finding : report.traces)
            QVERIFY2(finding.rows.startsWith(QStringLiteral("sales invoice 1 (C)")), qPrintable(report.text()));
    }

    // Another program holding the file's write lock past the busy time: the save waits that
    // long, fails with the engine's message and writes nothing; released, the file is whole and
    // takes writes again.
    void aLockHeldPastTheBusyTimeEndsTheAction()
    {
        CareDesk d;
        SqliteFile other(shopFile(d.shop), SqliteFile::Access::ReadWrite);
        other.execute("begin immediate");
        d.sale("C", {"8901"});
        other.execute("rollback");
        QCOMPARE(d.shop.unhandledErrors, QStringList{"database is locked"});
        QCOMPARE(d.shop.rows("select count(*) from sales").first().first(), "0");
        QVERIFY(checkShopFile(shopFile(d.shop), CheckDepth::Full).clean());
        d.shop.exec("insert into salesmain(invoice,trans,netamt) values(1,'C',0)");
        QCOMPARE(d.shop.rows("select invoice,netamt from salesmain"), (QList<QStringList>{{"1", "0"}}));
    }

    // The findings name the rows: the document, its party, its figures.
    void theReportNamesTheRows()
    {
        CareDesk d;
        d.sale("D", {"8901"});
        d.cut = 1;
        d.writes = 0;
        auto *sales = d.window.screen("sale");
        test::keyItem(sales, "item code", "8902", "2");
        test::click(sales, "&Add");
        const QString text = checkShopFile(shopFile(d.shop), CheckDepth::Full).text();
        QVERIFY2(text.contains("A sales invoice whose total differs from its lines: sales invoice 1 (D) of RAM STORES: total 25 in row 1; "
                               "2 line(s) adding up to 195, the last in row 2"),
                 qPrintable(text));
        QVERIFY2(text.contains("Found 1 thing(s) to look at."), qPrintable(text));
    }

    // The quick check reads the newest lines and headers; an old trace is the full check's.
    // The ledger and stock are read whole by both.
    void theQuickCheckReadsTheNewestRows()
    {
        test::TestShop shop;
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('900001','PANADOL','RAM STORES',1,10,10,'D','u')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values(900002,'11/20/2020','RAM STORES','D',10)");
        shop.exec("insert into ledger(refno,dat,ac,credit,type) values(1,'11/20/2020','RAM STORES',10,'receipt')");
        addSoundInvoices(shop, 1, QuickTailRows + 100);
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('900003','PANADOL','RAM STORES',1,10,10,'C','u')");
        // an old invoice that gets a new line: its header is old, its newest line is new
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('5','PANADOL','RAM STORES',1,10,10,'C','u')");

        const CheckReport full = checkShopFile(shopFile(shop), CheckDepth::Full);
        const CheckReport quick = checkShopFile(shopFile(shop), CheckDepth::Quick);
        QCOMPARE(kinds(full), QStringList({NoBalance, SaleTotal, SaleWithoutLines, NoInvoice}));
        QCOMPARE(full.traces.size(), 5);
        QCOMPARE(kinds(quick), QStringList({NoBalance, SaleTotal, NoInvoice}));
        QCOMPARE(quick.traces.size(), 3);
        QVERIFY2(quick.text().contains("sales invoice 900003 (C)") && !quick.text().contains("900001"), qPrintable(quick.text()));
        QVERIFY2(quick.text().contains("sales invoice 5 (C)"), qPrintable(quick.text()));
    }

    // A file made before the numbering guards can hold a text for a number, and two headers
    // can carry one number and mode.
    void numbersThatAreNotNumbersAndNumbersUsedTwice()
    {
        test::TestShop shop;
        for (const char *trigger : {"salesmain_numbers_insert", "ledger_numbers_insert", "suppliermaster_numbers_insert"})
            shop.exec(QStringLiteral("drop trigger %1").arg(QLatin1String(trigger)));
        addSoundInvoices(shop, 1, 3);
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values(2,'11/20/2026','RAVI','C',10),('A7','11/20/2026','RAM','C',0)");
        shop.exec("insert into ledger(refno,dat,ac,credit,type,balance) values('R1','11/20/2026','RAM',5,'receipt',5)");
        shop.exec("insert into suppliermaster(ID,suppname) values(null,'RAM')");
        const CheckReport report = checkShopFile(shopFile(shop), CheckDepth::Full);
        const QString text = report.text();
        QVERIFY2(text.contains("A sales invoice number used twice: sales invoice 2 (C): another header in row"), qPrintable(text));
        QVERIFY2(text.contains("A number that is not a number: salesmain.invoice in row 5 holds 'A7'"), qPrintable(text));
        QVERIFY2(text.contains("A number that is not a number: ledger.refno in row 1 holds 'R1'"), qPrintable(text));
        QVERIFY2(text.contains("A number that is not a number: suppliermaster.ID in row 1 holds nothing"), qPrintable(text));
        QCOMPARE(kinds(report), QStringList({"A number that is not a number", "A sales invoice number used twice",
                                             "A sales invoice without lines"}));
    }

    // vantrel-check says what it found on its output and in its exit status, and changes nothing.
    void theCheckToolSaysWhatItFound()
    {
        test::TestShop shop;
        addSoundInvoices(shop, 1, 2);
        const QString file = shopFile(shop);
        QProcess tool;
        tool.start(toolPath("vantrel-check"), {file});
        QVERIFY(tool.waitForFinished(60000));
        QCOMPARE(tool.exitCode(), 0);
        QVERIFY(tool.readAllStandardOutput().contains("No trace of an interrupted action."));

        shop.exec("delete from salesmain where invoice=2");
        const QByteArray before = shop.rows("select count(*) from sales").first().join(',').toUtf8();
        tool.start(toolPath("vantrel-check"), {QStringLiteral("--quick"), file});
        QVERIFY(tool.waitForFinished(60000));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(tool.readAllStandardOutput().contains("Lines without their sales invoice: sales invoice 2 (C): 1 line(s) adding up to 10"));
        QCOMPARE(shop.rows("select count(*) from sales").first().join(',').toUtf8(), before);

        tool.start(toolPath("vantrel-check"), {QDir(shop.directory()).filePath("missing.accdb")});
        QVERIFY(tool.waitForFinished(60000));
        QCOMPARE(tool.exitCode(), 2);
    }

    // A backup holds what was written before it, not a write still open, passes its check, is
    // readable by its owner only and stands alone; today's second daily backup is not taken.
    void aBackupIsACheckedCopyTakenWhileTheProgramWrites()
    {
        test::TestShop shop;
        addSoundInvoices(shop, 1, 50);
        QTemporaryDir folder;
        Backups backups(shopFile(shop), folder.filePath("backups"));

        SqliteFile other(shopFile(shop), SqliteFile::Access::ReadWrite);
        other.execute("begin immediate");
        other.execute("insert into salesmain(invoice,trans,netamt) values(51,'C',10)");
        const QDateTime now(QDate(2026, 11, 23), QTime(9, 30, 5));
        const QString path = backups.take(now);
        other.execute("rollback");

        QCOMPARE(QFileInfo(path).fileName(), QStringLiteral("vantrel-2026-11-23-093005.accdb"));
        QCOMPARE(Backups::verify(path), QStringList{"ok"});
        QCOMPARE(QFileInfo(path).permissions() & 0x0077, QFileDevice::Permissions());
        QVERIFY(!QFileInfo::exists(path + "-wal"));
        SqliteFile copy(path, SqliteFile::Access::ReadOnly);
        QCOMPARE(copy.number("select count(*) from salesmain"), 50.0);
        QCOMPARE(copy.number("select sum(amount) from sales"), 500.0);
        QCOMPARE(backups.list(), QStringList{path});

        QVERIFY(backups.takeDaily(now.addSecs(3600)).isEmpty());
        QVERIFY(!backups.takeDaily(now.addDays(1)).isEmpty());
        QCOMPARE(backups.list().size(), 2);
    }

    // A copy of a damaged file fails its check and is not kept.
    void aDamagedFileIsNotKeptAsABackup()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("vantrel.accdb");
        {
            SqliteFile db(file, SqliteFile::Access::Create);
            db.execute("create table t(a text); create index t_a on t(a)");
            db.execute("with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) insert into t select printf('%08d', i) from n");
        }
        QFile damaged(file);
        QVERIFY(damaged.open(QIODevice::ReadWrite));
        damaged.seek(damaged.size() - 3 * 4096 + 100);
        damaged.write(QByteArray(2000, '\x5a'));
        damaged.close();

        Backups backups(file, dir.filePath("backups"));
        QVERIFY_THROWS_EXCEPTION(UnhandledError, backups.take(QDateTime(QDate(2026, 11, 23), QTime(8, 0))));
        QVERIFY(backups.list().isEmpty());
        QCOMPARE(QDir(dir.filePath("backups")).entryList(QDir::Files), QStringList());
    }

    // A year and a half of backups, four a day: the newest seven stay, and the newest of each of
    // the last 14 days, 8 weeks and 12 months; nothing older than twelve months.
    void pruningKeepsTheNewestAndOnePerDayWeekAndMonth()
    {
        const QDateTime now(QDate(2026, 11, 23), QTime(20, 0));
        QList<QDateTime> times;
        for (int i = 0; i < 4 * 540; ++i)
            times << now.addSecs(-i * 6 * 3600 - 60);
        const QList<QDateTime> pruned = Backups::prunable(times, now);
        QList<QDateTime> kept;
        for (const QDateTime &time : times)
            if (!pruned.contains(time))
                kept << time;

        for (int i = 0; i < Backups::KeepNewest; ++i)
            QVERIFY(kept.contains(times[i]));
        auto newestOf = [&](const std::function<bool(const QDate &)> &inPeriod) {
            for (const QDateTime &time : times) // newest first
                if (inPeriod(time.date()))
                    return time;
            return QDateTime();
        };
        const QDate today = now.date();
        for (int day = 0; day < Backups::KeepDays; ++day)
            QVERIFY(kept.contains(newestOf([&](const QDate &d) { return d == today.addDays(-day); })));
        const QDate monday = today.addDays(1 - today.dayOfWeek());
        for (int week = 0; week < Backups::KeepWeeks; ++week)
            QVERIFY(kept.contains(newestOf([&](const QDate &d) { return d.addDays(1 - d.dayOfWeek()) == monday.addDays(-7 * week); })));
        for (int month = 0; month < Backups::KeepMonths; ++month) {
            const QDate first = QDate(today.year(), today.month(), 1).addMonths(-month);
            QVERIFY(kept.contains(newestOf([&](const QDate &d) { return d.year() == first.year() && d.month() == first.month(); })));
        }
        for (const QDateTime &time : kept)
            QVERIFY2(time.date() >= QDate(today.year(), today.month(), 1).addMonths(-(Backups::KeepMonths - 1)), qPrintable(time.toString()));
        // beyond the newest, two a day in the last 14 days would mean a day's older one was kept
        QVERIFY2(kept.size() <= Backups::KeepNewest + Backups::KeepDays + Backups::KeepWeeks + Backups::KeepMonths,
                 qPrintable(QString::number(kept.size())));
        QVERIFY(kept.size() >= Backups::KeepDays + Backups::KeepMonths - 2);
    }

    // A restore puts the backup in place under the running program's own connection and keeps
    // the file as it was; a damaged backup is refused before anything changes.
    void aRestorePutsTheBackupInPlaceAndKeepsTheFileAsItWas()
    {
        test::TestShop shop;
        addSoundInvoices(shop, 1, 10);
        QTemporaryDir folder;
        Backups backups(shopFile(shop), folder.path());
        const QDateTime morning(QDate(2026, 11, 23), QTime(9, 0));
        const QString backup = backups.take(morning);
        addSoundInvoices(shop, 11, 5);
        QCOMPARE(shop.rows("select count(*) from salesmain").first().first(), "15");

        const QString aside = backups.restore(backup, morning.addSecs(3600));
        QCOMPARE(QFileInfo(aside).fileName(), QStringLiteral("before-restore-2026-11-23-100000.accdb"));
        QCOMPARE(shop.rows("select count(*) from salesmain").first().first(), "10");
        shop.exec("insert into salesmain(invoice,trans,netamt) values(11,'C',0)");
        QCOMPARE(shop.rows("select max(invoice) from salesmain").first().first(), "11");
        QCOMPARE(SqliteFile(aside, SqliteFile::Access::ReadOnly).number("select count(*) from salesmain"), 15.0);
        QCOMPARE(Backups::verify(shopFile(shop)), QStringList{"ok"});

        QFile damaged(backup);
        QVERIFY(damaged.open(QIODevice::ReadWrite));
        damaged.seek(4096);
        damaged.write(QByteArray(int(damaged.size()) - 4096, '\x33'));
        damaged.close();
        QVERIFY_THROWS_EXCEPTION(UnhandledError, backups.restore(backup, morning.addSecs(7200)));
        QCOMPARE(shop.rows("select count(*) from salesmain").first().first(), "11");
    }
};

VANTREL_TEST_MAIN(TestCare)
#include "test_care.moc"
