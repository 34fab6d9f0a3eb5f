#pragma once

// What every test uses: the shop file and its care, errors, the test library.
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>

namespace vantrel::test {

// Message boxes for tests: every message and question is recorded in order, and questions are
// answered from a script. A question nobody scripted fails the test.
class ScriptedDialogs final : public Dialogs {
public:
    // A box shown while an action holds the books' lock fails the test: every counter would wait
    // on the operator reading it.
    void inform(const QString &message) override;
    bool ask(const QString &question) override;
    int choose(const QString &question, const QStringList &items) override;
    // Recorded as "QUESTION [MM/DD/YYYY]" with the day proposed; answered from the script of days
    // (an invalid one drops the question), else with the day proposed, as Enter takes it.
    QDate askDate(const QString &question, const QDate &proposed) override;
    // Recorded as "preview DOCUMENT: N lines" and answered as a question is.
    bool previewPrintout(const QString &document, const QStringList &lines) override
    {
        return ask(QStringLiteral("preview %1: %2 lines").arg(document).arg(lines.size()));
    }

    QStringList shown;
    QList<bool> answers;
    QList<int> choices;
    QList<QDate> days;
    bool answerYes = false; // every question nobody scripted answered Yes, as a worker at random work
    int thinking = 0;       // the milliseconds a worker takes over such a question
    std::function<bool()> booksLocked; // whether an action holds the books' lock now
};

// The message of the UnhandledError that ACTION throws, or "(no error)".
QString errorOf(const std::function<void()> &action);

class FixedClock final : public Clock {
public:
    QDate today() const override { return day; }
    QDate day{2026, 11, 23};
};

// The tests' own PostgreSQL server (tests/support/pgserver) when VANTREL_TEST_SERVER names its
// folder: the books are then on it. Empty when the tests run on the file.
QString testServer();
// A new, empty database NAME on the tests' server, made with OPTIONS ("template template0 ...");
// its connection.
QString newServerDatabase(const QString &name, const QString &options = {});
// Fills the books BOOKS names with the shared shop, as the screens write.
void fillShop(const QString &books);

// A fresh shop: a database file written by the same code as vantrel-initdb, in a temporary
// program directory whose name has a blank in it, opened through the connection string; or, on
// the tests' server, a database of its own made by the same code. Empty, or holding the shared
// shop (tests/support/shop.sql). Unhandled errors are recorded instead of ending the program.
class TestShop {
public:
    enum Start { Empty, Filled };
    explicit TestShop(Start start = Empty);
    // The shop in DIRECTORY as it is (or the books BOOKS names, with DIRECTORY the program's):
    // another process's, at which a worker is set.
    explicit TestShop(const QString &directory, const QString &books = {});
    ~TestShop();

    QString directory() const { return m_path; }
    QString file() const { return m_path + QStringLiteral("/vantrel.accdb"); }
    // Where the books are: the connection string of the file, or the server's connection.
    QString books() const;
    Database &db() { return *m_db; }
    Services &services() { return *m_services; }

    // Runs a statement; a failure fails the test, naming the statement and the database's error.
    void exec(const QString &sql);
    // Ends every connection of the program's to the shop's books on the test server, as a server
    // restart would.
    void endServerConnections();
    // Every row of a query, each field as the screens show it.
    QList<QStringList> rows(const QString &sql);
    // A worker's reads go on through a server restart: a read that finds the server gone is read
    // again once it answers (the program's own statements meet the loss as the program does).
    bool readThroughRestarts = false;

    ScriptedDialogs dialogs;
    FixedClock clock;
    QStringList unhandledErrors;

private:
    void open();

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
    QString m_serverDatabase; // the shop's database on the tests' server, if it is there
    QString m_books;          // the books given, else the directory's file or the server database
    std::unique_ptr<Database> m_db;
    std::unique_ptr<Services> m_services;
};

} // namespace vantrel::test

// A test program's main(): English (United States) dates and numbers whatever the machine's
// locale, a real QApplication for the screens, and the program's settings kept apart.
#define VANTREL_TEST_MAIN(TestClass)                                                     \
    int main(int argc, char **argv)                                                      \
    {                                                                                    \
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));           \
        QApplication app(argc, argv);                                                    \
        QApplication::setOrganizationName(QStringLiteral("Vantrel tests"));             \
        QStandardPaths::setTestModeEnabled(true); /* settings apart from the user's */  \
        TestClass test;                                                                  \
        return QTest::qExec(&test, argc, argv);                                          \
    }
