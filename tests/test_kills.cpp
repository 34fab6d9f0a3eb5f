// The shop killed (SIGKILL) at random moments of its work. A worker drives the real screens
// (offscreen) through random actions on one shop file, saying "begin" before each and "done" with
// a digest of the books after it; killed a random time after it said it was ready, the file's
// pages must be sound and, when no action was cut off, its books what the last one left (what a
// cut one leaves is the check's business). The next worker carries on, as after a crash.
//   test_kills --kills N | --together N | --closes N [--seed S]    (the soak runs more)
//   test_kills --worker DIR SEED | --close DIR                       (started by the tests)
#include "support/steps.h"
#include "care/yearclose.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <cstdio>

using namespace vantrel;

namespace {

// Codes 7001..7024, the last four without a stock row; the opening stock leaves room under the
// 16 bits in which a cancel counts stock.
const int Products = 24;
const QStringList Parties = {"PARTYA", "PARTYB", "PARTYC", "PARTYD", "PARTYE"};
QString shopFile(const QString &directory) { return QDir(directory).filePath(QStringLiteral("vantrel.accdb")); }

void makeShop(const QString &directory)
{
    createDatabaseFile(shopFile(directory));
    SqliteFile file(shopFile(directory), SqliteFile::Access::ReadWrite);
    file.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) insert into productmaster"
                                "(cmpid,psrno,prodname,model,rate) select 'CIP', i, printf('ITEM %02d', i), 7000 + i, 5 + i * 2.5 from n").arg(Products));
    file.execute(QStringLiteral("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) select cmpid, '0', psrno, "
                                "prodname, model, 'OPENING', 20000, 1, 1, 0, 20000 from productmaster where psrno <= %1").arg(Products - 4));
    for (int i = 0; i < Parties.size(); ++i)
        file.execute(QStringLiteral("insert into suppliermaster(ID,suppname) values(%1,'%2')").arg(i + 1).arg(Parties[i]));
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

// Two copies of the program at work on one file at once, as when the operator starts it twice:
// neither may meet an error (each waits for the other's write), and the file stays sound.
// Both may propose the same number and so write into one document; that is the system's own
// numbering, not reserved.
int runTogether(int actions, QRandomGenerator &random, const QString &self)
{
    QTemporaryDir shop;
    makeShop(shop.path());
    QProcess workers[2];
    Said said[2];
    for (QProcess &worker : workers)
        if (!startWorker(worker, self, shop.path(), random.generate()))
            return 1;
    while ((said[0].completed < actions || said[1].completed < actions) && workers[0].state() == QProcess::Running
           && workers[1].state() == QProcess::Running)
        for (int i = 0; i < 2; ++i)
            if (workers[i].waitForReadyRead(100))
                said[i].read(workers[i].readAll());
    for (int i = 0; i < 2; ++i) {
        workers[i].kill();
        workers[i].waitForFinished();
        said[i].read(workers[i].readAll());
    }
    const CheckReport report = checkShopFile(shopFile(shop.path()), CheckDepth::Full);
    std::printf("two copies at once: %d and %d actions completed; pages %s\n", said[0].completed, said[1].completed,
                report.damage.isEmpty() ? "sound" : "DAMAGED");
    return said[0].errors + said[1].errors == 0 && report.damage.isEmpty() && said[0].completed >= actions && said[1].completed >= actions ? 0 : 1;
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
        if (command == QLatin1String("--close")) {
            say(QStringLiteral("begin"));
            const QString path = shopFile(args.value(2));
            closeYear(path, planYearClose(path, FinancialYear{}, QDate(2027, 3, 31), QDate(2027, 4, 1)), QDateTime::currentDateTime());
            say(QStringLiteral("done"));
            return 0;
        }
        std::printf("seed %u\n", seed);
        const int count = args.value(2).toInt();
        return command == QLatin1String("--closes") ? runCloses(count, random, self)
             : command == QLatin1String("--together") ? runTogether(count, random, self) : runKills(count, random, self);
    } catch (const UnhandledError &error) {
        std::printf("%s\n", qPrintable(error.message()));
        return 1;
    }
}
