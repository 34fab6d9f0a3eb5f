#include "app/mainwindow.h"
#include "app/program.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "app/messageboxdialogs.h"
#include "care/schemaupgrade.h"
#include "care/serieswarning.h"
#include "care/shoppresence.h"
#include "care/yearclose.h"
#include "data/programsettings.h"
#include "data/serverconnection.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProgressDialog>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    vantrel::ProgramSettings::usePlace();
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

    // An older shop file is brought to the current schema before anything opens it, with a
    // window that says so from the start; a missing one is left for the opening to report (and
    // gets no lock file beside it).
    const QDir directory(QCoreApplication::applicationDirPath());
    const QString file = directory.filePath(QStringLiteral("vantrel.accdb"));
    const bool onServer = vantrel::isServerConnection(vantrel::ProgramSettings::read().booksIn(directory.path()));
    vantrel::SchemaUpgrade upgrade;
    std::unique_ptr<vantrel::ShopPresence> presence;
    std::unique_ptr<vantrel::Program> program;
    try {
        if (!onServer && QFileInfo::exists(file)) {
            presence = std::make_unique<vantrel::ShopPresence>(file);
            std::unique_ptr<QProgressDialog> upgrading;
            upgrade = vantrel::bringToCurrentSchema(file, directory.filePath(QStringLiteral("backups")), QDateTime::currentDateTime(),
                                                    [&upgrading](const QString &doing, int percent) {
                                                        if (!upgrading) {
                                                            upgrading = std::make_unique<QProgressDialog>(doing, QString(), 0, 100);
                                                            upgrading->setWindowTitle(QString::fromLatin1(vantrel::ProgramTitle));
                                                            upgrading->setMinimumDuration(0);
                                                            upgrading->show();
                                                        }
                                                        upgrading->setLabelText(doing);
                                                        upgrading->setValue(percent);
                                                        QCoreApplication::processEvents();
                                                    });
            if (!presence->othersPresent())
                vantrel::finishInterruptedClose(file);
        }
        // A server that cannot be reached may be back in a moment: the operator is asked.
        while (!program) {
            try {
                program = std::make_unique<vantrel::Program>(directory.path(), dialogs, clock, unhandledError);
            } catch (const vantrel::UnhandledError &error) {
                if (!onServer || !dialogs.ask(error.message() + QStringLiteral("\n\nCheck that the server is running, that this computer "
                                                                                 "can reach it and that the name and role in Settings are "
                                                                                 "right. Try again?")))
                    throw;
            }
        }
        program->services().whyTheShopIsShared = [&presence] { return presence ? presence->whyShared() : QString(); };
        QStringList notices{presence ? presence->problem() : QString(), upgrade.notice(), vantrel::seriesWarning(program->db())};
        notices.removeAll(QString());
        program->window().showNotice(notices.join(QLatin1Char(' ')));
    } catch (const vantrel::UnhandledError &error) {
        std::fprintf(stderr, "vantrel: %s\n", qPrintable(error.message()));
        dialogs.inform(error.message());
        return 1;
    }
    dialogs.setParent(&program->window());
    return ended ? 1 : app.exec();
}
