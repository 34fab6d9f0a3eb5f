// The shop killed at random moments of its work. A worker process drives the real screens
// (offscreen) through sales, credit sales, cancels, purchases and receipts on one shop file and
// says on its output when an action begins and, once it is complete, a query that finds what the
// screen showed (1 when it is in the file); this process kills it (SIGKILL) after a random time
// and checks the file: every completed action is in it, the pages are sound, and what an action
// cut off in the middle left behind is what the check reports. Then the next worker carries on,
// as the operator does after a crash.
//
//   test_kills --kills N [--seed S]     the test (the default run kills a few times; the soak 200)
//   test_kills --together N             two workers on one file at once until each completed N actions
//   test_kills --closes N               the year closed N times, killed at a random moment of each
//   test_kills --worker DIR SEED        the worker, started by the test
//   test_kills --close DIR              closes the year of the shop in DIR, started by the test
#include "app/mainwindow.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "data/unhandlederror.h"
#include "support/ui.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/grid.h"
#include "widgets/screen.h"
#include "widgets/services.h"
#include "years/yearclose.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>

using namespace vantrel;

namespace {

// Codes 7001..7024; the last four have no stock row at first. The opening stock leaves room
// under the 16 bits in which a cancel counts stock.
const int Products = 24, Parties = 5;
QString partyName(int i) { return QStringLiteral("PARTY %1").arg(QChar('A' + i)); }

void makeShop(const QString &directory)
{
    const QString path = QDir(directory).filePath(QStringLiteral("vantrel.accdb"));
    createDatabaseFile(path);
    SqliteFile file(path, SqliteFile::Access::ReadWrite);
    file.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) insert into productmaster"
                                "(cmpid,psrno,prodname,model,rate) select 'CIP', i, printf('ITEM %02d', i), 7000 + i, 5 + i * 2.5 from n").arg(Products));
    file.execute(QStringLiteral("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) select cmpid, '0', psrno, "
                                "prodname, model, 'OPENING', 20000, 1, 1, 0, 20000 from productmaster where psrno <= %1").arg(Products - 4));
    for (int i = 0; i < Parties; ++i)
        file.execute(QStringLiteral("insert into suppliermaster(ID,suppname) values(%1,'%2')").arg(i + 1).arg(partyName(i)));
}

// ---- the worker -------------------------------------------------------------------------

class YesDialogs final : public Dialogs {
public:
    void inform(const QString &) override {}
    bool ask(const QString &) override { return true; }
};

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Worker {
public:
    Worker(const QString &directory, quint32 seed)
        : m_db(buildConnectionString(directory)),
          m_services{m_db, m_dialogs, m_clock, directory, [](const QString &message) { say("error " + message), std::_Exit(3); }, {}, {}, {}},
          m_window(m_services), m_random(seed)
    {
        m_window.show();
    }

    void run()
    {
        say(QStringLiteral("ready"));
        for (;;) {
            const int pick = int(m_random.bounded(100));
            if (pick < 65)
                document("sale", pick < 40 ? "C" : "D", pick < 8);
            else if (pick < 85)
                document("pur", "C", false);
            else
                receipt();
        }
    }

private:
    // A sale or purchase of a few lines for a party picked from its list, cancelled at once
    // when CANCEL says so.
    void document(const char *entry, const QString &mode, bool cancel)
    {
        m_window.findChild<QAction *>(entry)->trigger();
        QWidget *screen = m_window.screen(entry);
        const bool sale = QLatin1String(entry) == QLatin1String("sale");
        const QString header = sale ? "salesmain" : "purchasemain", lines = sale ? "sales" : "purchase", number = sale ? "invoice" : "pono";
        test::field(screen, "C/D")->clear();
        test::type(screen, "C/D", mode);
        test::pickFromList(screen, "Party:", partyName(int(m_random.bounded(Parties))), sale ? "party list" : "party grid");
        const QString documentNumber = screen->findChild<QLineEdit *>("txtpono")->text();
        const QString key = QStringLiteral("%1 %2 %3").arg(header, mode, documentNumber);
        const QString where = QStringLiteral("%1=%2 and trans='%3'").arg(number, documentNumber, mode);
        const QString whereLines = QStringLiteral("%1='%2' and trans='%3'").arg(number, documentNumber, mode);
        say("begin " + key);
        for (int line = 0, count = 1 + int(m_random.bounded(3)); line < count; ++line) {
            test::keyItem(screen, sale ? "item code" : "Item code", QString::number(7001 + m_random.bounded(Products)),
                          QString::number(1 + m_random.bounded(9)), sale ? QString() : QString::number(2 + m_random.bounded(50)));
            test::click(screen, "&Add");
        }
        const int shown = test::grid(screen, "lines grid")->rows() - 1;
        say(QStringLiteral("done %1 select count(*) = 1 and (select count(*) from %2 where %3) = %4 from %5 where %6 and netamt = %7")
                .arg(key, lines, whereLines)
                .arg(shown)
                .arg(header, where, test::field(screen, "Total Amount")->text()));
        if (cancel) {
            say("begin " + key);
            test::click(screen, "C&ancel");
            say(QStringLiteral("done %1 select count(*) = 0 from %2 where %3").arg(key, header, where));
        }
    }

    void receipt()
    {
        m_window.findChild<QAction *>("rcpt")->trigger();
        QWidget *screen = m_window.screen("rcpt");
        const QString number = test::field(screen, "Receipt No")->text(), amount = QString::number(10 + m_random.bounded(500));
        say("begin receipt " + number);
        test::field(screen, "Account")->setText(partyName(int(m_random.bounded(Parties))));
        test::field(screen, "Name Of Account")->setText(QStringLiteral("CASH"));
        test::field(screen, "Amount")->setText(amount);
        test::click(screen, "&Save");
        say(QStringLiteral("done receipt %1 select count(*) = 1 from ledger where type='Receipt' and refno=%1 and credit=%2 and balance is not null").arg(number, amount));
    }

    YesDialogs m_dialogs;
    SystemClock m_clock;
    Database m_db;
    Services m_services;
    MainWindow m_window;
    QRandomGenerator m_random;
};

// ---- the test ---------------------------------------------------------------------------

// What a worker said: the queries of its completed actions by their keys ("salesmain C 12"),
// the action it was in the middle of, and how many it completed.
struct Report {
    QMap<QString, QString> found;
    QString inFlight;
    int completed = 0, errors = 0;

    void read(const QString &output)
    {
        for (const QString &line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QStringList word = line.split(QLatin1Char(' '));
            if (word[0] == QLatin1String("error"))
                std::printf("the worker met an error: %s\n", qPrintable(line)), ++errors;
            else if (word[0] == QLatin1String("begin"))
                inFlight = word.mid(1).join(' ');
            else if (word[0] == QLatin1String("done")) {
                const int keyWords = word[1] == QLatin1String("receipt") ? 2 : 3;
                found[word.mid(1, keyWords).join(' ')] = word.mid(1 + keyWords).join(' ');
                inFlight.clear();
                ++completed;
            }
        }
    }
};

// Starts a worker on the shop in DIRECTORY and waits until it says it is ready to work, so that
// no time of the caller's counts its start-up.
bool startWorker(QProcess &worker, const QString &self, const QString &directory, quint32 seed)
{
    worker.start(self, {QStringLiteral("--worker"), directory, QString::number(seed)});
    while (worker.waitForReadyRead(-1))
        if (worker.canReadLine() && worker.readLine().startsWith("ready"))
            return true;
    std::printf("the worker did not start\n");
    return false;
}

int runTest(int kills, quint32 seed, const QString &self)
{
    QTemporaryDir shop;
    makeShop(shop.path());
    const QString path = QDir(shop.path()).filePath(QStringLiteral("vantrel.accdb"));
    QRandomGenerator random(seed);
    Report report;
    int midAction = 0, withTraces = 0, tracesBefore = 0, faults = 0, lost = 0; // a trace stays until the operator repairs it
    for (int round = 0; round < kills; ++round) {
        QProcess worker;
        if (!startWorker(worker, self, shop.path(), random.generate()))
            return 1;
        worker.waitForFinished(int(random.bounded(1500)));
        worker.kill();
        worker.waitForFinished();
        report.read(QString::fromUtf8(worker.readAllStandardOutput()));
        if (!report.inFlight.isEmpty()) {
            ++midAction;
            report.found.remove(report.inFlight); // cut off: its rows are the check's business
            report.inFlight.clear();
        }
        const CheckReport checked = checkShopFile(path, CheckDepth::Full);
        if (!checked.damage.isEmpty())
            std::printf("damaged after kill %d: %s\n", round + 1, qPrintable(checked.text())), ++faults;
        withTraces += checked.traces.size() > tracesBefore ? 1 : 0;
        tracesBefore = int(checked.traces.size());
        SqliteFile file(path, SqliteFile::Access::ReadOnly);
        for (auto it = report.found.cbegin(); it != report.found.cend(); ++it)
            if (file.number(it.value()) != 1)
                std::printf("not in the file as the screen showed it: %s\n", qPrintable(it.key())), ++lost;
    }
    std::printf("%d kills (%d in the middle of an action, %d leaving a new trace the check reported); %d actions completed, "
                "%d in the file at the end; %d faults; %d lost\n",
                kills, midAction, withTraces, report.completed, int(report.found.size()), faults + report.errors, lost);
    return faults + report.errors + lost == 0 ? 0 : 1;
}

// Two copies of the program at work on one file at once, as when the operator starts it twice:
// neither may meet an error (each waits for the other's write), and the file stays sound.
// Both may propose the same number and so write into one document; that is the system's own
// numbering, not reserved.
int runTogether(int actions, quint32 seed, const QString &self)
{
    QTemporaryDir shop;
    makeShop(shop.path());
    QProcess workers[2];
    Report reports[2];
    for (int i = 0; i < 2; ++i)
        if (!startWorker(workers[i], self, shop.path(), seed + quint32(i)))
            return 1;
    while ((reports[0].completed < actions || reports[1].completed < actions) && workers[0].state() == QProcess::Running
           && workers[1].state() == QProcess::Running)
        for (int i = 0; i < 2; ++i)
            if (workers[i].waitForReadyRead(100))
                reports[i].read(QString::fromUtf8(workers[i].readAll()));
    for (int i = 0; i < 2; ++i) {
        workers[i].kill();
        workers[i].waitForFinished();
        reports[i].read(QString::fromUtf8(workers[i].readAll()));
    }
    const CheckReport report = checkShopFile(QDir(shop.path()).filePath(QStringLiteral("vantrel.accdb")), CheckDepth::Full);
    const int errors = reports[0].errors + reports[1].errors;
    std::printf("two copies at once: %d and %d actions completed; %d errors; pages %s\n", reports[0].completed, reports[1].completed, errors,
                report.damage.isEmpty() ? "sound" : "DAMAGED");
    return errors == 0 && report.damage.isEmpty() && reports[0].completed >= actions && reports[1].completed >= actions ? 0 : 1;
}

// Every row of every table, as text, sorted: what "each row exactly once" is counted against.
QStringList rowsOf(const QString &path)
{
    SqliteFile file(path, SqliteFile::Access::ReadOnly);
    QStringList rows;
    for (const char *table : {"salesmain", "sales", "purchasemain", "purchase", "stock", "ledger"}) {
        QStringList columns;
        for (const QString &column : file.firstColumn(QStringLiteral("select name from pragma_table_info('%1')").arg(QLatin1String(table))))
            columns << "quote(" + column + ")";
        rows << file.firstColumn(QStringLiteral("select '%1 ' || %2 from %1").arg(QLatin1String(table), columns.join(" || ',' || ")));
    }
    rows.sort();
    return rows;
}

// The year closed again and again on a shop of settled books, each close killed at a random
// moment: afterwards (once a start has finished what the kill left) either the file is as it was
// and no closed year's file exists, or the closed year's file holds every row the file held and
// the file holds none of its documents.
int runCloses(int closes, quint32 seed, const QString &self)
{
    QRandomGenerator random(seed);
    int during = 0, closed = 0, failures = 0, span = 0;
    for (int round = 0; round < closes; ++round) {
        QTemporaryDir shop;
        makeShop(shop.path());
        const QString path = QDir(shop.path()).filePath(QStringLiteral("vantrel.accdb"));
        SqliteFile(path, SqliteFile::Access::ReadWrite)
            .execute("with recursive n(i) as (select 1 union all select i + 1 from n where i < 400) "
                     "insert into salesmain(invoice,dat,party,trans,netamt) select i, '11/20/2026', 'PARTY A', 'C', 10 from n; "
                     "insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) select invoice, 'ITEM 01', party, 1, 10, 10, 'C', 'p' from salesmain; "
                     "insert into ledger(refno,dat,ac,credit,accnm,type,balance) select invoice, dat, party, 10, 'CASH', 'receipt', invoice * 10 from salesmain");
        const QStringList before = rowsOf(path);
        QProcess worker;
        worker.start(self, {QStringLiteral("--close"), shop.path()});
        worker.waitForReadyRead(-1); // "begin"
        QElapsedTimer took;
        took.start();
        // The first close runs whole and sets the span the kills fall in.
        worker.waitForFinished(round == 0 ? -1 : int(random.bounded(quint32(span * 1.2) + 1)));
        if (round == 0)
            span = int(took.elapsed());
        worker.kill();
        worker.waitForFinished();
        const QString said = QString::fromUtf8(worker.readAll());
        during += said.contains(QLatin1String("done")) ? 0 : 1;
        finishInterruptedClose(path);
        const auto years = closedYears(path);
        QString fault;
        if (years.isEmpty()) {
            fault = rowsOf(path) == before ? QString() : QStringLiteral("the file changed and no closed year holds its rows");
        } else {
            ++closed;
            SqliteFile now(path, SqliteFile::Access::ReadOnly);
            if (rowsOf(years[0].second) != before)
                fault = QStringLiteral("the closed year does not hold every row once");
            else if (now.number("select count(*) from salesmain") + now.number("select count(*) from ledger where refno <> 0") != 0)
                fault = QStringLiteral("a closed row is still in the file");
        }
        if (QDir(shop.path() + "/years").entryList(QDir::Files).size() != years.size())
            fault = QStringLiteral("a closed year's file was left unfinished");
        const CheckReport report = checkShopFile(path, CheckDepth::Full);
        if (!report.clean())
            fault = report.text();
        if (!fault.isEmpty())
            std::printf("close %d: %s\n", round + 1, qPrintable(fault)), ++failures;
    }
    std::printf("%d closes of %d ms killed at random (%d in the middle of their work), %d of them closed; %d faults\n", closes, span, during, closed,
                failures);
    return failures == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    try {
        if (args.size() == 4 && args[1] == QLatin1String("--worker")) {
            Worker(args[2], args[3].toUInt()).run();
            return 0;
        }
        if (args.size() == 3 && args[1] == QLatin1String("--close")) {
            const QString path = QDir(args[2]).filePath(QStringLiteral("vantrel.accdb"));
            say(QStringLiteral("begin"));
            closeYear(path, planYearClose(path, FinancialYear{}, QDate(2026, 11, 24)), QDateTime::currentDateTime(), QStringLiteral("11/24/2026"));
            say(QStringLiteral("done"));
            return 0;
        }
        if (args.size() >= 3 && args[1] == QLatin1String("--closes"))
            return runCloses(args[2].toInt(), QRandomGenerator::global()->generate(), app.applicationFilePath());
        if (args.size() >= 3 && args[1] == QLatin1String("--together"))
            return runTogether(args[2].toInt(), QRandomGenerator::global()->generate(), app.applicationFilePath());
        const int kills = args.indexOf("--kills") > 0 ? args.value(args.indexOf("--kills") + 1).toInt() : 5;
        const quint32 seed = args.indexOf("--seed") > 0 ? args.value(args.indexOf("--seed") + 1).toUInt() : QRandomGenerator::global()->generate();
        std::printf("seed %u\n", seed);
        return runTest(kills, seed, app.applicationFilePath());
    } catch (const UnhandledError &error) {
        std::printf("%s\n", qPrintable(error.message()));
        return 1;
    } catch (const std::exception &error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
