#include "app/mainwindow.h"
#include "app/program.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "widgets/messageboxdialogs.h"

#include <QApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(vantrel::ProgramTitle));
    vantrel::MessageBoxDialogs dialogs;
    vantrel::SystemClock clock;

    // An error no screen handles: its message in a box, then the program ends. Every statement
    // that ran before it is already on disk.
    bool ended = false;
    const auto unhandledError = [&dialogs, &ended](const QString &message) {
        std::fprintf(stderr, "vantrel: %s\n", qPrintable(message));
        dialogs.inform(message);
        ended = true;
        QCoreApplication::exit(1);
    };

    std::unique_ptr<vantrel::Program> program;
    try {
        program = std::make_unique<vantrel::Program>(QCoreApplication::applicationDirPath(), dialogs, clock, unhandledError);
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel: %s\n", qPrintable(error.message()));
        dialogs.inform(error.message());
        return 1;
    }
    dialogs.setParent(&program->window());
    return ended ? 1 : app.exec();
}
