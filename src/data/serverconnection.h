#pragma once

#include <QSqlError>

class QSqlDatabase;
class QSqlDriver;
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace vantrel {

// Whether TEXT names the books on a PostgreSQL server, in libpq's own forms
// ("postgresql://user@host:port/db", "postgres://...", or key=value pairs such as "service=NAME"),
// rather than a file.
bool isServerConnection(const QString &text);

// The connection's parameters as the server driver takes them ("key='value'" pairs, separated by
// ';'), read by libpq itself; throws UnhandledError naming what libpq could not read.
QString serverConnectOptions(const QString &connection);

// The server a connection names, for the operator: "the server HOST, port PORT, database DB",
// with libpq's defaults where the connection leaves a part out.
QString serverDescription(const QString &connection);
// Runs SCRIPT, statements separated by semicolons, on DB's server connection, stopping at the
// first that fails (the driver's own exec reports the first statement's outcome alone). Returns
// that statement's message as serverMessage() says it, or an empty text.
QString runServerScript(const QSqlDatabase &db, const QString &script);
// The settings every session of the program's on the server starts with: figures in their
// shortest exact text, the short date's order for cdate, and the counter's name for the edit log
// (and as the session's application name, for the server's administrator and the upgrade's wait).
QStringList serverSessionSetup();
// A statement that plans a read of every table the session may read in the schemas it reads,
// reading no row: the tables, their indexes and their columns' types then stand in the
// session's caches. A table another session has locked is left alone at once.
QString serverWarmUpStatement();
// The order of day, month and year in the program's short date form, as "MDY".
QString serverDateOrder();
// CONNECTION with its tables found first in SCHEMA (a plain name), then in the books' own.
QString serverConnectionInSchema(const QString &connection, const QString &schema);
// Whether DRIVER's connection to the server is broken (the server gone, or the connection ended).
bool serverConnectionBroken(const QSqlDriver *driver);
// CONNECTION's server and role with another database (a plain name), in libpq's key=value form.
QString serverConnectionTo(const QString &connection, const QString &database);

// The server's message of a failed statement as the system says it: a text that is no number
// where a number must stand is "Data type mismatch in criteria expression.", a number beyond its
// column's range "Overflow"; any other failure the server's own first line.
QString serverMessage(const QSqlError &error);

// Which columns of the result under a server query hold a table's figure (a text column of a
// table or view, the only ones the shop's tables have: their text columns are citext), from the
// driver's handle of the result; empty when the handle is not the server's.
QVector<bool> serverFigureColumns(const QVariant &resultHandle, int columns);

// What a column of the result under a server query holds, for a grid that takes its cells'
// texts straight from the server's bytes: a table's figure (as above), a floating-point number,
// a whole number, or anything else (which goes through the driver's value).
enum class ServerCell { Other, Figure, Double, Integer };
QVector<ServerCell> serverCellKinds(const QVariant &resultHandle, int columns);

// The texts the server sent for the first COLUMNS cells of ROW of the result under a server
// query, into CELLS (each its UTF-8, empty for a null; all empty when the handle is not the
// server's).
void serverRowTexts(const QVariant &resultHandle, int row, QByteArrayView *cells, int columns);

// A figure as the file holds it: a number when the text is one (the server keeps a number as its
// shortest text), else the text as typed.
QVariant figureValue(const QString &text);

} // namespace vantrel
