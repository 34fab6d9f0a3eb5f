// The shop killed (SIGKILL) at random moments of its work. A worker drives the real screens
// (offscreen) through random actions on one shop file, saying "begin" before each and "done" with
// a digest of the books after it; killed a random time after it said it was ready, the file's
// pages must be sound and, when no action was cut off, its books what the last one left (what a
// cut one leaves is the check's business). The next worker carries on, as after a crash.
// Several counters at once on the same books (the file, or the tests' server when
// VANTREL_TEST_SERVER names one), each a program keying its own random actions: no number given
// twice, every stock figure and ledger balance what the rows say it is, nothing a counter saw
// saved lost, the check clean; with --restart PGSERVER the server is restarted once in each run.
//   test_kills --kills N | --closes N | --counters N,N... ACTIONS [--restart PGSERVER] [--seed S]
//     (the soak runs more; ACTIONS are shared among each run's counters)
//   test_kills --worker DIR SEED | --close DIR | --counter BOOKS NAME SEED ACTIONS   (started by the tests)
#include "support/steps.h"
#include "care/yearclose.h"
#include "data/records.h"
#include "data/serverschema.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QMdiArea>
#include <QProcess>
#include <QRandomGenerator>
#include <QSettings>
#include <QThread>
#include <cmath>
#include <cstdio>

using namespace vantrel;

namespace {

// Codes 7001..7024, the last four without a stock row; the opening stock leaves room under the
// 16 bits in which a cancel counts stock.
const int Products = 24;
const QStringList Parties = {"PARTYA", "PARTYB", "PARTYC", "PARTYD", "PARTYE"};
QString shopFile(const QString &directory) { return QDir(directory).filePath(QStringLiteral("vantrel.accdb")); }

const int Opening = 20000;

// The shop's books: the file in DIRECTORY, or with SERVERNAME a database of that name on the
// tests' server when there is one. Returns their connection.
QString makeShop(const QString &directory, const QString &serverName = {})
{
    QString books = buildConnectionString(directory);
    if (!serverName.isEmpty() && !test::testServer().isEmpty()) {
        books = test::newServerDatabase(serverName);
        createServerBooks(books);
    } else {
        createDatabaseFile(shopFile(directory));
    }
    Database db(books);
    db.beginAction(); // one write of the whole shop
    for (int i = 1; i <= Products; ++i) {
        const QString item = QStringLiteral("ITEM %1").arg(i, 2, 10, QLatin1Char('0'));
        db.execute(QStringLiteral("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP','%1','%2','%3','%4')")
                       .arg(i).arg(item).arg(7000 + i).arg(5 + i * 2.5));
        if (i <= Products - 4)
            db.execute(QStringLiteral("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) values("
                                      "'CIP','0','%1','%2','%3','OPENING','%4','1','1','0','%4')").arg(i).arg(item).arg(7000 + i).arg(Opening));
    }
    for (int i = 0; i < Parties.size(); ++i)
        db.execute(QStringLiteral("insert into suppliermaster(ID,suppname) values('%1','%2')").arg(i + 1).arg(Parties[i]));
    db.endAction();
    return books;
}

// Every row of the books, as text, sorted: what a completed action leaves and a close keeps.
QString booksOf(const QString &path)
{
    SqliteFile file(path, SqliteFile::Access::ReadOnly);
    QStringList rows;
    for (const QString table : {"salesmain", "sales", "purchasemain", "purchase", "stock", "ledger"}) {
        const QString columns = file.firstColumn("select group_concat('quote(' || name || ')', ' || '','' || ') from pragma_table_info('" + table + "')").value(0);
        rows << file.firstColumn(QStringLiteral("select '%1 ' || %2 from %1").arg(table, columns));
    }
    rows.sort();
    return rows.join(QLatin1Char('\n'));
}

QString digest(const QString &text) { return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex()); }

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// The worker: every question answered Yes, an error that ends an action ending the worker.
[[noreturn]] void work(const QString &directory, quint32 seed)
{
    test::StepDesk desk(directory);
    desk.shop.dialogs.answerYes = true;
    desk.shop.services().unhandledError = [](const QString &message) { say("error " + message), std::_Exit(3); };
    QRandomGenerator random(seed);
    QStringList codes;
    for (int i = 0; i < Products; ++i)
        codes << QString::number(7001 + i);
    say(QStringLiteral("ready"));
    for (;;) {
        const QString action = desk.randomAction(random, Parties, codes);
        say(QStringLiteral("begin"));
        desk.run(action);
        say("done " + digest(booksOf(shopFile(directory))));
        QThread::msleep(random.bounded(40)); // the operator's pause, in which a kill finds the books at rest
    }
}

// A counter named NAME, a program of its own: ACTIONS random actions of whole numbers on the
// books, each "done N" when it has returned, N the changes the edit log holds of this counter's;
// then how many numbers it found taken by another counter, how many documents changed by one
// between their showing and its action on them, and how often it was told the server stopped.
[[noreturn]] void keyAsCounter(const QString &books, const QString &name, quint32 seed, int actions)
{
    QTemporaryDir program;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, program.path());
    QSettings().setValue(QStringLiteral("books/counter"), name);
    test::StepDesk desk(program.path(), books);
    desk.shop.readThroughRestarts = true;
    desk.stopsWhenServerStops = true;
    desk.shop.dialogs.thinking = 100;
    desk.shop.dialogs.answerYes = true;
    desk.shop.services().unhandledError = [](const QString &message) { say("error " + message), std::_Exit(3); };
    QRandomGenerator random(seed);
    QStringList codes;
    for (int i = 0; i < Products - 4; ++i) // products with their opening lot
        codes << QString::number(7001 + i);
    for (int i = 0; i < actions; ++i) {
        desk.run(desk.randomAction(random, Parties, codes, {"1", "2", "3"}));
        // Told that the server stopped, the operator closes the screens and starts again: what
        // the cut-off action left in them is not keyed on blindly.
        if (desk.stoppedForServer()) {
            desk.window.mdiArea()->closeAllSubWindows();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // gone before the next opens afresh
        }
        say("done " + desk.shop.rows(QStringLiteral("select count(*) from editlog where source='%1'").arg(name)).value(0).value(0));
    }
    const QStringList &shown = desk.shop.dialogs.shown;
    say(QStringLiteral("taken %1").arg(shown.filter(QStringLiteral("was taken at another counter")).size()));
    say(QStringLiteral("changed %1").arg(shown.filter(QStringLiteral("was changed at another counter")).size()));
    say(QStringLiteral("stopped %1").arg(shown.filter(QStringLiteral("server stopped answering")).size()));
    std::_Exit(0);
}

// What the books hold that several counters at once must never leave: a number twice in a
// series, a stock figure that is not its opening, purchases and sales as their lines stand, a
// ledger balance that is not the overall one over the rows before it; and the check's findings.
QStringList faultsOf(const QString &books, const QString &checked)
{
    QStringList faults;
    Database db(books);
    const QList<QStringList> series = {{"salesmain", "invoice", "trans"}, {"purchasemain", "pono", "trans"}, {"ledger", "refno", "type"},
                                       {"suppliermaster", "ID", "1"}, {"productmaster", "psrno", "cmpid"}};
    for (const QStringList &s : series)
        for (Recordset twice = db.query(QStringLiteral("select %2 as n, %3 as s from %1 group by %2, %3 having count(*) > 1").arg(s[0], s[1], s[2]));
             !twice.eof(); twice.moveNext())
            faults << QStringLiteral("%1 %2 %3 given twice").arg(s[0], twice.text("s"), twice.text("n"));
    // Every document's lines are its party's: a line keyed into a number another counter's
    // document has taken joins another party's.
    for (const QStringList &d : QList<QStringList>{{"salesmain", "sales", "invoice"}, {"purchasemain", "purchase", "pono"}})
        for (Recordset mixed = db.query(QStringLiteral("select l.%3 as n, l.trans as s, l.party as p from %2 l join %1 h on h.%3=l.%3 and h.trans=l.trans "
                                                       "where h.party<>l.party").arg(d[0], d[1], d[2]));
             !mixed.eof(); mixed.moveNext())
            faults << QStringLiteral("%1 %2 %3 holds a line of %4").arg(d[1], mixed.text("s"), mixed.text("n"), mixed.text("p"));
    QHash<QString, double> bought, sold;
    for (Recordset line = db.query(QStringLiteral("select prodname, qty from purchase")); !line.eof(); line.moveNext())
        bought[line.text("prodname")] += val(line.text("qty"));
    for (Recordset line = db.query(QStringLiteral("select prodname, qty from sales")); !line.eof(); line.moveNext())
        sold[line.text("prodname")] += val(line.text("qty"));
    // A lot of the shop's opening, or one a purchase made (of a line keyed with no product when
    // the server had stopped answering as its code was looked up).
    for (Recordset lot = db.query(QStringLiteral("select prodname, party, totqty, usedqty, stk from stock")); !lot.eof(); lot.moveNext()) {
        const QString item = lot.text("prodname");
        const double opening = lot.text("party") == QLatin1String("OPENING") ? Opening : 0;
        if (lot.number("totqty") != opening + bought[item] || lot.number("usedqty") != sold[item] || lot.number("stk") != opening + bought[item] - sold[item])
            faults << QStringLiteral("%1: stock %2 of %3 used %4, its lines %5 bought %6 sold").arg(item, lot.text("stk"), lot.text("totqty"), lot.text("usedqty"))
                          .arg(bought[item]).arg(sold[item]);
    }
    double credits = 0, debits = 0;
    for (Recordset row = db.query(QStringLiteral("select refno, type, credit, debit, balance from ledger order by rowid")); !row.eof(); row.moveNext()) {
        const bool receipt = row.text("type").compare(QLatin1String("receipt"), Qt::CaseInsensitive) == 0;
        (receipt ? credits : debits) += row.number(receipt ? "credit" : "debit");
        const float credit = toSingle(credits), debit = toSingle(debits);
        const float balance = !receipt && credit == 0 ? debit : toSingle(std::fabs(double(credit) - double(debit)));
        if (toSingle(row.number("balance")) != balance)
            faults << QStringLiteral("%1 %2: balance %3, the rows before it give %4").arg(row.text("type"), row.text("refno"), row.text("balance"))
                          .arg(double(balance));
    }
    const CheckReport report = checkShopFile(checked, CheckDepth::Full);
    if (!report.clean())
        faults << report.text();
    return faults;
}

// COUNTERS programs at once on one shop's books, ACTIONS each. As many times as there are
// counters, one is killed at a random moment (in the middle of an action or between two) and a
// new program of the same name takes its place with the actions it had left: what a kill cuts
// off is kept by none. With RESTARTER (tests/support/pgserver) the tests' server is restarted
// once at a random moment before the kills, stopped as STOP says ("fast" as an administrator
// stops it, "immediate" as in a crash): the counters are told, answer Yes, and go on.
int runCounters(int counters, int actions, QRandomGenerator &random, const QString &self, const QString &restarter, const QString &stop)
{
    QTemporaryDir shop;
    const QString books = makeShop(shop.path(), QStringLiteral("counters_%1_%2").arg(QCoreApplication::applicationPid()).arg(counters));
    struct Counter {
        std::unique_ptr<QProcess> program;
        QString name;
        int done = 0;
        qint64 saved = 0; // the changes of its own it last saw in the edit log
        QByteArray unread;
    };
    std::vector<Counter> at(static_cast<size_t>(counters));
    QStringList lost;
    int taken = 0, changed = 0, stopped = 0, errors = 0, kills = 0;
    const auto start = [&](Counter &c) {
        c.name = QStringLiteral("counter %1").arg(&c - at.data() + 1);
        c.program = std::make_unique<QProcess>();
        c.program->start(self, {QStringLiteral("--counter"), books, c.name, QString::number(random.generate()), QString::number(actions - c.done)});
    };
    const auto read = [&](Counter &c) {
        c.unread += c.program->readAllStandardOutput();
        for (qsizetype end = c.unread.indexOf('\n'); end >= 0; end = c.unread.indexOf('\n')) {
            const QString line = QString::fromUtf8(c.unread.left(end));
            c.unread.remove(0, end + 1);
            if (line.startsWith(QLatin1String("done "))) {
                ++c.done;
                if (line.mid(5).toLongLong() < c.saved)
                    lost << QStringLiteral("%1 saw %2 changes of its own, then %3").arg(c.name).arg(c.saved).arg(line.mid(5));
                c.saved = line.mid(5).toLongLong();
            }
            taken += line.startsWith(QLatin1String("taken ")) ? line.mid(6).toInt() : 0;
            changed += line.startsWith(QLatin1String("changed ")) ? line.mid(8).toInt() : 0;
            stopped += line.startsWith(QLatin1String("stopped ")) ? line.mid(8).toInt() : 0;
            if (line.startsWith(QLatin1String("error")))
                std::printf("a counter met an error: %s\n", qPrintable(line)), ++errors;
        }
    };
    QElapsedTimer took;
    took.start();
    for (Counter &c : at)
        start(c);
    // The restart comes first, the kills after it: a program starting while the server is down
    // would not get its books.
    qint64 restartAt = restarter.isEmpty() ? -1 : random.bounded(300, 1500), nextKill = random.bounded(100, 600);
    QProcess restart;
    for (bool running = true; running;) {
        running = false;
        for (Counter &c : at) {
            if (c.program->state() == QProcess::NotRunning)
                continue;
            running = true;
            c.program->waitForReadyRead(20);
            read(c);
        }
        const bool restarted = restartAt < 0 && (restart.state() == QProcess::NotRunning || restart.waitForFinished(0));
        if (restartAt >= 0 && took.elapsed() > restartAt) {
            restart.start(restarter, {qEnvironmentVariable("VANTREL_TEST_SERVER"), QStringLiteral("restart"), stop});
            restartAt = -1;
        }
        Counter &victim = at[random.bounded(counters)];
        if (kills < counters && restarted && took.elapsed() > nextKill && victim.program->state() == QProcess::Running && victim.done < actions - 1) {
            victim.program->kill();
            victim.program->waitForFinished(-1);
            read(victim);
            start(victim);
            ++kills;
            nextKill = took.elapsed() + random.bounded(100, 600);
        }
    }
    if (restart.state() != QProcess::NotRunning)
        restart.waitForFinished(-1);
    if (!restarter.isEmpty() && (restartAt >= 0 || restart.exitStatus() != QProcess::NormalExit || restart.exitCode() != 0))
        std::printf("the server did not restart: %s\n", restart.readAllStandardError().constData()), ++errors;
    int done = 0;
    for (Counter &c : at) {
        read(c);
        done += c.done;
        if (c.program->exitCode() != 0 && errors == 0)
            std::printf("a counter ended so: %s\n", c.program->readAllStandardError().constData()), ++errors;
    }
    QStringList faults = lost + faultsOf(books, test::testServer().isEmpty() ? shopFile(shop.path()) : books);
    Database db(books);
    for (const Counter &c : at)
        if (const qint64 kept = db.query(QStringLiteral("select count(*) as n from editlog where source='%1'").arg(c.name)).number("n"); kept != c.saved)
            faults << QStringLiteral("%1 saw %2 changes of its own saved; the books hold %3").arg(c.name).arg(c.saved).arg(kept);
    for (const QString &fault : faults)
        std::printf("fault: %s\n", qPrintable(fault));
    std::printf("%d counters on the %s: %d actions in %.1f s, %d counters killed and replaced, %s%d numbers taken over by another counter, "
                "%d conflicts told, %d faults\n",
                counters, test::testServer().isEmpty() ? "file" : "server", done, double(took.elapsed()) / 1000, kills,
                restarter.isEmpty() ? "" : qPrintable(QStringLiteral("the server restarted (%1, %2 questions that it stopped), ").arg(stop).arg(stopped)), taken, changed,
                int(faults.size()) + errors);
    return faults.isEmpty() && errors == 0 && done == counters * actions ? 0 : 1;
}

// What a worker said: the digest after its last completed action, whether one was begun since.
struct Said {
    QString digest;
    bool inFlight = false;
    int completed = 0, errors = 0;

    void read(const QByteArray &output)
    {
        for (const QString &line : QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            if (line.startsWith(QLatin1String("error")))
                std::printf("the worker met an error: %s\n", qPrintable(line)), ++errors;
            inFlight = line == QLatin1String("begin") || (inFlight && !line.startsWith(QLatin1String("done")));
            if (line.startsWith(QLatin1String("done ")))
                digest = line.mid(5), ++completed;
        }
    }
};

// Starts a worker and waits until it says it is ready, so that its start-up counts for no timer.
bool startWorker(QProcess &worker, const QString &self, const QString &directory, quint32 seed)
{
    worker.start(self, {QStringLiteral("--worker"), directory, QString::number(seed)});
    while (worker.waitForReadyRead(-1))
        if (worker.canReadLine() && worker.readLine().startsWith("ready"))
            return true;
    std::printf("the worker did not start\n");
    return false;
}

int runKills(int kills, QRandomGenerator &random, const QString &self)
{
    QTemporaryDir shop;
    makeShop(shop.path());
    int midAction = 0, completed = 0, faults = 0;
    for (int round = 1; round <= kills; ++round) {
        QProcess worker;
        Said said;
        if (!startWorker(worker, self, shop.path(), random.generate()))
            return 1;
        if (worker.waitForFinished(int(random.bounded(1500))))
            std::printf("the worker ended by itself: %s\n", worker.readAllStandardError().constData()), ++faults;
        worker.kill();
        worker.waitForFinished();
        said.read(worker.readAllStandardOutput());
        completed += said.completed, midAction += said.inFlight, faults += said.errors;
        const CheckReport checked = checkShopFile(shopFile(shop.path()), CheckDepth::Full);
        if (!checked.damage.isEmpty())
            std::printf("damaged after kill %d: %s\n", round, qPrintable(checked.text())), ++faults;
        if (!said.inFlight && !said.digest.isEmpty() && digest(booksOf(shopFile(shop.path()))) != said.digest)
            std::printf("after kill %d the books are not what the last completed action left\n", round), ++faults;
    }
    std::printf("%d kills (%d in the middle of an action); %d actions completed; %d faults\n", kills, midAction, completed, faults);
    return faults == 0 && completed > 0 ? 0 : 1;
}

// The year closed again and again on a shop of settled books, each close killed at a random
// moment: afterwards (once a start has finished what the kill left) either the file is as it was
// and no closed year's file exists, or the closed year's file holds every row the file held and
// the file holds none of its documents.
int runCloses(int closes, QRandomGenerator &random, const QString &self)
{
    int during = 0, closed = 0, failures = 0, span = 0;
    for (int round = 1; round <= closes; ++round) {
        QTemporaryDir shop;
        makeShop(shop.path());
        const QString path = shopFile(shop.path());
        SqliteFile(path, SqliteFile::Access::ReadWrite)
            .execute("with recursive n(i) as (select 1 union all select i + 1 from n where i < 400) "
                     "insert into salesmain(invoice,dat,party,trans,netamt) select i, '11/20/2026', 'PARTYA', 'C', 10 from n; "
                     "insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) select invoice, 'ITEM 01', party, 1, 10, 10, 'C', 'p' from salesmain; "
                     "insert into ledger(refno,dat,ac,credit,accnm,type,balance) select invoice, dat, party, 10, 'CASH', 'receipt', invoice * 10 from salesmain");
        const QString before = booksOf(path);
        QProcess worker;
        worker.start(self, {QStringLiteral("--close"), shop.path()});
        worker.waitForReadyRead(-1); // "begin"
        QElapsedTimer took;
        took.start();
        // The first close runs whole and sets the span the kills fall in.
        worker.waitForFinished(round == 1 ? -1 : int(random.bounded(quint32(span * 1.2) + 1)));
        span = round == 1 ? int(took.elapsed()) : span;
        worker.kill();
        worker.waitForFinished();
        during += worker.readAll().contains("done") ? 0 : 1;
        finishInterruptedClose(path);
        const auto years = closedYears(path);
        closed += years.isEmpty() ? 0 : 1;
        QString fault;
        if (years.isEmpty() && booksOf(path) != before)
            fault = QStringLiteral("the file changed and no closed year holds its rows");
        if (!years.isEmpty() && booksOf(years[0].second) != before)
            fault = QStringLiteral("the closed year does not hold every row once");
        if (!years.isEmpty() && SqliteFile(path, SqliteFile::Access::ReadOnly).number("select count(*) from salesmain") != 0)
            fault = QStringLiteral("a closed document is still in the file");
        if (QDir(shop.path() + "/years").entryList(QDir::Files).size() != years.size())
            fault = QStringLiteral("a closed year's file was left unfinished");
        const CheckReport report = checkShopFile(path, CheckDepth::Full);
        fault = report.clean() ? fault : report.text();
        if (!fault.isEmpty())
            std::printf("close %d: %s\n", round, qPrintable(fault)), ++failures;
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
    const QString command = args.value(1), self = app.applicationFilePath();
    const quint32 seed = args.contains("--seed") ? args.value(args.indexOf("--seed") + 1).toUInt() : QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    try {
        if (command == QLatin1String("--worker"))
            work(args.value(2), args.value(3).toUInt());
        if (command == QLatin1String("--counter"))
            keyAsCounter(args.value(2), args.value(3), args.value(4).toUInt(), args.value(5).toInt());
        if (command == QLatin1String("--close")) {
            say(QStringLiteral("begin"));
            const QString path = shopFile(args.value(2));
            closeYear(path, planYearClose(path, FinancialYear{}, QDate(2027, 3, 31), QDate(2027, 4, 1)), QDateTime::currentDateTime());
            say(QStringLiteral("done"));
            return 0;
        }
        std::printf("seed %u\n", seed);
        const int count = args.value(2).toInt();
        if (command == QLatin1String("--counters")) {
            int failed = 0;
            const QString restarter = args.contains("--restart") ? args.value(args.indexOf("--restart") + 1) : QString();
            // The runs' restarts alternate: as an administrator stops the server, as a crash.
            const QStringList runs = args.value(2).split(QLatin1Char(','));
            for (int run = 0; run < runs.size(); ++run)
                failed |= runCounters(runs[run].toInt(), args.value(3).toInt() / runs[run].toInt(), random, self, restarter,
                                      run % 2 ? QStringLiteral("immediate") : QStringLiteral("fast"));
            return failed;
        }
        return command == QLatin1String("--closes") ? runCloses(count, random, self) : runKills(count, random, self);
    } catch (const UnhandledError &error) {
        std::printf("%s\n", qPrintable(error.message()));
        return 1;
    }
}
