#include "serverupgrade.h"

#include "data/schema.h"
#include "data/serverconnection.h"
#include "data/serverschema.h"
#include "data/unhandlederror.h"
#include "serversession.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

namespace vantrel {

namespace {

// The statements that bring books of server version TO - 1 to TO, with the closed years kept in
// the schemas YEARS.
QString stepTo(int to, const QStringList &years)
{
    switch (to) {
    case 2: {
        // The date functions without a subtransaction each, the date key with its indexes in the
        // books and in every closed year; the version gets its own column.
        QString text = QString::fromLatin1(serverDateFunctionsText()) + serverDateKeysText();
        for (const QString &year : years)
            text += serverDateKeysText(year);
        return text + QStringLiteral("alter table schemaversion add column server integer;\nanalyze salesmain;\nanalyze purchasemain;\n");
    }
    case 3: {
        // The file's indexes as the file holds them, a null first and the rowid last, and the
        // ledger's sums, in the books (a closed year's are only read, in whole).
        QString text;
        static const QRegularExpression name(QStringLiteral("^create index (\\w+) "));
        for (const QString &index : serverFileIndexes())
            text += QStringLiteral("drop index %1;\n%2\n").arg(name.match(index).captured(1), index);
        return text + QString::fromLatin1(serverLedgerSumsText()) + QStringLiteral("analyze;\n");
    }
    default:
        return {};
    }
}

// The rows of a statement read at once, each its columns' texts (the session's cursors need a
// transaction; what other sessions do is read afresh outside one).
QList<QStringList> rowsOf(ServerSession &books, const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(books.connectionName(), false));
    if (!query.exec(sql))
        books.fail(sql, serverMessage(query.lastError()));
    QList<QStringList> rows;
    while (query.next()) {
        QStringList row;
        for (int i = 0; i < query.record().count(); ++i)
            row << query.value(i).toString();
        rows << row;
    }
    return rows;
}

ServerVersions versionsOf(ServerSession &books)
{
    const QStringList row = rowsOf(books, serverVersionsStatement()).value(0);
    return {row.value(0).toInt(), row.value(1).toInt()};
}

// The other programs connected to the books' database, as the server names them.
QStringList othersConnected(ServerSession &books)
{
    QStringList names;
    for (const QStringList &row : rowsOf(books, QStringLiteral("select coalesce(nullif(application_name, ''), 'a program') || ' (' || "
                                            "coalesce(client_hostname, host(client_addr), 'this computer') || ')' from pg_stat_activity "
                                            "where datname = current_database() and pid <> pg_backend_pid() and backend_type = 'client backend' "
                                            "order by backend_start")))
        names << row.value(0);
    return names;
}

} // namespace

QString ServerUpgrade::notice() const
{
    return upgraded() ? QStringLiteral("The books on the server were brought from server version %1 to %2.").arg(from).arg(to) : QString();
}

ServerUpgrade bringServerToCurrentSchema(const QString &connection, const std::function<bool(const QString &)> &waiting)
{
    ServerSession books(connection, ServerSession::Mode::Statements);
    const ServerVersions versions = versionsOf(books);
    if (const QString newer = newerServerBooksReason(versions); !newer.isEmpty())
        throw UnhandledError(QStringLiteral("The books were ") + newer);
    ServerUpgrade result;
    result.from = result.to = versions.server;
    while (result.from < CurrentServerSchemaVersion) {
        if (const QStringList others = othersConnected(books); !others.isEmpty()) {
            if (!waiting(others.join(QStringLiteral(", "))))
                throw UnhandledError(QStringLiteral("The books on the server were left at server version %1: other programs were still "
                                                    "connected (%2).").arg(result.from).arg(others.join(QStringLiteral(", "))));
            continue;
        }
        books.run(QStringLiteral("begin"));
        try {
            books.run(QStringLiteral("lock table schemaversion in access exclusive mode"));
            const int from = versionsOf(books).server;
            if (!othersConnected(books).isEmpty()) { // one came in before the lock: wait for it too
                books.run(QStringLiteral("rollback"));
                continue;
            }
            QStringList years;
            for (const QStringList &row : rowsOf(books, QStringLiteral("select file from closedyears order by rowid")))
                years << row.value(0);
            for (int to = from + 1; to <= CurrentServerSchemaVersion; ++to)
                if (const QString failed = runServerScript(QSqlDatabase::database(books.connectionName(), false), stepTo(to, years));
                    !failed.isEmpty())
                    books.fail(QStringLiteral("the step to server version %1").arg(to), failed);
            books.run(QStringLiteral("update schemaversion set server = %1").arg(CurrentServerSchemaVersion));
            books.run(QStringLiteral("commit"));
        } catch (const UnhandledError &error) {
            QSqlQuery(QSqlDatabase::database(books.connectionName(), false)).exec(QStringLiteral("rollback"));
            throw UnhandledError(QStringLiteral("The books on the server could not be brought from server version %1 to %2 (their owner's "
                                                "role can; nothing was changed): %3")
                                     .arg(result.from)
                                     .arg(CurrentServerSchemaVersion)
                                     .arg(error.message()));
        }
        result.to = CurrentServerSchemaVersion;
        break;
    }
    return result;
}

} // namespace vantrel
