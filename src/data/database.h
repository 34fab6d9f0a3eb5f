#pragma once

#include "recordset.h"
#include "serverconnection.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QTimer>
#include <QVector>
#include <functional>
#include <vector>

struct sqlite3_stmt;

namespace vantrel {

struct DateSpan;

class Database;

// A query whose rows are fetched a few at a time (a grid), on a connection of its own. Its rows
// are the books as they were when the query started, whatever is written meanwhile, and no write
// waits for it. Closing it (or destroying it) gives the connection back to the database, which
// must outlive it.
class PendingQuery {
public:
    PendingQuery() = default;
    PendingQuery(PendingQuery &&other) noexcept;
    PendingQuery &operator=(PendingQuery &&other) noexcept;
    ~PendingQuery();

    QSqlQuery &query() { return m_query; }
    // The rows read straight from the engine, without making a value of each: once next() has
    // taken the first row, the query stands on it, and stepRow() moves to the rows after.
    // Moves to the next row; false at the end, or when the engine could not produce it (FAILURE
    // says why then).
    bool stepRow(QString &failure);
    // The row the query stands on, as a grid shows it: each of its COLUMNS values' text appended
    // to TEXT (a text's own UTF-8, a whole number's digits, a real number's doubleText(), nothing
    // for a null), where each ends into CELLENDS, and whether it is a number into NUMBERS.
    void appendRow(int columns, QByteArray &text, QVector<quint32> &cellEnds, std::vector<bool> &numbers) const;
    bool isOpen() const { return m_db != nullptr; }
    // Whether it reads on an action's connection: it must be read to its end, and closed, before
    // the action's next statement.
    bool readsInAction() const { return m_inAction; }
    void close();
    // The names of the query's columns, as the file gives them.
    QStringList columnNames() const;
    // The database's message of the query's failure.
    QString failureMessage() const;

private:
    // The engine's statement under the query; null when the query is not open, or on the server.
    sqlite3_stmt *statement() const;
    // On the server, what each column holds, read from the first row's result: a table's figure
    // (a text made a number), a number, a text the grid shows as the server sent it (what the
    // driver would make a text of, with nothing to convert), or a value the driver converts.
    struct ServerColumns {
        QVector<ServerCell> kinds;
        QVector<bool> texts;
    };
    const ServerColumns &serverColumns(int columns) const;
    // On the server: the rows come through a cursor, a page at a time, in a read-only
    // transaction whose snapshot the query keeps; the next page is fetched when one is read,
    // each twice the one before up to a limit (a screenful first; a printout of every row in
    // few round trips).
    void openCursor(const QString &engineSql);
    void readWhole(const QString &engineSql);
    bool planForFirstRows();
    bool fetchPage();

    friend class Database;
    Database *m_db = nullptr;
    QString m_connection;
    QString m_sql;
    QSqlQuery m_query;
    int m_connections = 0; // the database's connections it was opened on
    int m_pageRows = 0;    // the rows the last page asked for
    bool m_inAction = false;
    mutable ServerColumns m_columns;
    // On the file, a register's span: the list of its dates walked for the query (a total read
    // alongside it takes the same), and whether the query began the read transaction in which
    // that list holds (closing the query ends it).
    struct SpanDays {
        QString span, days;
        bool began = false;
    };
    SpanDays m_span;
};

// The one connection to the shop's books, through which every statement runs: the database file,
// or the books on a PostgreSQL server (see serverschema.h for how the server keeps them).
// Statements are single. Outside an action (beginAction()) each stands alone and its write is on
// disk when execute() returns; an action's writes are on disk together when endAction() returns.
// Every failure throws UnhandledError carrying the database's own message; the statement text is
// sent as it was assembled, unescaped.
class Database {
public:
    enum class Access { ReadWrite, ReadOnly };

    // Opens the file named by the connection string's data source, never creating it: read-write,
    // or read only (a closed year: every write fails). Throws UnhandledError when the file is
    // missing, cannot be read, or is not a database, or when it cannot be written and should be.
    // A server connection in libpq's forms (isServerConnection()) opens the books there, and
    // throws when the server cannot be reached or the database holds no books.
    explicit Database(const QString &connectionString, Access access = Access::ReadWrite);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // The file's path, or the server connection as given.
    QString fileName() const { return m_fileName; }
    bool onServer() const { return m_server; }

    // Runs an insert, update or delete.
    void execute(const QString &sql);
    // Runs a query and reads all its rows.
    Recordset query(const QString &sql);
    // The same, read as the pending query reads: on its connection and at its moment, while it
    // is open (then the pages the pending query has read are at hand); on the database's own
    // connection once it is closed. Between two statements of one handler nothing is written,
    // so both read the same file.
    Recordset queryAlongside(const PendingQuery &pending, const QString &sql);
    // Starts a forward-only query whose rows the caller fetches itself, on a connection of its
    // own (see PendingQuery); during an action, on the action's connection, where the caller
    // reads it to its end before the next statement (readsInAction()).
    PendingQuery startQuery(const QString &sql);

    // The statements of one operator action run together from beginAction() to endAction(), in
    // one transaction that holds the books' lock from its start (the file's write lock; on the
    // server a lock every counter's action takes), so that no other counter's action comes
    // between them and every figure they read is the one they change. A statement that fails
    // ends the action but undoes nothing that ran before it (on the server each runs under a
    // savepoint of its own): endAction() keeps what ran. A kill, or a lost server, keeps none
    // of it. Reads during an action see its own writes. Actions do not nest: a second begin
    // joins the first, and the outer end ends it. Both throw UnhandledError (ServerLost) when
    // the lock cannot be had or the end cannot be written.
    void beginAction();
    void endAction();
    bool inAction() const { return m_actionDepth > 0; }
    // UNDO runs once if the action now under way ends with none of its writes kept (its end
    // failed: a lost server, a full disk); it is dropped when the action's writes are kept. What
    // a screen noted as done in the action (a number taken) is then undone. Outside an action,
    // nothing is kept.
    void onActionLost(std::function<void()> undo)
    {
        if (inAction())
            m_onLost.push_back(std::move(undo));
    }

    // Hears every statement as it goes to the engine (the benchmark times them bare); none
    // by default.
    void observeStatements(std::function<void(const QString &engineSql)> observer) { m_observer = std::move(observer); }

    // The statement as it is sent to the engine: the same rows, in the same order, with the
    // same columns and errors, in a form the engine runs fast (see engineForm() and serverForm()).
    QString engineText(const QString &sql) const;

    // Opens every connection to the server afresh, after it was lost (ServerLost); the grids'
    // queries then end where they stood. Returns why the server cannot be reached, or an empty text.
    QString reconnect();
    // Whether a connection to the server is broken (a grid's reading failed for that).
    bool serverLost() const;

    // The database's own message of a failed statement, as the unhandled-error box shows it.
    static QString engineMessage(const QSqlError &error);
    QString messageOf(const QSqlError &error) const;

private:
    friend class PendingQuery;
    enum Role { Writer, Reader };
    QString openConnection(const QString &name, Role role); // empty when open, else the reason
    QString openServerConnection(const QString &name, Role role);
    QString setUpServerSession(const QSqlDatabase &db, Role role);
    // DAYS, when given, is the list of dates of the register's span SQL is (spanDays()).
    QSqlQuery forwardQuery(const QString &connection, const QString &sql, const QString &days = {});
    // A register's span on the file: its distinct dates are walked once, in the read transaction
    // of the statement that reads the span's rows, and given to it as a list; a total read
    // alongside the open listing takes the same list. Empty on the server, and for any other
    // statement.
    DateSpan fileSpanOf(const QString &sql) const;
    QString spanDays(const QString &connection, const DateSpan &span);
    QString readSpan(PendingQuery &pending, const DateSpan &span); // its dates, walked for it
    QSqlQuery beginRead(const QString &connection); // a transaction that holds one read of the file
    // On the server during an action, a statement on the action's connection begins with a
    // savepoint, and its failure goes back to it (the statements before it stay).
    void markStep(const QString &connection);
    void undoStep(const QSqlQuery &failed) const;
    Recordset readAll(const QString &connection, const QString &sql, const QString &days = {});
    QString takeReader();
    QString openReader(QString &failure); // its name, counted among the readers; empty when it cannot be opened
    void readySpareReader();
    // On the server a new session loads the books' tables into its caches the first time a
    // statement names them (2-4 ms on each of the first statements); a session opened or found
    // while the program is idle loads them then, so that no keystroke waits for it.
    void warmUp(const QString &connection);
    void giveBack(const QString &reader);
    [[noreturn]] void fail(const QSqlQuery &query) const;
    QString sent(const QString &sql) const;
    QString observed(const QString &engineSql) const; // the text as it goes to the engine

    QString m_connectionName;
    bool m_server = false;
    QString m_fileName;
    Access m_access;
    QStringList m_readers;      // every reading connection, in use or not
    QStringList m_spareReaders; // those that no pending query holds
    // A spare reader is opened at the first idle moment, and again whenever the last spare is
    // taken (a grid rebound holds its old reader until the new query is under way), so that a
    // keystroke does not wait for a connection (on the server a new session, some 15 ms).
    QTimer m_spareReaderTimer;
    bool m_writerWarm = false;
    std::function<void(const QString &)> m_observer;
    int m_connections = 0; // how often the server's connections were opened afresh
    int m_actionDepth = 0;
    std::vector<std::function<void()>> m_onLost; // of the action under way
};

} // namespace vantrel
