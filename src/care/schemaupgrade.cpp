#include "schemaupgrade.h"

#include "data/editlog.h"
#include "care/backups.h"
#include "care/shopcheck.h"
#include "care/sqlitefile.h"
#include "data/schema.h"
#include "data/transaction.h"
#include "data/unhandlederror.h"


namespace vantrel {

namespace {

bool holds(SqliteFile &file, const char *type, const char *name)
{
    return file.number(QStringLiteral("select count(*) from sqlite_schema where type='%1' and name='%2'")
                           .arg(QLatin1String(type), QLatin1String(name)))
        > 0;
}

// The statements that bring a file of version TO - 1 to version TO. Version 5 only records the
// version, which the caller does for every upgrade; version 6 lists the closed years; version 7
// keeps the edit log, which starts with the rows the file holds.
QString stepTo(int to)
{
    switch (to) {
    case 2:
        return QString::fromLatin1(statisticsText());
    case 3:
        return QString::fromLatin1(ledgerSumIndexesText()) + QString::fromLatin1(statisticsText());
    case 4:
        return guardsText();
    case 6:
        return QString::fromLatin1(closedYearsText());
    case 7:
        return editLogStatements().join(QStringLiteral(";\n")) + QLatin1Char(';');
    default:
        return QString();
    }
}

} // namespace

QString SchemaUpgrade::notice() const
{
    if (!upgraded())
        return QString();
    QString text = QStringLiteral("The shop's file was brought from schema %1 to %2; the file as it was is in %3.").arg(from).arg(to).arg(backup);
    if (!findings.isEmpty())
        text += QStringLiteral(" The check found: %1").arg(findings);
    return text;
}

int schemaVersion(SqliteFile &file)
{
    const int recorded = int(file.number(QStringLiteral("pragma user_version")));
    if (recorded > 0)
        return recorded;
    if (holds(file, "trigger", "salesmain_numbers_insert"))
        return 4;
    if (holds(file, "index", "ledger_credit"))
        return 3;
    if (holds(file, "table", "sqlite_stat1"))
        return 2;
    if (holds(file, "table", "ledger") && holds(file, "table", "salesmain"))
        return 1;
    throw UnhandledError(QStringLiteral("%1 holds no shop's tables").arg(file.path()));
}

SchemaUpgrade bringToCurrentSchema(const QString &path, const QString &backupFolder, const QDateTime &now,
                                   const std::function<void(const QString &, int)> &progress)
{
    const auto tell = [&progress](const QString &doing, int percent) {
        if (progress)
            progress(doing, percent);
    };
    SchemaUpgrade result;
    {
        SqliteFile file(path, SqliteFile::Access::ReadOnly);
        result.from = result.to = schemaVersion(file);
    }
    if (result.from > CurrentSchemaVersion)
        throw UnhandledError(QStringLiteral("%1 was %2").arg(path, newerSchemaReason(result.from)));
    if (result.from == CurrentSchemaVersion)
        return result;
    tell(QStringLiteral("Bringing the shop's file from schema %1 to %2: taking a backup first...").arg(result.from).arg(CurrentSchemaVersion), 0);
    // Within the upgrade's time on a decade of data: the pages checked, not every index.
    result.backup = Backups(path, backupFolder).take(now, Backups::Check::Quick);

    tell(QStringLiteral("Bringing the shop's file from schema %1 to %2: changing its layout...").arg(result.from).arg(CurrentSchemaVersion), 40);
    {
        SqliteFile file(path, SqliteFile::Access::ReadWrite);
        Transaction transaction(file.handle());
        for (int to = result.from + 1; to <= CurrentSchemaVersion; ++to)
            file.execute(stepTo(to));
        if (result.from < 7) {
            writeEditLogNote(file.handle(), QStringLiteral("start"),
                             QStringLiteral("The file was brought from schema %1 to %2; the edit log starts here, with the rows the file held.")
                                 .arg(result.from)
                                 .arg(CurrentSchemaVersion));
        }
        file.execute(QStringLiteral("pragma user_version = %1").arg(CurrentSchemaVersion));
        transaction.commit();
    }
    result.to = CurrentSchemaVersion;
    tell(QStringLiteral("Bringing the shop's file from schema %1 to %2: checking it...").arg(result.from).arg(CurrentSchemaVersion), 80);
    const CheckReport report = checkShopFile(path, CheckDepth::Quick);
    if (!report.clean())
        result.findings = report.text();
    tell(QString(), 100);
    return result;
}

} // namespace vantrel
