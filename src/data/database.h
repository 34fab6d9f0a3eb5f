#pragma once

#include "recordset.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVector>

namespace vantrel {

// A reader that keeps a statement open on the connection to fetch its rows a screenful at a
// time (a grid). While such a statement is open, a write on the same connection would not be
// committed, so the database asks every pending reader to read to its end before each write.
class PendingReader {
public:
    virtual void readToEnd() = 0;

protected:
    ~PendingReader() = default;
};

// The one connection to the shop's database file, through which every statement runs.
// Statements are single and stand alone: there is no transaction around an operator action, and
// every write is on disk when execute() returns. Every failure throws UnhandledError carrying
// the database's own message; the statement text is sent as it was assembled, unescaped.
class Database {
public:
    // Opens the file named by the connection string's data source, read-write and never creating
    // it. Throws UnhandledError when the file is missing, cannot be read, or is not a database.
    explicit Database(const QString &connectionString);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    QString fileName() const { return m_fileName; }

    // Runs an insert, update or delete.
    void execute(const QString &sql);
    // Runs a query and reads all its rows.
    Recordset query(const QString &sql);
    // Starts a forward-only query whose rows the caller fetches itself (see PendingReader).
    QSqlQuery startQuery(const QString &sql);

    void addPendingReader(PendingReader *reader);
    void removePendingReader(PendingReader *reader);

    // The statement as it is sent to the engine: "a x right join b y on" runs as the equivalent
    // "b y left join a x on", which the engine plans far better (the system's joins name their
    // columns, so the rows and columns are the same).
    static QString engineText(const QString &sql);

    // The database's own message of a failed statement, as the unhandled-error box shows it.
    static QString engineMessage(const QSqlError &error);

private:
    QString openConnection(); // empty when open, else the reason
    [[noreturn]] void fail(const QSqlQuery &query) const;
    void finishPendingReads();

    QString m_connectionName;
    QString m_fileName;
    QVector<PendingReader *> m_pendingReaders;
};

} // namespace vantrel
