// vantrel-initdb PATH: writes a fresh, empty shop database at PATH. Refuses to touch an existing
// file, so it can never overwrite a shop's data.
#include "data/schema.h"
#include "data/unhandlederror.h"

#include <QString>
#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: vantrel-initdb PATH\n");
        return 2;
    }
    try {
        vantrel::createDatabaseFile(QString::fromLocal8Bit(argv[1]));
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel-initdb: %s\n", error.what());
        return 1;
    }
    std::printf("vantrel-initdb: created %s\n", argv[1]);
    return 0;
}
