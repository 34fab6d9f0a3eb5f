#include "closeyearcommand.h"

#include "data/database.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"
#include "widgets/workspace.h"
#include "care/yearclose.h"
#include "data/programsettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QProgressDialog>

namespace vantrel {

void closeYearCommand(Workspace &workspace, Services &services)
{
    if (const QString kept = services.whyTheShopIsShared ? services.whyTheShopIsShared() : QString(); !kept.isEmpty()) {
        services.dialogs.inform(kept);
        return;
    }
    const QString database = services.db.fileName();
    const FinancialYear year = ProgramSettings::read().financialYear();
    const QDate today = services.clock.today();
    const QDate cutOff = services.dialogs.askDate(QStringLiteral("Close the books up to the last day of the year:"), year.lastCompleteYearEnd(today));
    if (!cutOff.isValid())
        return;
    try {
        const YearClosePlan plan = planYearClose(database, year, cutOff, today);
        if (!plan.possible()) {
            services.dialogs.inform(plan.refusal());
            return;
        }
        if (!services.dialogs.ask(plan.question()))
            return;
        // The screens show the books as they are now; they go before the books do.
        workspace.closeAllScreens();
        QProgressDialog progress(QStringLiteral("Closing the year %1...").arg(plan.name), QString(), 0, 100, workspace.widget());
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(0);
        closeYear(database, plan, QDateTime(today, QTime::currentTime()), [&progress](int percent) {
            progress.setValue(percent);
            QCoreApplication::processEvents();
        });
        progress.close();
        services.dialogs.inform(QStringLiteral("The year %1 is closed, its books kept in %2.").arg(plan.name, QDir::toNativeSeparators(plan.yearFile)));
        workspace.openScreen(QStringLiteral("sale"));
    } catch (const UnhandledError &error) {
        services.unhandledError(error.message());
    }
}

} // namespace vantrel
