#include "serverbackup.h"

#include "data/serverconnection.h"
#include "data/serverschema.h"
#include "data/unhandlederror.h"
#include "editlogcheck.h"
#include "serversession.h"
#include "shopcheck.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

namespace vantrel {

namespace {

// A server tool (pg_dump, pg_restore) run to its end; its messages in the error when it fails.
void runTool(const QString &tool, const QStringList &arguments, const QString &doing)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(tool, arguments);
    if (!process.waitForStarted())
        throw UnhandledError(QStringLiteral("%1: %2 cannot be run (the package postgresql-client has it)").arg(doing, tool));
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw UnhandledError(QStringLiteral("%1: %2").arg(doing, QString::fromLocal8Bit(process.readAll()).trimmed().replace(QLatin1Char('\n'), QLatin1String("; "))));
}

// Restores the archive BACKUP into the empty database TARGET, whole or not at all.
void restoreArchive(const QString &backup, const QString &target, const QString &doing)
{
    runTool(QStringLiteral("pg_restore"), {QStringLiteral("--exit-on-error"), QStringLiteral("--single-transaction"), QStringLiteral("--no-owner"),
                                           QStringLiteral("--no-acl"), QStringLiteral("--dbname=") + target, backup},
            doing);
}

// What a copy must hold: every table's row count and the edit log's newest entry.
QStringList contents(BooksReader &books)
{
    QStringList counts;
    for (const ServerTable &table : serverTables())
        counts << QStringLiteral("%1 %2").arg(table.name).arg(books.number("select count(*) from " + table.name));
    counts << QStringLiteral("editlog %1 ending in %2")
                  .arg(books.number(QStringLiteral("select count(*) from editlog")))
                  .arg(books.firstColumn(QStringLiteral("select hash from editlog order by id desc limit 1")).value(0));
    return counts;
}

// The findings that say a copy is not whole: its log's chain broken or begun elsewhere.
QStringList brokenLog(const CheckReport &report)
{
    QStringList broken;
    for (const Finding &finding : report.traces)
        if (finding.kind.startsWith(QLatin1String("The edit log")))
            broken << finding.kind + ": " + finding.rows;
    return broken;
}

// Makes an empty scratch database beside CONNECTION's, runs USE on its connection, and drops it.
void withScratchDatabase(const QString &connection, const std::function<void(const QString &)> &use)
{
    static int made = 0;
    const QString name = QStringLiteral("vantrel_readback_%1_%2").arg(QCoreApplication::applicationPid()).arg(++made);
    ServerSession admin(connection, ServerSession::Mode::Statements);
    admin.run("create database " + name + " template template0 encoding 'UTF8' lc_collate 'C' lc_ctype 'C'");
    try {
        use(serverConnectionTo(connection, name));
    } catch (...) {
        admin.run(QStringLiteral("drop database if exists %1 with (force)").arg(name));
        throw;
    }
    admin.run(QStringLiteral("drop database if exists %1 with (force)").arg(name));
}

// Reads BACKUP back into a scratch database and compares it with EXPECTED.
void readBack(const QString &connection, const QString &backup, const QStringList &expected)
{
    withScratchDatabase(connection, [&](const QString &scratch) {
        restoreArchive(backup, scratch, QStringLiteral("the copy cannot be read back"));
        ServerSession copy(scratch);
        const QStringList found = contents(copy);
        if (found != expected)
            throw UnhandledError(QStringLiteral("the copy read back holds %1 where the books held %2").arg(found.join(QLatin1String(", ")), expected.join(QLatin1String(", "))));
        CheckReport report;
        checkEditLogChain(copy, report);
        if (const QStringList broken = brokenLog(report); !broken.isEmpty())
            throw UnhandledError(QStringLiteral("the copy read back fails the check: %1").arg(broken.join(QLatin1String("; "))));
    });
}

} // namespace

void takeServerBackup(const QString &connection, const QString &path)
{
    try {
        ServerSession books(connection);
        const QStringList expected = contents(books);
        const QString snapshot = books.firstColumn(QStringLiteral("select pg_export_snapshot()")).value(0);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
            throw UnhandledError(QStringLiteral("Cannot create %1: %2").arg(path, file.errorString()));
        file.close();
        runTool(QStringLiteral("pg_dump"), {QStringLiteral("--format=custom"), QStringLiteral("--snapshot=") + snapshot,
                                            QStringLiteral("--file=") + path, QStringLiteral("--dbname=") + connection},
                QStringLiteral("the books cannot be copied"));
        readBack(connection, path, expected);
    } catch (const UnhandledError &error) {
        QFile::remove(path);
        throw UnhandledError(QStringLiteral("The copy of %1 was not kept: %2").arg(serverDescription(connection), error.message()));
    }
}

void restoreServerBackup(const QString &backup, const QString &connection)
{
    try {
        {
            ServerSession target(connection);
            if (target.number(QStringLiteral("select count(*) from pg_class c join pg_namespace n on n.oid = c.relnamespace "
                                             "where n.nspname = current_schema()"))
                > 0)
                throw UnhandledError(QStringLiteral("the database is not empty; a backup is restored only into an empty one"));
            if (const QString unfit = unfitCharacterType(target.firstColumn(serverCharacterTypeStatement()).value(0)); !unfit.isEmpty())
                throw UnhandledError(unfit);
        }
        restoreArchive(backup, connection, QStringLiteral("the backup cannot be restored"));
        if (const QStringList broken = brokenLog(checkShopFile(connection, CheckDepth::Full)); !broken.isEmpty())
            throw UnhandledError(QStringLiteral("the books restored fail the check: %1").arg(broken.join(QLatin1String("; "))));
    } catch (const UnhandledError &error) {
        throw UnhandledError(QStringLiteral("%1 was not restored into %2: %3").arg(backup, serverDescription(connection), error.message()));
    }
}

} // namespace vantrel
