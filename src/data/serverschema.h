#pragma once

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

class QSqlQuery;

namespace vantrel {

// The shop's tables as the server keeps them, so that every statement of the system finds on the
// server what it finds in the file:
// - A Text column is citext under the "C" collation: it compares without regard to case for A-Z
//   alone, as the file's columns do.
// - A numbering column (invoice, pono, ID, psrno; refno in 16 bits) is a number and nothing else.
// - Every other Number column is a "figure": a number, kept as its shortest text, or a text as
//   typed ("2X", ""). Beside it the server keeps its value as arithmetic reads it (the leading
//   number, else 0) in a column named with "__n" after it, which sums read.
// - Every table keeps the order its rows came in, in a column "rowid", so that "the first row"
//   is the one the file would give.
struct ServerTable {
    enum Kind { Text, Numbering, Reference, Figure };
    struct Column {
        QString name;
        Kind kind;
    };
    QString name;
    QVector<Column> columns;

    QStringList names() const;
    QStringList figures() const;
};

// The version of what the server's books hold beyond the file's schema (the server's own
// functions and indexes), recorded beside the schema's version: 1 for books that record none.
// 2: the registers' date keys. 3: the file's indexes with a null first and the rowid last, the
// ledger's sums.
constexpr int CurrentServerSchemaVersion = 3;

// The versions books on a server record: the schema's and the server's own.
struct ServerVersions {
    int schema = 0;
    int server = 0;
};
// The statement that reads them, as two integers (server 1 for books that record none).
QString serverVersionsStatement();
// Why books at VERSIONS, newer than this program's, are left alone (as newerSchemaReason()
// says it); empty when they are not newer.
QString newerServerBooksReason(const ServerVersions &versions);

// The statement that reads the character type of the connection's database, and why books
// cannot be kept in a database of CHARACTERTYPE (empty when they can): a text column compares
// without regard to case by the database's character type, which must fold A-Z alone, as the
// file does.
QString serverCharacterTypeStatement();
QString unfitCharacterType(const QString &characterType);

// The shop's tables, in the order the file's schema makes them.
const QVector<ServerTable> &serverTables();
// The table named NAME (without regard to case), or null.
const ServerTable *serverTable(const QString &name);
// The receipt view's columns.
QStringList receiptColumns();

// The statements that make the shop's books in an empty database: the tables, the receipt view,
// the indexes, the guards, and the functions the system's statements call (cdate, and the
// system's format as vformat, since the server has a format of its own).
QString serverSchemaText();
// The file's indexes as the server keeps them, a statement each: every column in the file's
// order, a null first, and the rowid last, as the file's index holds it (so that an index walk
// gives the order the file gives, which sorts a null first and equal keys by rowid).
QStringList serverFileIndexes();
// The date functions (cdate, vformat, the date key a register's span compares), each made or
// replaced.
const char *serverDateFunctionsText();
// The indexes of the date key, for the usual orders of day, month and year, on the document
// tables of the books or of the year's schema SCHEMA; each made unless it is there.
QString serverDateKeysText(const QString &schema = {});
// The indexes of the overall sums of receipts and of payments, each holding only its own rows.
const char *serverLedgerSumsText();

// Makes the shop's books in the empty database CONNECTION names, in one transaction: empty, or
// filled by FILL, which runs its statements on the query it is given inside that transaction
// and throws UnhandledError to leave the database as it was. Never touches a database that holds
// anything of its own: throws UnhandledError then, or when the server cannot be reached or
// refuses a statement.
// The edit log starts when the tables are filled, its start note carrying STARTWORDS.
void createServerBooks(const QString &connection, const std::function<void(QSqlQuery &)> &fill = {},
                       const QString &startWords = QStringLiteral("New books on the server: the edit log starts with them."));

// The statements that make the schema SCHEMA of a closed year: the books' tables as the books
// keep them (without their triggers: a closed year is not written), its log and the record of
// its version, all empty but the version.
QStringList yearSchemaStatements(const QString &schema);

// Gives ROLE the rights a counter's screens need on the books CONNECTION names, and no more:
// to read and write the shop's tables, to read the edit log. It cannot change the schema,
// switch off or drop a trigger (an owner's rights), or write the log but through the triggers.
// Throws UnhandledError when the role does not exist or the grant is refused.
void grantCounters(const QString &connection, const QString &role);

} // namespace vantrel
