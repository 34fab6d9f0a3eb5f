// The shop killed at random moments of its work. A worker process drives the real screens
// (offscreen) through sales, credit sales, cancels, purchases and receipts on one shop file and
// says on its output what each action began and what it completed; this process kills it
// (SIGKILL) after a random time, and then checks the file: every completed action is in it as
// the screen showed it, the file's pages are sound, and what an action cut off in the middle
// left behind is what the check reports. Then the next worker carries on, as the operator does
// after a crash.
//
//   test_kills --kills N [--seed S]     the test (the default run kills a few times; the soak 200)
//   test_kills --together N             two workers on one file at once until each completed N actions
//   test_kills --worker DIR SEED        the worker, started by the test
#include "accounts/receiptscreen.h"
#include "app/mainwindow.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "purchase/purchasescreen.h"
#include "sales/salesscreen.h"
#include "support/ui.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/grid.h"
#include "widgets/services.h"

#include <QApplication>
#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

using namespace vantrel;

namespace {

// Codes 7001..7024; the last four have no stock row at first. The opening stock leaves room
// under the 16 bits in which a cancel counts stock.
const int Products = 24;
const int Parties = 5;       // PARTY A .. PARTY E

QString productName(int i) { return QStringLiteral("ITEM %1").arg(i, 2, 10, QLatin1Char('0')); }
QString productCode(int i) { return QString::number(7000 + i); }
QString partyName(int i) { return QStringLiteral("PARTY %1").arg(QChar('A' + i)); }

void makeShop(const QString &directory)
{
    const QString path = QDir(directory).filePath(QStringLiteral("vantrel.accdb"));
    createDatabaseFile(path);
    SqliteFile file(path, SqliteFile::Access::ReadWrite);
    for (int i = 1; i <= Products; ++i) {
        file.execute(QStringLiteral("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP',%1,'%2','%3',%4)")
                         .arg(i)
                         .arg(productName(i), productCode(i))
                         .arg(5 + i * 2.5));
        if (i <= Products - 4)
            file.execute(QStringLiteral("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) "
                                        "values('CIP','0',%1,'%2','%3','OPENING',20000,1,1,0,20000)")
                             .arg(i)
                             .arg(productName(i), productCode(i)));
    }
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
          m_services{m_db, m_dialogs, m_clock, directory,
                     [](const QString &message) {
                         say("error " + message);
                         std::fflush(stdout);
                         std::_Exit(3);
                     },
                     {}, {}},
          m_window(m_services), m_random(seed)
    {
        m_window.show();
    }

    void run()
    {
        say(QStringLiteral("ready"));
        for (;;) {
            const int pick = m_random.bounded(100);
            if (pick < 40)
                sale(QStringLiteral("C"), 1 + m_random.bounded(3), pick < 8);
            else if (pick < 65)
                sale(QStringLiteral("D"), 1 + m_random.bounded(2), false);
            else if (pick < 85)
                purchase(1 + m_random.bounded(2));
            else
                receipt();
        }
    }

private:
    template <typename S>
    S *open(const char *entry)
    {
        m_window.findChild<QAction *>(entry)->trigger();
        return static_cast<S *>(m_window.screen(entry));
    }
    QString text(QWidget *screen, const QString &label) { return test::field(screen, label)->text(); }

    // Starts a document of MODE for a party picked from its list; returns its number.
    QString start(QWidget *screen, const QString &mode, const QString &numberLabel, const QString &partyGrid)
    {
        test::field(screen, "C/D")->clear();
        test::type(screen, "C/D", mode);
        test::pickFromList(screen, "Party:", partyName(int(m_random.bounded(Parties))), partyGrid);
        return text(screen, numberLabel);
    }
    QStringList addLines(QWidget *screen, const QString &codeLabel, int lines, bool withRate)
    {
        QStringList names;
        for (int line = 0; line < lines; ++line) {
            const int product = 1 + int(m_random.bounded(Products));
            const QString rate = withRate ? QString::number(2 + m_random.bounded(50)) : QString();
            test::keyItem(screen, codeLabel, productCode(product), QString::number(1 + m_random.bounded(9)), rate);
            test::click(screen, "&Add");
            names << productName(product);
        }
        return names;
    }

    void sale(const QString &mode, int lines, bool thenCancel)
    {
        auto *screen = open<SalesScreen>("sale");
        const QString number = start(screen, mode, "Invoice No :", "party list");
        say(QStringLiteral("begin sale %1 %2").arg(mode, number));
        const QStringList names = addLines(screen, "item code", lines, false);
        say(QStringLiteral("sale %1 %2 %3 %4").arg(mode, number, text(screen, "Total Amount"), names.join('|')));
        if (!thenCancel)
            return;
        say(QStringLiteral("begin cancel %1 %2").arg(mode, number));
        test::click(screen, "C&ancel");
        say(QStringLiteral("cancel %1 %2").arg(mode, number));
    }

    void purchase(int lines)
    {
        auto *screen = open<PurchaseScreen>("pur");
        const QString number = start(screen, "C", "Purchse Order No :", "party grid");
        say(QStringLiteral("begin purchase C %1").arg(number));
        const QStringList names = addLines(screen, "Item code", lines, true);
        say(QStringLiteral("purchase C %1 %2 %3").arg(number, text(screen, "Total Amount"), names.join('|')));
    }

    void receipt()
    {
        auto *screen = open<ReceiptScreen>("rcpt");
        const QString number = text(screen, "Receipt No");
        const QString amount = QString::number(10 + m_random.bounded(500));
        say(QStringLiteral("begin receipt %1").arg(number));
        test::field(screen, "Account")->setText(partyName(int(m_random.bounded(Parties))));
        test::field(screen, "Name Of Account")->setText(QStringLiteral("CASH"));
        test::field(screen, "Amount")->setText(amount);
        test::click(screen, "&Save");
        say(QStringLiteral("receipt %1 %2").arg(number, amount));
    }

    YesDialogs m_dialogs;
    SystemClock m_clock;
    Database m_db;
    Services m_services;
    MainWindow m_window;
    QRandomGenerator m_random;
};

// ---- the test ---------------------------------------------------------------------------

// What a completed action left in the file, by its key ("sale C 12", "receipt 4").
struct Expected {
    bool present = true;
    double total = 0;
    QStringList products;
};

struct Figures {
    int kills = 0, midAction = 0, actions = 0, checked = 0, faults = 0, lost = 0, withTraces = 0;
};

bool near(double a, double b) { return std::abs(a - b) <= 1e-6 * std::max(1.0, std::abs(b)); }

// Reads the worker's lines into the expectations; returns the key of the action it was in.
QString takeReport(const QStringList &lines, QMap<QString, Expected> &expected, Figures &figures)
{
    QString inFlight;
    for (const QString &line : lines) {
        const QStringList word = line.split(QLatin1Char(' '));
        if (word.value(0) == QLatin1String("error")) {
            std::printf("the worker met an error: %s\n", qPrintable(line));
            ++figures.faults;
        } else if (word.value(0) == QLatin1String("begin")) {
            inFlight = word.value(1) == QLatin1String("cancel") ? "sale " + word.mid(2).join(' ') : word.mid(1).join(' ');
        } else if (word.value(0) == QLatin1String("sale") || word.value(0) == QLatin1String("purchase")) {
            // "sale C 12 195 ITEM 01|ITEM 02": the names hold blanks, so they are the rest of the line
            const QString key = word.mid(0, 3).join(' ');
            expected[key] = {true, word.value(3).toDouble(), word.mid(4).join(' ').split(QLatin1Char('|'))};
            inFlight.clear();
            ++figures.actions;
        } else if (word.value(0) == QLatin1String("cancel")) {
            expected["sale " + word.mid(1).join(' ')] = {false, 0, {}};
            inFlight.clear();
            ++figures.actions;
        } else if (word.value(0) == QLatin1String("receipt")) {
            expected["receipt " + word.value(1)] = {true, word.value(2).toDouble(), {}};
            inFlight.clear();
            ++figures.actions;
        }
    }
    return inFlight;
}

// Starts a worker on the shop in DIRECTORY and waits until it says it is ready to work, so that
// no time of the caller's counts its start-up.
bool startWorker(QProcess &worker, const QString &self, const QString &directory, quint32 seed)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    worker.setProcessEnvironment(environment);
    worker.start(self, {QStringLiteral("--worker"), directory, QString::number(seed)});
    while (worker.waitForReadyRead(-1))
        if (worker.canReadLine() && worker.readLine().startsWith("ready"))
            return true;
    std::printf("the worker did not start\n");
    return false;
}

// Whether the file holds what each completed action left, as its screen showed it.
void checkExpected(SqliteFile &file, const QMap<QString, Expected> &expected, Figures &figures)
{
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        const QStringList key = it.key().split(QLatin1Char(' '));
        const Expected &e = it.value();
        bool ok;
        if (key[0] == QLatin1String("receipt")) {
            ok = file.number(QStringLiteral("select count(*) from ledger where type='Receipt' and refno=%1 and credit=%2 and balance is not null")
                                 .arg(key[1])
                                 .arg(e.total))
                == 1;
        } else {
            const bool sale = key[0] == QLatin1String("sale");
            const QString header = sale ? "salesmain" : "purchasemain", lines = sale ? "sales" : "purchase", number = sale ? "invoice" : "pono";
            const QString where = QStringLiteral("%1=%2 and trans='%3'").arg(number, key[2], key[1]);
            const double headers = file.number(QStringLiteral("select count(*) from %1 where %2").arg(header, where));
            if (!e.present) {
                ok = headers == 0;
            } else {
                ok = headers == 1 && near(file.number(QStringLiteral("select netamt from %1 where %2").arg(header, where)), e.total);
                const QStringList held = file.firstColumn(QStringLiteral("select prodname from %1 where %2='%3' and trans='%4'").arg(lines, number, key[2], key[1]));
                for (const QString &product : e.products)
                    ok = ok && held.contains(product);
            }
        }
        ++figures.checked;
        if (!ok) {
            ++figures.lost;
            std::printf("not in the file as reported: %s\n", qPrintable(it.key()));
        }
    }
}

int runTest(int kills, quint32 seed, const QString &self)
{
    QTemporaryDir shop;
    makeShop(shop.path());
    const QString path = QDir(shop.path()).filePath(QStringLiteral("vantrel.accdb"));
    QRandomGenerator random(seed);
    QMap<QString, Expected> expected;
    Figures figures;
    int tracesBefore = 0; // a trace stays until the operator repairs it
    for (int round = 0; round < kills; ++round) {
        QProcess worker;
        if (!startWorker(worker, self, shop.path(), random.generate()))
            return 1;
        worker.waitForFinished(int(random.bounded(1500)));
        worker.kill();
        worker.waitForFinished();
        ++figures.kills;

        const QString inFlight = takeReport(QString::fromUtf8(worker.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts), expected, figures);
        if (!inFlight.isEmpty()) {
            ++figures.midAction;
            expected.remove(inFlight); // cut off: its rows are the check's business
        }
        const CheckReport report = checkShopFile(path, CheckDepth::Full);
        if (!report.damage.isEmpty()) {
            ++figures.faults;
            std::printf("damaged after kill %d: %s\n", round + 1, qPrintable(report.text()));
        }
        if (report.traces.size() > tracesBefore)
            ++figures.withTraces;
        tracesBefore = int(report.traces.size());
        SqliteFile file(path, SqliteFile::Access::ReadOnly);
        checkExpected(file, expected, figures);
    }
    std::printf("%d kills (%d in the middle of an action, %d leaving a new trace the check reported); %d actions completed, "
                "%d checks of a completed action against the file; %d faults; %d lost\n",
                figures.kills, figures.midAction, figures.withTraces, figures.actions, figures.checked, figures.faults, figures.lost);
    return figures.faults == 0 && figures.lost == 0 ? 0 : 1;
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
    for (int i = 0; i < 2; ++i)
        if (!startWorker(workers[i], self, shop.path(), seed + quint32(i)))
            return 1;
    // Both at work until each has completed ACTIONS actions, or one has stopped.
    QStringList lines[2];
    int completed[2] = {0, 0}, errors = 0;
    while ((completed[0] < actions || completed[1] < actions) && workers[0].state() == QProcess::Running
           && workers[1].state() == QProcess::Running) {
        for (int i = 0; i < 2; ++i) {
            workers[i].waitForReadyRead(100);
            while (workers[i].canReadLine())
                lines[i] << QString::fromUtf8(workers[i].readLine()).trimmed();
            QMap<QString, Expected> expected;
            Figures figures;
            takeReport(lines[i], expected, figures);
            completed[i] = figures.actions;
            errors = figures.faults;
        }
    }
    for (QProcess &worker : workers) {
        worker.kill();
        worker.waitForFinished();
    }
    for (int i = 0; i < 2; ++i) {
        QMap<QString, Expected> expected;
        Figures figures;
        takeReport(lines[i] + QString::fromUtf8(workers[i].readAllStandardOutput()).split('\n', Qt::SkipEmptyParts), expected, figures);
        completed[i] = figures.actions;
        errors += figures.faults;
    }
    const CheckReport report = checkShopFile(QDir(shop.path()).filePath(QStringLiteral("vantrel.accdb")), CheckDepth::Full);
    std::printf("two copies at once: %d and %d actions completed; %d errors; pages %s\n", completed[0], completed[1], errors,
                report.damage.isEmpty() ? "sound" : "DAMAGED");
    return errors == 0 && report.damage.isEmpty() && completed[0] >= actions && completed[1] >= actions ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    try {
        if (args.size() == 3 && args[1] == QLatin1String("--make")) {
            makeShop(args[2]);
            return 0;
        }
        if (args.size() == 4 && args[1] == QLatin1String("--worker")) {
            Worker worker(args[2], args[3].toUInt());
            worker.run();
            return 0;
        }
        if (args.size() >= 3 && args[1] == QLatin1String("--together"))
            return runTogether(args[2].toInt(), QRandomGenerator::global()->generate(), app.applicationFilePath());
        const int kills = args.indexOf("--kills") > 0 ? args.value(args.indexOf("--kills") + 1).toInt() : 5;
        const quint32 seed = args.indexOf("--seed") > 0 ? args.value(args.indexOf("--seed") + 1).toUInt() : QRandomGenerator::global()->generate();
        std::printf("seed %u\n", seed);
        return runTest(kills, seed, app.applicationFilePath());
    } catch (const std::exception &error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
