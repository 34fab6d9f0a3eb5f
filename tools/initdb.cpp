// vantrel-initdb PATH: writes a fresh, empty shop database at PATH. Refuses to touch an existing
// file, so it can never overwrite a shop's data.
// vantrel-initdb CONNECTION [--from FILE]: makes the books in the empty PostgreSQL database
// CONNECTION names (libpq's forms: postgresql://user@host:port/db, service=NAME), empty or holding
// every row of the shop's FILE, the move proven by the tables' counts and totals; refuses a
// database that holds anything.
// vantrel-initdb CONNECTION --counters ROLE: gives ROLE the rights the counters' screens need on
// the books there (made before, by the books' owner), and no more.
// vantrel-initdb CONNECTION --upgrade: brings books made by an older Vantrel up to date, once no
// other program is connected to them (as the program does when its owner's role starts it).
#include "care/servermove.h"
#include "care/serverupgrade.h"
#include "data/schema.h"
#include "data/serverconnection.h"
#include "data/serverschema.h"
#include "data/unhandlederror.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <cstdio>

int main(int argc, char **argv)
{
    const bool moving = argc == 4 && QByteArray(argv[2]) == "--from", granting = argc == 4 && QByteArray(argv[2]) == "--counters",
               upgrading = argc == 3 && QByteArray(argv[2]) == "--upgrade";
    // a first word that begins with a dash is an option mistaken for a path ("--help"): never a file
    if ((argc != 2 && !moving && !granting && !upgrading) || argv[1][0] == '-') {
        std::fprintf(stderr, "usage: vantrel-initdb PATH | CONNECTION [--from FILE | --counters ROLE | --upgrade]\n");
        return 2;
    }
    QCoreApplication app(argc, argv); // the database drivers are plugins
    const QString target = QString::fromLocal8Bit(argv[1]);
    const bool onServer = vantrel::isServerConnection(target);
    if ((moving || granting || upgrading) && !onServer) {
        std::fprintf(stderr, "vantrel-initdb: %s is for books on a server; %s names no server\n", argv[2], argv[1]);
        return 2;
    }
    try {
        if (granting) {
            vantrel::grantCounters(target, QString::fromLocal8Bit(argv[3]));
            std::printf("vantrel-initdb: %s may now work at the counters on %s\n", argv[3], qPrintable(vantrel::serverDescription(target)));
            return 0;
        }
        if (upgrading) {
            QString before;
            const vantrel::ServerUpgrade upgrade = vantrel::bringServerToCurrentSchema(target, [&before](const QString &others) {
                if (others != before)
                    std::fprintf(stderr, "vantrel-initdb: waiting for the other programs on the books to close: %s\n", qPrintable(others));
                before = others;
                QThread::sleep(1);
                return true;
            });
            std::printf("vantrel-initdb: %s\n", upgrade.upgraded() ? qPrintable(upgrade.notice()) : "the books on the server are up to date");
            return 0;
        }
        if (moving) {
            for (const QString &line : vantrel::moveFileToServer(QString::fromLocal8Bit(argv[3]), target))
                std::printf("vantrel-initdb: %s\n", qPrintable(line));
        } else if (onServer) {
            vantrel::createServerBooks(target);
        } else {
            vantrel::createDatabaseFile(target);
        }
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel-initdb: %s\n", error.what());
        return 1;
    }
    if (moving)
        std::printf("vantrel-initdb: moved %s into %s; every table's rows and totals are the same there\n", argv[3], argv[1]);
    else
        std::printf(onServer ? "vantrel-initdb: made the books in %s\n" : "vantrel-initdb: created %s\n", argv[1]);
    return 0;
}
