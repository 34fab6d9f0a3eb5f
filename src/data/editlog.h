#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

struct sqlite3;
struct sqlite3_value;
struct sqlite3_stmt;

namespace vantrel {

// The edit log: every insert, update and delete on a table of the shop's data becomes one entry
// of the table `editlog`, written by triggers in the file itself, so that the program's own
// statements and any other client's (the sqlite3 shell) are logged alike:
//   id      the entry's place in the log
//   at      local time of the change, yyyy-mm-dd hh:mm:ss.sss
//   tab     the table changed; empty for the log's own notes (its start, a year's close)
//   rid     the row changed (its rowid)
//   action  insert, update or delete; start or close for a note
//   old/new the row before and after, as a JSON array of its columns in the table's order
//           (a note keeps its words and figures in new, as a JSON object)
//   source  the counter's name when the program made it ("program" for its tools), "other"
//           when anything else did
//   hash    SHA-256 (hex) over the previous entry's hash and this entry's fields: the chain
// The triggers use the engine's built-in functions only. On the program's connection a temporary
// trigger marks each new entry as the program's and seals it into the chain at once; an entry
// written by another client stays unsealed (hash null) until the program next opens the file.
// The log refuses to be edited once sealed; nothing in the program switches it off.

// A table the log watches, with its columns in their order.
struct LoggedTable {
    QString name;
    QStringList columns;
};

// The shop's tables, as the schema makes them.
const QVector<LoggedTable> &loggedTables();

// The statements that make the log: its table, its indexes, the guard that keeps sealed entries
// as they are, and per table its three triggers. Each statement as the engine stores it in
// sqlite_schema, without the closing semicolon.
QStringList editLogStatements();
// The names of the triggers among them, in the same order as editLogStatements() makes them.
QStringList editLogTriggerNames();
// Drops every trigger of the log (a year's new file is built with the log off, then restarted).
QString dropEditLogTriggersText();
// The SQL that reads a table's rows as (rowid, the JSON array of its columns), in rowid order:
// the same text as the log's triggers write.
QString rowsAsLoggedText(const LoggedTable &table);

// Prepares a writing connection to a file that has the log: the chain function and the
// temporary trigger that marks the program's entries as made by SOURCE (this counter's name)
// and seals them; then seals what another client left unsealed. A file without the log is left
// alone. Returns the engine's message when a step fails, else an empty string.
QString attachEditLog(sqlite3 *db, const QString &source = QStringLiteral("program"));

// Writes a note into the log, attaching the connection first (see attachEditLog): ACTION is
// "start" (the log begins: the note carries the digest of every table as it stands, the
// rows the log starts from) or "close". Throws UnhandledError when the statement fails.
void writeEditLogNote(sqlite3 *db, const QString &action, const QString &words, const QString &previousYearHash = QString());

// The newest entry's hash ("" for an empty log); throws UnhandledError when it cannot be read.
QByteArray lastEditLogHash(sqlite3 *db);

} // namespace vantrel
