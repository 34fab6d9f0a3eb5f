// vantrel-backup: safe copies of the shop file, taken while the program runs.
//
//   vantrel-backup [--dir FOLDER] [DATABASE]           take a backup now
//   vantrel-backup --daily [--dir FOLDER] [DATABASE]   take one unless today's is there
//   vantrel-backup --list [--dir FOLDER] [DATABASE]    the backups, oldest first
//   vantrel-backup --restore BACKUP [--dir FOLDER] [DATABASE]
//                                                      put BACKUP in place of the shop file,
//                                                      saving the current one aside first
//
// DATABASE is the books the program opens unless named (vantrel.accdb beside it, or the server
// its settings or VANTREL_BOOKS name); FOLDER is "backups" beside the file, or beside this
// program for books on a server. A server's backup is restored only into an empty database.
// Exit status 0 on success, 1 when a copy failed its check or could not be made.
#include "care/backups.h"
#include "data/programsettings.h"
#include "data/serverconnection.h"
#include "data/unhandlederror.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <cstdio>

namespace {

int usage()
{
    std::fprintf(stderr, "usage: vantrel-backup [--daily | --list | --restore BACKUP] [--dir FOLDER] [DATABASE]\n");
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    vantrel::ProgramSettings::usePlace();
    QString action = QStringLiteral("take"), backup, folder, database;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args[i];
        if (arg == QLatin1String("--daily") || arg == QLatin1String("--list"))
            action = arg.mid(2);
        else if (arg == QLatin1String("--restore") && i + 1 < args.size())
            action = QStringLiteral("restore"), backup = args[++i];
        else if (arg == QLatin1String("--dir") && i + 1 < args.size())
            folder = args[++i];
        else if (!arg.startsWith(QLatin1Char('-')) && database.isEmpty())
            database = arg;
        else
            return usage();
    }
    if (database.isEmpty())
        database = vantrel::ProgramSettings::read().booksPathIn(app.applicationDirPath());
    const bool server = vantrel::isServerConnection(database);
    if (folder.isEmpty())
        folder = (server ? QDir(app.applicationDirPath()) : QFileInfo(database).absoluteDir()).filePath(QStringLiteral("backups"));

    vantrel::Backups backups(database, folder);
    const QDateTime now = QDateTime::currentDateTime();
    try {
        if (action == QLatin1String("list")) {
            for (const QString &path : backups.list())
                std::printf("%s\n", qPrintable(path));
        } else if (action == QLatin1String("restore")) {
            const QString aside = backups.restore(backup, now);
            if (!aside.isEmpty())
                std::printf("vantrel-backup: the file as it was is saved in %s\n", qPrintable(aside));
            std::printf("vantrel-backup: %s now holds %s\n", qPrintable(server ? vantrel::serverDescription(database) : database), qPrintable(backup));
        } else {
            const QString taken = action == QLatin1String("daily") ? backups.takeDaily(now) : backups.take(now);
            if (taken.isEmpty())
                std::printf("vantrel-backup: today's backup is already in %s\n", qPrintable(folder));
            else
                std::printf("vantrel-backup: %s (checked)\n", qPrintable(taken));
        }
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel-backup: %s\n", error.what());
        return 1;
    }
    return 0;
}
