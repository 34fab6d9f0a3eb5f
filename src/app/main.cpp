#include "app/mainwindow.h"
#include "app/program.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "app/messageboxdialogs.h"
#include "care/schemaupgrade.h"
#include "care/serieswarning.h"
#include "care/serverupgrade.h"
#include "care/shoppresence.h"
#include "care/yearclose.h"
#include "data/programsettings.h"
#include "data/serverconnection.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
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
    const QString books = vantrel::ProgramSettings::read().booksIn(directory.path());
    const bool onServer = vantrel::isServerConnection(books);
    vantrel::SchemaUpgrade upgrade;
    vantrel::ServerUpgrade serverUpgrade;
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
        // Books on a server made by an older Vantrel are brought up to date first, once the other
        // programs on them have closed (the operator sees who is still there, and may give up).
        std::unique_ptr<QProgressDialog> waiting;
        const auto waitForOthers = [&waiting](const QString &others) {
            if (!waiting) {
                waiting = std::make_unique<QProgressDialog>(QString(), QStringLiteral("Cancel"), 0, 0);
                waiting->setWindowTitle(QString::fromLatin1(vantrel::ProgramTitle));
                waiting->setMinimumDuration(0);
                waiting->show();
            }
            waiting->setLabelText(QStringLiteral("The books on the server are to be brought up to date for this Vantrel.\nWaiting for the "
                                                 "other programs on them to close: %1").arg(others));
            QEventLoop pause;
            QTimer::singleShot(1000, &pause, &QEventLoop::quit);
            QObject::connect(waiting.get(), &QProgressDialog::canceled, &pause, &QEventLoop::quit);
            pause.exec();
            return !waiting->wasCanceled();
        };
        while (!program) {
            try {
                waiting.reset(); // a wait given up before is asked afresh
                if (onServer && !serverUpgrade.upgraded())
                    serverUpgrade = vantrel::bringServerToCurrentSchema(books, waitForOthers);
                waiting.reset();
                program = std::make_unique<vantrel::Program>(directory.path(), dialogs, clock, unhandledError);
            } catch (const vantrel::UnhandledError &error) {
                if (!onServer || !dialogs.ask(error.message() + QStringLiteral("\n\nCheck that the server is running, that this computer "
                                                                                 "can reach it and that the name and role in Settings are "
                                                                                 "right. Try again?")))
                    throw;
            }
        }
        program->services().whyTheShopIsShared = [&presence] { return presence ? presence->whyShared() : QString(); };
        QStringList notices{presence ? presence->problem() : QString(), upgrade.notice(), serverUpgrade.notice(),
                            vantrel::seriesWarning(program->db())};
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
