#include "closedyears.h"

#include "data/records.h"
#include "data/serverconnection.h"
#include "data/unhandlederror.h"
#include "sqlitefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vantrel {

QString yearsFolder(const QString &database) { return QFileInfo(database).absoluteDir().filePath(QStringLiteral("years")); }

QString newContentsOf(const QString &database) { return database + QStringLiteral(".new"); }

void removeUnfinished(const QString &path)
{
    for (const char *suffix : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
}

QList<QPair<QString, QString>> closedYears(const QString &database)
{
    QList<QPair<QString, QString>> years;
    const bool server = isServerConnection(database);
    const QDir beside = QFileInfo(database).absoluteDir();
    openBooksReader(database)->eachRow(QStringLiteral("select name, file from closedyears order by rowid"),
                                       [&](const BookRow &row) { years << qMakePair(row.text(0), server ? row.text(1) : beside.filePath(row.text(1))); });
    return years;
}

QString yearSchema(const QString &name)
{
    return QStringLiteral("year_") + QString(name).replace(QLatin1Char('-'), QLatin1Char('_'));
}

QString yearPlaceShown(const QString &database, const QString &place)
{
    return isServerConnection(database) ? QStringLiteral("%1 on %2").arg(place, serverDescription(database)) : QDir::toNativeSeparators(place);
}

QString newYearPlace(const QString &database, const QString &name)
{
    return isServerConnection(database) ? yearSchema(name) : QDir(yearsFolder(database)).filePath(name + QStringLiteral(".accdb"));
}

bool yearPlaceTaken(const QString &database, const QString &place)
{
    if (!isServerConnection(database))
        return QFileInfo::exists(place);
    return openBooksReader(database)->number(QStringLiteral("select count(*) from pg_namespace where nspname = %1").arg(sqlLiteral(place))) > 0;
}

QString yearBooks(const QString &database, const QString &place)
{
    return isServerConnection(database) ? serverConnectionInSchema(database, place) : QStringLiteral("Data Source=%1;").arg(place);
}

void finishInterruptedClose(const QString &database)
{
    removeUnfinished(newContentsOf(database));
    const QDir years(yearsFolder(database));
    for (const QString &journal : years.entryList({QStringLiteral("*.accdb.part-*")}, QDir::Files))
        if (!QFileInfo::exists(years.filePath(journal.section(QLatin1Char('-'), 0, -2))))
            QFile::remove(years.filePath(journal));
    const QStringList parts = years.entryList({QStringLiteral("*.accdb.part")}, QDir::Files);
    if (parts.isEmpty())
        return;
    QStringList closed;
    {
        SqliteFile file(database, SqliteFile::Access::ReadOnly);
        closed = file.firstColumn(QStringLiteral("select name from closedyears"));
    }
    for (const QString &part : parts) {
        const QString name = part.chopped(int(qstrlen(".accdb.part")));
        const QString path = years.filePath(part), final = years.filePath(name + QStringLiteral(".accdb"));
        if (!closed.contains(name, Qt::CaseInsensitive)) {
            removeUnfinished(path);
        } else if (!QFile::rename(path, final) || !QFile::setPermissions(final, QFile::ReadOwner)) {
            throw UnhandledError(QStringLiteral("Cannot put the closed year %1 in place").arg(final));
        }
    }
}

} // namespace vantrel
