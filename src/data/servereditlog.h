#pragma once

#include "serverschema.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

class QSqlQuery;

namespace vantrel {

// The edit log on the server: the same table, entries and chain as the file's (editlog.h), kept
// by the server itself, so that a counter's statements, a psql session's and any other client's
// are logged alike:
// - each table's trigger (in the server's own language) writes its insert, update or delete as
//   one entry, the row before and after as a JSON array of its columns in the table's order
//   (a figure as a number when it is one, else its text);
// - the log's own trigger numbers each entry, stamps it with the session's local time, names
//   who made it (the counter's name, which the program sets as vantrel.counter on connecting;
//   "other" for anything else) and seals it into the chain at once, one writer at a time
//   (a transaction-long lock), so that the entries of two counters never fork the chain;
// - a sealed entry cannot be changed, deleted or truncated.
// The log's table and the functions its triggers call, made with the books' tables.
QString serverEditLogTableText();
// The triggers, made when the books' tables hold what they start with (a moved file's rows and
// its log's entries, which keep their numbers, times and hashes).
QString serverEditLogText();

// The names of the triggers serverEditLogText() makes, each with its table and the function it
// runs (the check finds them on the server as they were made).
struct ServerLogTrigger {
    QString name, table, function;
    int type; // its kind as the server's catalogue codes it (row, before, the events)
};
QVector<ServerLogTrigger> serverLogTriggers();
// The body of FUNCTION as serverEditLogText() writes it.
QString serverLogFunctionBody(const QString &function);

// The SQL that reads a table's rows as (rowid, the JSON text of its columns), in rowid order: the
// same text as the table's log trigger writes.
QString serverRowsAsLoggedText(const ServerTable &table);

// Writes the log's start note on the server through QUERY (inside the transaction that made the
// books): the digests of every table as it stands and the note's WORDS; a log moved from a file
// goes on in the same chain; after a year's close it names the hash the year's log ends on.
void writeServerStartNote(QSqlQuery &query, const QString &words, const QString &previousYearHash = QString());

} // namespace vantrel
