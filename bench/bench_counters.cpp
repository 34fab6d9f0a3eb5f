// Several counters keying credit lines at once on the decade's books: for 1, 2, 4 and 8
// counters, each a program of its own, the time of every "&Add" (the wait for the other
// counters' actions included), on the file and on a server, side by side.
//
// Usage: bench_counters [--data DIR] [--lines N] [--server CONNECTION]
//   DIR holds decade-1.accdb (bench_operator makes it); with --server, the server's database
//   books_decade holds the decade moved (bench_operator decade --server ... does it). Each counter
//   keys N lines (default 40), two to an invoice.
// bench_counters --counter BOOKS SEED LINES is one counter, started by the benchmark.
#include "app/mainwindow.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/serverconnection.h"
#include "data/unhandlederror.h"
#include "shopfile.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/screen.h"
#include "widgets/services.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

class QuietDialogs final : public Dialogs {
public:
    void inform(const QString &) override {}
    bool ask(const QString &) override { return true; }
};

class DayClock final : public Clock {
public:
    QDate today() const override { return lastDay(); }
};

template <typename W> W *named(QWidget *screen, const QString &name)
{
    for (W *w : screen->findChildren<W *>())
        if (w->accessibleName() == name || w->property("text").toString() == name)
            return w;
    throw UnhandledError("no widget " + name);
}

// One counter: credit invoices of two lines each, every "&Add" timed; prints "add MS" for each.
int counter(const QString &books, quint32 seed, int lines, int argc, char **argv)
{
    QApplication app(argc, argv);
    Database db(books);
    QuietDialogs dialogs;
    DayClock clock;
    Services services{db, dialogs, clock, QDir::tempPath(), [](const QString &m) { std::printf("error %s\n", qPrintable(m)); std::exit(3); },
                      {}, {}, {}};
    MainWindow window(services);
    window.show();
    QWidget *sales = window.openScreen(QStringLiteral("sale"));
    QRandomGenerator random(seed);
    QPushButton *add = named<QPushButton>(sales, QStringLiteral("&Add"));
    for (int line = 0; line < lines; ++line) {
        if (line % 2 == 0) {
            QLineEdit *mode = named<QLineEdit>(sales, QStringLiteral("C/D"));
            mode->setFocus();
            mode->selectAll();
            QTest::keyClick(mode, 'd');
            named<QLineEdit>(sales, QStringLiteral("Party:"))->setText(partyName(int(random.bounded(quint32(decadeSize().parties)))));
        }
        QLineEdit *code = named<QLineEdit>(sales, QStringLiteral("item code"));
        code->setText(QStringLiteral("M%1").arg(random.bounded(quint32(decadeSize().products)) + 1));
        QTest::keyClick(code, Qt::Key_Return);
        QTest::keyClicks(named<QLineEdit>(sales, QStringLiteral("Qty")), QStringLiteral("1"));
        QTest::qWait(int(random.bounded(200u))); // the operator's pause, different at each counter
        QElapsedTimer took;
        took.start();
        add->click();
        std::printf("add %.3f\n", double(took.nsecsElapsed()) / 1e6);
        std::fflush(stdout);
    }
    return 0;
}

struct Figures {
    int adds = 0, errors = 0;
    double median = 0, p95 = 0, longest = 0;
};

// COUNTERS counters at once on BOOKS, LINES each.
Figures runCounters(const QString &books, int counters, int lines)
{
    std::vector<std::unique_ptr<QProcess>> children;
    for (int i = 0; i < counters; ++i) {
        children.push_back(std::make_unique<QProcess>());
        children.back()->start(QCoreApplication::applicationFilePath(),
                               {QStringLiteral("--counter"), books, QString::number(QRandomGenerator::global()->generate()), QString::number(lines)});
    }
    QVector<double> times;
    Figures figures;
    for (auto &child : children) {
        child->waitForFinished(-1);
        for (const QByteArray &line : child->readAllStandardOutput().split('\n')) {
            if (line.startsWith("add "))
                times << line.mid(4).toDouble();
            else if (line.startsWith("error"))
                std::printf("  a counter met an %s\n", line.constData()), ++figures.errors;
        }
    }
    figures.adds = int(times.size());
    figures.median = percentile(times, 0.5);
    figures.p95 = percentile(times, 0.95);
    figures.longest = percentile(times, 1.0);
    return figures;
}

} // namespace

int main(int argc, char **argv)
{
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    try {
        if (argc == 5 && qstrcmp(argv[1], "--counter") == 0)
            return counter(QString::fromLocal8Bit(argv[2]), quint32(std::strtoul(argv[3], nullptr, 10)), std::atoi(argv[4]), argc, argv);
        QCoreApplication app(argc, argv);
        QString data = QDir::currentPath() + QStringLiteral("/bench-data"), server;
        int lines = 40;
        for (int i = 1; i + 1 < argc; i += 2) {
            const QString option = QString::fromLocal8Bit(argv[i]), value = QString::fromLocal8Bit(argv[i + 1]);
            if (option == QLatin1String("--data"))
                data = value;
            else if (option == QLatin1String("--lines"))
                lines = std::max(2, value.toInt());
            else if (option == QLatin1String("--server"))
                server = value;
        }
        // The file's working copy, and on the server a database made from the moved decade.
        const QString work = data + QStringLiteral("/run-counters");
        QDir().mkpath(work);
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(work + QStringLiteral("/vantrel.accdb") + QLatin1String(suffix));
        if (!QFile::copy(data + QStringLiteral("/decade-1.accdb"), work + QStringLiteral("/vantrel.accdb")))
            throw UnhandledError(QStringLiteral("no decade file in %1 (bench_operator decade makes it)").arg(data));
        QStringList engines{buildConnectionString(work)};
        if (!server.isEmpty()) {
            onServer(server, QStringLiteral("drop database if exists counters_decade with (force)"));
            onServer(server, QStringLiteral("create database counters_decade template books_decade"));
            engines << QString(server).replace(QStringLiteral("/postgres?"), QStringLiteral("/counters_decade?"));
        }
        std::printf("decade's books, credit lines keyed by 1, 2, 4 and 8 counters at once, %d lines each; \"&Add\" in ms\n", lines);
        std::printf("| counters | engine | adds | median |    p95 | longest | errors |\n|----------|--------|------|--------|--------|---------|--------|\n");
        int errors = 0;
        for (const int counters : {1, 2, 4, 8})
            for (int e = 0; e < engines.size(); ++e) {
                const Figures f = runCounters(engines[e], counters, lines);
                std::printf("| %8d | %6s | %4d | %6.1f | %6.1f | %7.1f | %6d |\n", counters, e == 0 ? "file" : "server", f.adds, f.median, f.p95,
                            f.longest, f.errors);
                errors += f.errors;
            }
        return errors == 0 ? 0 : 1;
    } catch (const UnhandledError &error) {
        std::fprintf(stderr, "bench_counters: %s\n", qPrintable(error.message()));
        return 1;
    }
}
