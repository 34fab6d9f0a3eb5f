// vantrel-initdb PATH: writes a fresh, empty shop database at PATH. Refuses to touch an existing
// file, so it can never overwrite a shop's data.
// vantrel-initdb CONNECTION: makes the books in the empty PostgreSQL database CONNECTION names
// (libpq's forms: postgresql://user@host:port/db, service=NAME); refuses a database that holds
// anything.
#include "data/schema.h"
#include "data/serverconnection.h"
#include "data/serverschema.h"
#include "data/unhandlederror.h"

#include <QCoreApplication>
#include <QString>
#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: vantrel-initdb PATH | CONNECTION\n");
        return 2;
    }
    QCoreApplication app(argc, argv); // the database drivers are plugins
    try {
        const QString target = QString::fromLocal8Bit(argv[1]);
        if (vantrel::isServerConnection(target))
            vantrel::createServerBooks(target);
        else
            vantrel::createDatabaseFile(target);
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel-initdb: %s\n", error.what());
        return 1;
    }
    std::printf(vantrel::isServerConnection(QString::fromLocal8Bit(argv[1])) ? "vantrel-initdb: made the books in %s\n"
                                                                             : "vantrel-initdb: created %s\n",
                argv[1]);
    return 0;
}
