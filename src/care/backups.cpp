#include "backups.h"

#include "data/serverconnection.h"
#include "data/unhandlederror.h"
#include "serverbackup.h"
#include "sqlitefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QThread>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace vantrel {

namespace {

const char *NameFormat = "'vantrel-'yyyy-MM-dd-HHmmss";

// A new, empty file that only its owner may read; never an existing one.
void createPrivateFile(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        throw UnhandledError(QStringLiteral("Cannot create %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno))));
    ::close(fd);
}

// Copies every page of FROM into TO through the engine, as one consistent snapshot. A busy
// destination (the running program writing) is waited for, up to the file's busy time.
void copyPages(SqliteFile &from, SqliteFile &to)
{
    sqlite3_backup *backup = sqlite3_backup_init(to.handle(), "main", from.handle(), "main");
    if (!backup)
        to.fail(QStringLiteral("cannot copy %1 into it").arg(from.path()));
    int rc;
    int waited = 0;
    while ((rc = sqlite3_backup_step(backup, -1)) == SQLITE_BUSY || rc == SQLITE_LOCKED) {
        if (waited >= SqliteFile::BusyMilliseconds)
            break;
        QThread::msleep(50);
        waited += 50;
    }
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE)
        to.fail(QStringLiteral("copying %1 into it failed (%2)").arg(from.path(), QString::fromUtf8(sqlite3_errstr(rc))));
}

} // namespace

void Backups::copyToNewFile(const QString &database, const QString &path)
{
    createPrivateFile(path);
    try {
        SqliteFile from(database, SqliteFile::Access::ReadOnly);
        SqliteFile to(path, SqliteFile::Access::ReadWrite);
        copyPages(from, to);
        to.execute(QStringLiteral("pragma journal_mode = delete"));
    } catch (...) {
        QFile::remove(path);
        throw;
    }
}

void Backups::copyInto(const QString &from, const QString &to)
{
    SqliteFile source(from, SqliteFile::Access::ReadOnly);
    SqliteFile target(to, SqliteFile::Access::ReadWrite);
    copyPages(source, target);
}

Backups::Backups(const QString &database, const QString &folder)
    : m_database(database), m_folder(folder), m_server(isServerConnection(database))
{
}

QString Backups::fileName(const QDateTime &time, const QString &extension)
{
    return time.toString(QLatin1String(NameFormat)) + QLatin1Char('.') + extension;
}

QDateTime Backups::timeOf(const QString &fileName)
{
    const QString stem = fileName.section(QLatin1Char('.'), 0, 0), extension = fileName.section(QLatin1Char('.'), 1);
    return extension == QLatin1String("accdb") || extension == QLatin1String("dump") ? QDateTime::fromString(stem, QLatin1String(NameFormat)) : QDateTime();
}

QString Backups::extension() const
{
    return m_server ? QStringLiteral("dump") : QStringLiteral("accdb");
}

QStringList Backups::verify(const QString &path, Check check)
{
    SqliteFile file(path, SqliteFile::Access::ReadOnly);
    return file.firstColumn(check == Check::Full ? QStringLiteral("pragma integrity_check") : QStringLiteral("pragma quick_check"));
}

QStringList Backups::list() const
{
    QStringList backups;
    const QStringList names = QDir(m_folder).entryList({"vantrel-*." + extension()}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        if (timeOf(name).isValid())
            backups << QDir(m_folder).filePath(name);
    return backups;
}

QString Backups::take(const QDateTime &now, Check depth)
{
    if (!QDir().mkpath(m_folder))
        throw UnhandledError(QStringLiteral("Cannot make the backup folder %1").arg(m_folder));
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString path = QDir(m_folder).filePath(fileName(now, extension()));
    if (QFileInfo::exists(path))
        throw UnhandledError(QStringLiteral("%1 is already there").arg(path));
    const QString part = path + QStringLiteral(".part");
    QFile::remove(part);
    if (m_server) { // read back whole before it is named
        takeServerBackup(m_database, part);
        if (!QFile::rename(part, path))
            throw UnhandledError(QStringLiteral("Cannot name the backup %1").arg(path));
        prune(now);
        return path;
    }
    copyToNewFile(m_database, part);
    const QStringList check = verify(part, depth);
    if (check != QStringList{QStringLiteral("ok")}) {
        QFile::remove(part);
        throw UnhandledError(QStringLiteral("The copy of %1 failed its check, so it was not kept: %2").arg(m_database, check.join(QLatin1String("; "))));
    }
    if (!QFile::rename(part, path))
        throw UnhandledError(QStringLiteral("Cannot name the backup %1").arg(path));
    prune(now);
    return path;
}

QString Backups::takeDaily(const QDateTime &now)
{
    for (const QString &backup : list())
        if (timeOf(QFileInfo(backup).fileName()).date() == now.date())
            return QString();
    return take(now);
}

QString Backups::restore(const QString &backup, const QDateTime &now)
{
    if (m_server) {
        restoreServerBackup(backup, m_database);
        return {};
    }
    const QStringList check = verify(backup);
    if (check != QStringList{QStringLiteral("ok")})
        throw UnhandledError(QStringLiteral("%1 failed its check, so it was not restored: %2").arg(backup, check.join(QLatin1String("; "))));
    QString aside;
    if (QFileInfo::exists(m_database)) {
        QDir().mkpath(m_folder);
        aside = QDir(m_folder).filePath(now.toString(QStringLiteral("'before-restore-'yyyy-MM-dd-HHmmss'.accdb'")));
        copyToNewFile(m_database, aside);
    } else {
        createPrivateFile(m_database);
    }
    copyInto(backup, m_database);
    return aside;
}

QList<QDateTime> Backups::prunable(const QList<QDateTime> &times, const QDateTime &now)
{
    QList<QDateTime> newestFirst = times;
    std::sort(newestFirst.begin(), newestFirst.end(), std::greater<QDateTime>());
    QSet<QString> periodsKept;
    QList<QDateTime> pruned;
    const QDate today = now.date();
    for (int i = 0; i < newestFirst.size(); ++i) {
        const QDate day = newestFirst[i].date();
        // The newest backup of a period is the first one met in that period.
        const QString dayKey = day.toString(Qt::ISODate);
        const QString weekKey = QStringLiteral("w%1").arg(day.addDays(1 - day.dayOfWeek()).toString(Qt::ISODate));
        const QString monthKey = day.toString(QStringLiteral("'m'yyyy-MM"));
        bool keep = i < KeepNewest;
        if (day.daysTo(today) < KeepDays && !periodsKept.contains(dayKey))
            keep = true;
        if (day.daysTo(today) < KeepWeeks * 7 && !periodsKept.contains(weekKey))
            keep = true;
        if ((today.year() - day.year()) * 12 + today.month() - day.month() < KeepMonths && !periodsKept.contains(monthKey))
            keep = true;
        periodsKept << dayKey << weekKey << monthKey;
        if (!keep)
            pruned << newestFirst[i];
    }
    return pruned;
}

void Backups::prune(const QDateTime &now)
{
    QList<QDateTime> times;
    for (const QString &backup : list())
        times << timeOf(QFileInfo(backup).fileName());
    for (const QDateTime &time : prunable(times, now))
        QFile::remove(QDir(m_folder).filePath(fileName(time, extension())));
}

} // namespace vantrel
