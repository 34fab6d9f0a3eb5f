// vantrel-check [--quick] [DATABASE]: looks at the shop's books (by default those the program
// opens: vantrel.accdb beside it, or the server its settings or VANTREL_BOOKS name) and says in plain words whether its pages are sound and whether an interrupted
// action left a trace. It changes nothing. Exit status: 0 when nothing was found, 1 when
// something was, 2 when the file could not be read. vantrel-check --where prints where the
// program's books are ("file PATH" or "server CONNECTION") and changes nothing.
#include "care/shopcheck.h"
#include "data/programsettings.h"
#include "data/serverconnection.h"
#include "data/unhandlederror.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    vantrel::ProgramSettings::usePlace();
    QStringList args = app.arguments().mid(1);
    const bool quick = args.removeAll(QStringLiteral("--quick")) > 0;
    const QString books = vantrel::ProgramSettings::read().booksPathIn(app.applicationDirPath());
    if (args == QStringList{QStringLiteral("--where")}) {
        std::printf("%s %s\n", vantrel::isServerConnection(books) ? "server" : "file", qPrintable(books));
        return 0;
    }
    if (args.size() > 1 || (!args.isEmpty() && args.first().startsWith(QLatin1Char('-')))) {
        std::fprintf(stderr, "usage: vantrel-check [--quick] [DATABASE] | --where\n");
        return 2;
    }
    const QString database = args.isEmpty() ? books : args.first();
    try {
        QElapsedTimer clock;
        clock.start();
        const vantrel::CheckReport report = vantrel::checkShopFile(database, quick ? vantrel::CheckDepth::Quick : vantrel::CheckDepth::Full);
        std::printf("vantrel-check: %s (%s check, %lld ms)\n%s", qPrintable(vantrel::isServerConnection(database) ? vantrel::serverDescription(database) : QDir::toNativeSeparators(database)), quick ? "quick" : "full",
                    static_cast<long long>(clock.elapsed()), qPrintable(report.text()));
        return report.clean() ? 0 : 1;
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel-check: %s\n", error.what());
        return 2;
    }
}
