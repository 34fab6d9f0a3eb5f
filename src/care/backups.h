#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace vantrel {

// Backups of the shop file, taken with the engine's online backup: a consistent copy even while
// the program writes. Each lies in the backup folder as "vantrel-YYYY-MM-DD-HHMMSS.accdb", a
// complete file of its own (no write-ahead log beside it), readable by its owner only. Books on
// a server are kept as "vantrel-YYYY-MM-DD-HHMMSS.dump" (see serverbackup.h), pruned alike, and
// restored only into an empty database (nothing is saved aside).
class Backups {
public:
    // How many of the newest backups are always kept; besides them, the newest of each of the
    // last KeepDays days, KeepWeeks weeks and KeepMonths months.
    static constexpr int KeepNewest = 7;
    static constexpr int KeepDays = 14;
    static constexpr int KeepWeeks = 8;
    static constexpr int KeepMonths = 12;

    // The engine's integrity check, or its quick check (the pages and their order, without
    // comparing each index with its table: a tenth of the time on a large file).
    enum class Check { Full, Quick };

    Backups(const QString &database, const QString &folder);

    // Copies the file, checks the copy (DEPTH) and only then gives it its name; a copy that
    // fails its check is removed and throws UnhandledError with what the check said. Returns
    // the backup's path. Then prunes the old ones.
    QString take(const QDateTime &now, Check depth = Check::Full);
    // Takes one unless a backup dated today is already there; returns it, or an empty text.
    QString takeDaily(const QDateTime &now);
    // The backups in the folder, oldest first.
    QStringList list() const;
    // Replaces the shop file by BACKUP: checks the backup first (refusing a damaged one), saves
    // the current file aside into the folder as "before-restore-YYYY-MM-DD-HHMMSS.accdb", then
    // copies the backup in through the engine, so that a running program sees it whole. Returns
    // the path of the file saved aside, or an empty text when there was no current file.
    QString restore(const QString &backup, const QDateTime &now);

    // A copy of DATABASE at PATH, a new file standing alone (no write-ahead log beside it),
    // readable by its owner only. Throws UnhandledError, leaving no file, when it fails.
    static void copyToNewFile(const QString &database, const QString &path);
    // Puts FROM's contents into the existing file TO in one transaction of the engine's, so that
    // a program that has TO open sees it whole, and a kill leaves TO as it was or as FROM.
    static void copyInto(const QString &from, const QString &to);
    // The integrity check of a file: {"ok"} when it is sound, else the engine's findings.
    static QStringList verify(const QString &path, Check check = Check::Full);
    // Which of the backups taken at TIMES (any order) the pruning removes at NOW.
    static QList<QDateTime> prunable(const QList<QDateTime> &times, const QDateTime &now);
    static QString fileName(const QDateTime &time, const QString &extension = QStringLiteral("accdb"));
    // The time a backup's name carries; an invalid time for any other name.
    static QDateTime timeOf(const QString &fileName);

private:
    void prune(const QDateTime &now);
    // The backups' extension: "accdb" for the file's, "dump" for a server's.
    QString extension() const;

    QString m_database;
    QString m_folder;
    bool m_server;
};

} // namespace vantrel
