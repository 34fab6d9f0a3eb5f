// The operator's actions on the real screens of a synthetic shop, timed: keystrokes in the
// search fields, item code, "&Add", re-open, party pick, cancel, settle, registers, day book,
// stock, ledger, start-up, and the peak memory of the session.
//
// Usage: bench_operator [shop|decade|both] [--engines file|both] [--data DIR] [--samples N] [--without-log]
//
// By default each size runs on the file and on a PostgreSQL server of the benchmark's own (started
// in DIR/server for the run, the file moved onto it, the move timed), and the two tables are
// printed side by side.
// With --without-log the working copy has no edit log: the run the log's cost is measured against.
// bench_operator SIZE --one --server CONNECTION --moved runs one size on a server of the caller's
// whose database books_SIZE already holds the move (a look at the server alone, without the
// decade's ten minutes of moving first).
// The shop files are made once (deterministic, through the program's schema) and kept in DIR
// (default: bench-data in the current directory); each run works on a copy. For every action it
// prints the median and the 95th percentile of its time, the time of the same statements run
// bare (logged from the connection, run again straight on the engine on a second copy of the
// file), their ratio and the budget.
#include "app/mainwindow.h"
#include "app/program.h"
#include "data/editlog.h"
#include "care/sqlitefile.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/sqlfunctions.h"
#include "data/serverconnection.h"
#include "care/servermove.h"
#include "data/shortdate.h"
#include "data/unhandlederror.h"
#include "shopfile.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/grid.h"
#include "widgets/screen.h"
#include "widgets/services.h"

#include <QApplication>
#include <QDateEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <algorithm>
#include <deque>
#include <cstdio>
#include <ctime>
#include <sqlite3.h>
#include <utility>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

double nowMs()
{
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

class YesDialogs final : public Dialogs {
public:
    void inform(const QString &) override {}
    bool ask(const QString &) override { return true; }
};

class DayClock final : public Clock {
public:
    QDate today() const override { return lastDay(); }
};

bool isRead(const QString &sql)
{
    return sql.startsWith(QLatin1String("select"), Qt::CaseInsensitive) || sql.startsWith(QLatin1String("with"), Qt::CaseInsensitive);
}

// Runs the statements an action sent, on a second copy of the books kept in step: the
// statements' own time, without the screens or the grid. The statements of an action that
// writes run in one transaction, as the program runs them (each on its own would wait for the
// disk once a statement).
class Bare {
public:
    virtual ~Bare() = default;
    // Runs the statements to their last rows; their time in milliseconds.
    double run(const QStringList &statements)
    {
        const bool writes = !std::all_of(statements.begin(), statements.end(), isRead);
        const double start = nowMs();
        if (writes)
            begin();
        for (const QString &sql : statements)
            runOne(sql);
        if (writes)
            commit();
        return nowMs() - start;
    }

protected:
    virtual void runOne(const QString &sql) = 0;
    virtual void begin() = 0;
    virtual void commit() = 0;
};

// The file's copy, opened straight on the engine with the program's pragmas and functions.
class BareFile final : public Bare {
public:
    explicit BareFile(const QString &path)
    {
        if (sqlite3_open_v2(path.toUtf8().constData(), &m_db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            throw UnhandledError(QStringLiteral("cannot open %1").arg(path));
        sqlite3_exec(m_db, "pragma journal_mode=wal; pragma synchronous=full", nullptr, nullptr, nullptr);
        registerSqlFunctions(m_db, ShortDate());
    }
    ~BareFile() { sqlite3_close(m_db); }

protected:
    void runOne(const QString &sql) override
    {
        const QByteArray text = sql.toUtf8();
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &statement, nullptr) == SQLITE_OK) {
            while (sqlite3_step(statement) == SQLITE_ROW) {
            }
        }
        sqlite3_finalize(statement);
    }
    void begin() override { sqlite3_exec(m_db, "begin immediate", nullptr, nullptr, nullptr); }
    void commit() override { sqlite3_exec(m_db, "commit", nullptr, nullptr, nullptr); }

private:
    sqlite3 *m_db = nullptr;
};

// The server's copy, a database of its own made from the same books, read through the driver to
// its last row, a page at a time as a grid reads it (the rows kept by none: the peak memory is
// the program's); an action's writes in one of the program's own transactions.
class BareServer final : public Bare {
public:
    explicit BareServer(const QString &connection) : m_db(connection) {}

protected:
    void runOne(const QString &sql) override
    {
        try {
            if (isRead(sql)) {
                PendingQuery rows = m_db.startQuery(sql);
                QString failure;
                while (rows.stepRow(failure)) {
                }
            } else
                m_db.execute(sql);
        } catch (const UnhandledError &) {
        }
    }
    void begin() override { m_db.beginAction(); }
    void commit() override { m_db.endAction(); }

private:
    Database m_db;
};

struct Row {
    QString action;
    double budget = 0; // p95, milliseconds; 0: none
    QVector<double> times, bares;
};

class Session {
public:
    Session(const QString &directory, Database &db, std::unique_ptr<Bare> bare, int samples)
        : m_db(db), m_bare(std::move(bare)), m_samples(samples),
          m_services{db, m_dialogs, m_clock, directory, [](const QString &m) { std::fprintf(stderr, "unhandled error: %s\n", qPrintable(m)); }, {}, {}, {}}
    {
        db.observeStatements([this](const QString &sql) { m_log << sql; });
        m_window = std::make_unique<MainWindow>(m_services);
        m_window->resize(1280, 800);
        m_window->show();
        m_sales = m_window->openScreen(QStringLiteral("sale"));
        QTest::qWait(200); // the operator looks at the screen before the first key
    }
    ~Session() { m_db.observeStatements(nullptr); }

    std::deque<Row> rows; // a reference to a row stays valid while more are added

    void run();

private:
    void registers(int n);
    template <class Action> void measure(Row &row, Action &&action)
    {
        keepBareInStep();
        const double start = nowMs();
        action();
        const double took = nowMs() - start;
        const QStringList statements = std::exchange(m_log, {});
        const double bare = m_bare->run(statements);
        row.times << took;
        if (!statements.isEmpty()) // printing runs none: it has no bare time to compare with
            row.bares << bare;
    }
    // The writes made between timed actions (the lines of an invoice about to be cancelled)
    // are made on the bare copy too, so that the timed statements find the same rows there.
    void keepBareInStep()
    {
        QStringList writes = std::exchange(m_log, {});
        writes.removeIf(isRead);
        m_bare->run(writes);
    }
    Row &row(const QString &action, double budget)
    {
        rows.push_back(Row{action, budget, {}, {}});
        return rows.back();
    }

    QWidget *named(QWidget *root, const QString &name)
    {
        for (QWidget *w : root->findChildren<QWidget *>())
            if (w->accessibleName() == name)
                return w;
        throw UnhandledError(QStringLiteral("no field named %1").arg(name));
    }
    QLineEdit *field(QWidget *root, const QString &name) { return qobject_cast<QLineEdit *>(named(root, name)); }
    Grid *grid(QWidget *root, const QString &name) { return qobject_cast<Grid *>(named(root, name)); }
    QPushButton *button(QWidget *root, const QString &caption)
    {
        for (QPushButton *b : root->findChildren<QPushButton *>())
            if (b->text() == caption)
                return b;
        throw UnhandledError(QStringLiteral("no button %1").arg(caption));
    }
    void key(QWidget *w, Qt::Key k)
    {
        w->setFocus();
        QTest::keyClick(w, k);
    }
    void letter(QWidget *w, QChar c)
    {
        w->setFocus();
        QTest::keyClick(w, c.toLower().toLatin1());
    }
    void idle(int ms) { QTest::qWait(ms); }

    void startCreditInvoice();
    void typeMode(char mode);
    void pickFromList(QWidget *screen, const QString &fieldName, const QString &typed, const QString &listName, Row &timed);
    void keyLine(int product, bool pause);
    void typeInto(const QString &fieldName, const QString &text, Row &keystrokes, Row &shortKeystrokes);
    void openScreen(const char *name) { m_window->openScreen(QString::fromLatin1(name)); }
    void setSpan(QWidget *screen, const QString &fromName, const QString &toName, QDate from, QDate to)
    {
        qobject_cast<QDateEdit *>(named(screen, fromName))->setDate(from);
        qobject_cast<QDateEdit *>(named(screen, toName))->setDate(to);
    }

    Database &m_db;
    std::unique_ptr<Bare> m_bare;
    int m_samples;
    YesDialogs m_dialogs;
    DayClock m_clock;
    Services m_services;
    std::unique_ptr<MainWindow> m_window;
    QWidget *m_sales = nullptr;
    QStringList m_log;
    quint64 m_pick = 12345;
    int next(int n) { return int((m_pick = m_pick * 6364136223846793005ULL + 1442695040888963407ULL) >> 33) % n; }
    int m_products = 0, m_parties = 0, m_invoices = 0;

public:
    void setSizes(const ShopSize &size)
    {
        m_products = size.products;
        m_parties = size.parties;
        m_invoices = size.salesLines / 10;
    }
};

// Types TEXT key by key into the field, as the operator does, the keyboard resting a little
// between keys; every key is timed, the first two also apart.
void Session::typeInto(const QString &fieldName, const QString &text, Row &keystrokes, Row &shortKeystrokes)
{
    QLineEdit *target = field(m_sales, fieldName);
    target->clear();
    for (int i = 0; i < text.size(); ++i) {
        measure(i < 2 ? shortKeystrokes : keystrokes, [&] { letter(target, text[i]); });
        idle(20);
    }
}

// The mode typed over the one shown: a new document of that mode.
void Session::typeMode(char mode)
{
    QLineEdit *field = this->field(m_sales, QStringLiteral("C/D"));
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, mode);
}

void Session::startCreditInvoice()
{
    typeMode('d');
    field(m_sales, QStringLiteral("Party:"))->setText(partyName(next(m_parties)));
}

// Types the start of a name into a search field, then times Enter on the list it fills.
void Session::pickFromList(QWidget *screen, const QString &fieldName, const QString &typed, const QString &listName, Row &timed)
{
    QLineEdit *search = field(screen, fieldName);
    search->clear();
    search->setFocus();
    QTest::keyClicks(search, typed);
    idle(50);
    measure(timed, [&] { key(grid(screen, listName), Qt::Key_Return); });
}

// One line keyed by item code and quantity; with PAUSE the operator waits a moment before
// "&Add" is pressed (the timing of "&Add" itself is the caller's).
void Session::keyLine(int product, bool pause)
{
    QLineEdit *code = field(m_sales, QStringLiteral("item code"));
    code->setText(QStringLiteral("M%1").arg(product + 1));
    key(code, Qt::Key_Return);
    QLineEdit *qty = field(m_sales, QStringLiteral("Qty"));
    qty->setFocus();
    QTest::keyClicks(qty, QStringLiteral("2"));
    if (pause)
        idle(400);
}

void Session::run()
{
    const int n = m_samples;
    QPushButton *add = button(m_sales, QStringLiteral("&Add"));

    Row &productKeys = row(QStringLiteral("product keystroke, 3-6 letters"), 16);
    Row &productShort = row(QStringLiteral("product keystroke, 1-2 letters"), 16);
    for (int i = 0; i < n / 2; ++i)
        typeInto(QStringLiteral("Product Name:"), productName(next(m_products)).left(6), productKeys, productShort);
    field(m_sales, QStringLiteral("Product Name:"))->clear();

    Row &partyKeys = row(QStringLiteral("party keystroke, 3-6 letters"), 16);
    Row &partyShort = row(QStringLiteral("party keystroke, 1-2 letters"), 16);
    for (int i = 0; i < n / 2; ++i)
        typeInto(QStringLiteral("Party:"), partyName(next(m_parties)).left(6), partyKeys, partyShort);

    Row &pick = row(QStringLiteral("party pick"), 50);
    for (int i = 0; i < n; ++i) {
        typeMode(i % 2 ? 'd' : 'c');
        pickFromList(m_sales, QStringLiteral("Party:"), partyName(next(m_parties)).left(4), QStringLiteral("party list"), pick);
    }

    Row &itemCode = row(QStringLiteral("item code + Enter"), 16);
    Row &addPaused = row(QStringLiteral("credit \"&Add\", operator pausing"), 60);
    Row &addKeyed = row(QStringLiteral("credit \"&Add\", lines keyed without a pause"), 60);
    startCreditInvoice();
    for (int i = 0; i < n; ++i) {
        QLineEdit *code = field(m_sales, QStringLiteral("item code"));
        code->setText(QStringLiteral("M%1").arg(next(m_products) + 1));
        measure(itemCode, [&] { key(code, Qt::Key_Return); });
        QTest::keyClicks(field(m_sales, QStringLiteral("Qty")), QStringLiteral("1"));
        idle(400);
        measure(addPaused, [&] { add->click(); });
    }
    startCreditInvoice();
    for (int i = 0; i < n; ++i) {
        keyLine(next(m_products), false);
        measure(addKeyed, [&] { add->click(); });
    }

    Row &reopen = row(QStringLiteral("re-open by number"), 50);
    for (int i = 0; i < n; ++i) {
        QLineEdit *number = field(m_sales, QStringLiteral("Invoice No :"));
        number->setText(QString::number(next(m_invoices) + 1));
        measure(reopen, [&] { key(number, Qt::Key_Return); });
        idle(50);
    }

    Row &cancel = row(QStringLiteral("\"C&ancel\" of a two-line invoice"), 50);
    Row &settle = row(QStringLiteral("\"&End Inventory\" of a two-line invoice"), 50);
    for (int i = 0; i < n; ++i) {
        startCreditInvoice();
        for (int line = 0; line < 2; ++line) {
            keyLine(next(m_products), true);
            add->click();
        }
        idle(300);
        Row &which = i % 2 ? settle : cancel;
        measure(which, [&] { button(m_sales, i % 2 ? QStringLiteral("&End Inventory") : QStringLiteral("C&ancel"))->click(); });
    }

    Row &dayBook = row(QStringLiteral("day book shown"), 50);
    for (int i = 0; i < n / 2; ++i) {
        openScreen("sale");
        measure(dayBook, [&] { openScreen("db"); });
    }

    Row &stockPick = row(QStringLiteral("stock pick"), 50);
    openScreen("stksum");
    QWidget *stock = m_window->screen(QStringLiteral("stksum"));
    for (int i = 0; i < n / 2; ++i)
        pickFromList(stock, QStringLiteral("Product Name"), productName(next(m_products)).left(8), QStringLiteral("product grid"), stockPick);

    Row &ledgerView = row(QStringLiteral("ledger view of a month"), 50);
    openScreen("led");
    QWidget *ledger = m_window->screen(QStringLiteral("led"));
    setSpan(ledger, QStringLiteral("From Date"), QStringLiteral("To Date"), QDate(2026, 11, 1), QDate(2026, 11, 30));
    for (int i = 0; i < n / 2; ++i)
        pickFromList(ledger, QStringLiteral("Account Name"), partyName(next(m_parties)).left(4), QStringLiteral("account search grid"), ledgerView);

    registers(n);
}

// The date-wise sales register of a month (the budget) and of a year, shown and printed.
void Session::registers(int n)
{
    openScreen("dwsrpt");
    QWidget *registerScreen = m_window->screen(QStringLiteral("dwsrpt"));
    const auto showAndPrint = [&](Row &timed, int samples) {
        for (int i = 0; i < samples; ++i) {
            measure(timed, [&] {
                button(registerScreen, QStringLiteral("&Show"))->click();
                button(registerScreen, QStringLiteral("Print"))->click();
            });
            idle(50);
        }
    };
    setSpan(registerScreen, QStringLiteral("From"), QStringLiteral("To"), QDate(2026, 11, 1), QDate(2026, 11, 30));
    showAndPrint(row(QStringLiteral("date-wise register of a month, shown + printed"), 150), std::max(3, n * 2 / 3));
    Row &monthShown = row(QStringLiteral("  of which shown"), 0);
    Row &monthPrinted = row(QStringLiteral("  of which printed"), 0);
    for (int i = 0; i < std::max(3, n * 2 / 3); ++i) {
        measure(monthShown, [&] { button(registerScreen, QStringLiteral("&Show"))->click(); });
        measure(monthPrinted, [&] { button(registerScreen, QStringLiteral("Print"))->click(); });
        idle(50);
    }
    setSpan(registerScreen, QStringLiteral("From"), QStringLiteral("To"), QDate(2026, 1, 1), QDate(2026, 12, 31));
    showAndPrint(row(QStringLiteral("date-wise register of a year, shown + printed"), 0), std::max(2, n / 10));
}

// Peak resident memory of this process so far, in MB.
double peakMemoryMb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    return 0;
}

void printRow(const Row &r)
{
    const double median = percentile(r.times, 0.5), p95 = percentile(r.times, 0.95), bare = percentile(r.bares, 0.5);
    const QString budget = r.budget > 0 ? QString::number(r.budget, 'f', 0) : QStringLiteral("-");
    // Within its budget, and within half as much again as its statements' own time; an action
    // of a few milliseconds may spend two on the screen itself (no operator sees 2 ms).
    const bool within = (r.budget <= 0 || p95 <= r.budget) && (r.bares.isEmpty() || median <= 1.5 * bare || median - bare < 2.0);
    const QString bareText = r.bares.isEmpty() ? QStringLiteral("-") : QString::number(bare, 'f', 1);
    const QString ratio = r.bares.isEmpty() || bare <= 0 ? QStringLiteral("-") : QString::number(median / bare, 'f', 2);
    std::printf("| %-52s | %4d | %8.1f | %8.1f | %8s | %5s | %6s | %s |\n", qPrintable(r.action), int(r.times.size()), median, p95,
                qPrintable(bareText), qPrintable(ratio), qPrintable(budget), within ? "yes" : "NO");
}

// Child: the program's own start-up on DIRECTORY until the Sales screen is shown; prints the
// milliseconds since SPAWNED (the parent's monotonic clock when it started this process).
int startUp(const QString &directory, double spawned, int argc, char **argv)
{
    QApplication app(argc, argv);
    YesDialogs dialogs;
    DayClock clock;
    Program program(directory, dialogs, clock, [](const QString &) {});
    while (!program.window().isVisible() || !program.window().findChild<QMdiArea *>()->activeSubWindow())
        QCoreApplication::processEvents();
    program.window().repaint();
    std::printf("%.3f\n", nowMs() - spawned);
    return 0;
}

Row startUpRow(const QString &self, const QString &directory, int samples)
{
    Row r{QStringLiteral("start-up to the Sales screen"), 300, {}, {}};
    for (int i = 0; i < samples; ++i) {
        QProcess child;
        child.start(self, {QStringLiteral("--start-up"), directory, QString::number(nowMs(), 'f', 3)});
        child.waitForFinished(60000);
        r.times << child.readAllStandardOutput().trimmed().toDouble();
    }
    return r;
}

QString shopFile(const QString &dataDirectory, const ShopSize &size, const QString &self)
{
    const QString path = dataDirectory + QStringLiteral("/%1-1.accdb").arg(QLatin1String(size.name));
    if (!QFile::exists(path)) {
        std::printf("making the %s file (once; kept in %s)...\n", size.name, qPrintable(dataDirectory));
        QDir().mkpath(dataDirectory);
        QElapsedTimer t;
        t.start();
        // In a process of its own, so that the generator's memory is not the session's.
        if (QProcess::execute(self, {QStringLiteral("--make"), QLatin1String(size.name), path}) != 0)
            throw UnhandledError(QStringLiteral("could not make %1").arg(path));
        std::printf("  made in %.0f s\n", double(t.elapsed()) / 1000);
    }
    return path;
}

void copyFile(const QString &from, const QString &to)
{
    QFile::remove(to);
    QFile::remove(to + "-wal");
    QFile::remove(to + "-shm");
    if (!QFile::copy(from, to))
        throw UnhandledError(QStringLiteral("cannot copy %1 to %2").arg(from, to));
    QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
}

QString serverDatabase(const QString &server, const QString &name)
{
    return QString(server).replace(QStringLiteral("/postgres?"), QLatin1Char('/') + name + QLatin1Char('?'));
}

// Child: one size's session on one engine (SERVER empty: the file); prints its table.
int benchmark(const ShopSize &size, const QString &dataDirectory, int samples, bool withoutLog, const QString &server, bool moved, int argc,
              char **argv)
{
    QApplication app(argc, argv);
    const QString self = QCoreApplication::applicationFilePath();
    const QString original = shopFile(dataDirectory, size, self);
    const QString work = dataDirectory + QStringLiteral("/run-%1").arg(QLatin1String(size.name));
    QDir().mkpath(work);
    copyFile(original, work + "/vantrel.accdb");
    copyFile(original, work + "/bare.accdb");
    if (withoutLog)
        for (const char *copy : {"/vantrel.accdb", "/bare.accdb"})
            SqliteFile(work + QLatin1String(copy), SqliteFile::Access::ReadWrite).execute(dropEditLogTriggersText() + "drop table editlog;");
    QString books = buildConnectionString(work);
    if (!server.isEmpty()) {
        const QString movedBooks = QStringLiteral("books_%1").arg(QLatin1String(size.name));
        if (!moved) {
            onServer(server, QStringLiteral("drop database if exists %1 with (force)").arg(movedBooks));
            onServer(server, QStringLiteral("create database %1").arg(movedBooks));
            QElapsedTimer t;
            t.start();
            moveFileToServer(work + "/vantrel.accdb", serverDatabase(server, movedBooks));
            std::printf("moved onto the server, proven, in %.1f s\n", double(t.elapsed()) / 1000);
        }
        for (const char *copy : {"run", "bare"}) {
            onServer(server, QStringLiteral("drop database if exists %1_%2 with (force)").arg(QLatin1String(copy), QLatin1String(size.name)));
            onServer(server, QStringLiteral("create database %1_%2 template %3").arg(QLatin1String(copy), QLatin1String(size.name), movedBooks));
        }
        books = serverDatabase(server, QStringLiteral("run_%1").arg(QLatin1String(size.name)));
        qputenv("VANTREL_BOOKS", books.toUtf8()); // the start-up's program opens them too
    }

    std::printf("\n%s on the %s: %d products, %d parties, %d sales lines, %d purchase lines, %d ledger rows (%.0f MB file)\n", size.name,
                server.isEmpty() ? "file" : "server", size.products, size.parties, size.salesLines, size.purchaseLines,
                std::min(size.ledgerRows / 2, 32000) * 2, double(QFileInfo(original).size()) / 1e6);
    std::printf("| %-52s | %4s | %8s | %8s | %8s | %5s | %6s | %s |\n", "action (ms)", "n", "median", "p95", "bare", "ratio", "budget", "ok");
    std::printf("|%s|------|----------|----------|----------|-------|--------|----|\n", QByteArray(54, '-').constData());
    printRow(startUpRow(self, work, std::max(5, samples / 2)));
    {
        Database db(books);
        std::unique_ptr<Bare> bare;
        if (server.isEmpty())
            bare = std::make_unique<BareFile>(work + "/bare.accdb");
        else
            bare = std::make_unique<BareServer>(serverDatabase(server, QStringLiteral("bare_%1").arg(QLatin1String(size.name))));
        Session session(work, db, std::move(bare), samples);
        session.setSizes(size);
        session.run();
        for (const Row &r : session.rows)
            printRow(r);
    }
    const double peak = peakMemoryMb();
    std::printf("| %-52s | %4d | %8.0f | %8s | %8s | %5s | %6s | %s |\n", "peak memory after the session (MB)", 1, peak, "", "", "", "200",
                peak <= 200 ? "yes" : "NO");
    return 0;
}

// The cells of a table row a child printed ("| a | b |"), trimmed; empty for any other line.
QStringList cells(const QString &line)
{
    if (!line.startsWith(QLatin1String("| ")))
        return {};
    QStringList parts = line.split(QLatin1Char('|'));
    parts = parts.mid(1, parts.size() - 2);
    for (QString &part : parts)
        part = part.trimmed();
    return parts;
}

// One size on both engines, each in a child of its own; their tables printed side by side.
int bothEngines(const QString &size, const QStringList &options, const QString &server)
{
    QList<QList<QStringList>> tables;
    for (const QString &engine : {QString(), server}) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(),
                    QStringList{size, QStringLiteral("--one")} + options + (engine.isEmpty() ? QStringList{} : QStringList{"--server", engine}));
        child.waitForFinished(-1);
        QList<QStringList> rows;
        for (const QString &line : QString::fromUtf8(child.readAllStandardOutput()).split(QLatin1Char('\n'))) {
            const QStringList row = cells(line);
            if (row.isEmpty() && !line.trimmed().isEmpty() && !line.startsWith(QLatin1String("|-")))
                std::printf("%s\n", qPrintable(line));
            else if (row.size() == 8 && row[0] != QLatin1String("action (ms)"))
                rows << row;
        }
        if (child.exitCode() != 0)
            return child.exitCode();
        tables << rows;
    }
    std::printf("\n%s, the file and the server side by side (milliseconds; bare: the action's statements alone)\n", qPrintable(size));
    std::printf("| %-52s | %6s | %8s | %8s | %4s | %8s | %8s | %8s | %5s | %4s |\n", "action", "budget", "file med", "file p95", "ok",
                "srv med", "srv p95", "srv bare", "ratio", "ok");
    std::printf("|%s|--------|----------|----------|------|----------|----------|----------|-------|------|\n", QByteArray(54, '-').constData());
    for (const QStringList &file : tables[0]) {
        QStringList there(8);
        for (const QStringList &row : tables[1])
            if (row[0] == file[0])
                there = row;
        std::printf("| %-52s | %6s | %8s | %8s | %4s | %8s | %8s | %8s | %5s | %4s |\n", qPrintable(file[0]), qPrintable(file[6]),
                    qPrintable(file[2]), qPrintable(file[3]), qPrintable(file[7]), qPrintable(there[2]), qPrintable(there[3]),
                    qPrintable(there[4]), qPrintable(there[5]), qPrintable(there[7]));
    }
    return 0;
}

const ShopSize *sizeNamed(const QString &name)
{
    if (name == QLatin1String("shop"))
        return &shopSize();
    if (name == QLatin1String("decade"))
        return &decadeSize();
    return nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    try {
        if (argc == 4 && qstrcmp(argv[1], "--start-up") == 0)
            return startUp(QString::fromLocal8Bit(argv[2]), std::atof(argv[3]), argc, argv);
        if (argc == 4 && qstrcmp(argv[1], "--make") == 0) {
            QCoreApplication app(argc, argv);
            makeShopFile(QString::fromLocal8Bit(argv[3]), *sizeNamed(QString::fromLatin1(argv[2])));
            return 0;
        }
        QString which = QStringLiteral("both"), data = QDir::currentPath() + QStringLiteral("/bench-data"), server, engines = QStringLiteral("both");
        int samples = 30;
        bool oneSize = false, withoutLog = false, moved = false;
        for (int i = 1; i < argc; ++i) {
            const QString arg = QString::fromLocal8Bit(argv[i]);
            if (arg == QLatin1String("--data") && i + 1 < argc)
                data = QString::fromLocal8Bit(argv[++i]);
            else if (arg == QLatin1String("--samples") && i + 1 < argc)
                samples = std::max(4, std::atoi(argv[++i]));
            else if (arg == QLatin1String("--server") && i + 1 < argc)
                server = QString::fromLocal8Bit(argv[++i]);
            else if (arg == QLatin1String("--engines") && i + 1 < argc)
                engines = QString::fromLocal8Bit(argv[++i]);
            else if (arg == QLatin1String("--one"))
                oneSize = true;
            else if (arg == QLatin1String("--without-log"))
                withoutLog = true;
            else if (arg == QLatin1String("--moved"))
                moved = true;
            else
                which = arg;
        }
        if (oneSize)
            return benchmark(*sizeNamed(which), data, samples, withoutLog, server, moved, argc, argv);
        // Each size and engine in a process of its own: its peak memory is its own session's.
        const QStringList sizes = which == QLatin1String("both") ? QStringList{"shop", "decade"} : QStringList{which};
        QCoreApplication app(argc, argv);
        const QStringList options = QStringList{QStringLiteral("--data"), data, QStringLiteral("--samples"), QString::number(samples)}
            + (withoutLog ? QStringList{QStringLiteral("--without-log")} : QStringList{});
        // The server is one of the benchmark's own, on this machine, started for the run.
        const QString root = data + QStringLiteral("/server");
        if (engines != QLatin1String("file")) {
            if (QProcess::execute(QStringLiteral(VANTREL_PGSERVER), {root, QStringLiteral("start")}) != 0)
                throw UnhandledError(QStringLiteral("the benchmark's server did not start"));
            QFile uri(root + QStringLiteral("/uri"));
            uri.open(QIODevice::ReadOnly);
            server = QString::fromUtf8(uri.readAll()).trimmed();
        }
        int status = 0;
        for (const QString &size : sizes) {
            if (!sizeNamed(size)) {
                std::fprintf(stderr, "usage: bench_operator [shop|decade|both] [--engines file|both] [--data DIR] [--samples N] [--without-log]\n");
                status = 2;
                break;
            }
            if (engines != QLatin1String("file")) {
                status = bothEngines(size, options, server);
            } else {
                QProcess child;
                child.setProcessChannelMode(QProcess::ForwardedChannels);
                child.start(QCoreApplication::applicationFilePath(), QStringList{size, QStringLiteral("--one")} + options);
                child.waitForFinished(-1);
                status = child.exitCode();
            }
            if (status != 0)
                break;
        }
        if (engines != QLatin1String("file"))
            QProcess::execute(QStringLiteral(VANTREL_PGSERVER), {root, QStringLiteral("stop")});
        return status;
    } catch (const UnhandledError &error) {
        std::fprintf(stderr, "bench_operator: %s\n", qPrintable(error.message()));
        return 1;
    }
}
