#include "closeyearcommand.h"

#include "app/mainwindow.h"
#include "data/database.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"
#include "yearclose.h"
#include "yearsettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QProgressDialog>

namespace vantrel {

void closeYearCommand(MainWindow &window, Services &services)
{
    if (const QString kept = services.whyTheShopIsShared ? services.whyTheShopIsShared() : QString(); !kept.isEmpty()) {
        services.dialogs.inform(kept);
        return;
    }
    const QString database = services.db.fileName();
    const FinancialYear year = financialYearSetting();
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
        window.closeAllScreens();
        QProgressDialog progress(QStringLiteral("Closing the year %1...").arg(plan.name), QString(), 0, 100, &window);
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(0);
        closeYear(database, plan, QDateTime(today, QTime::currentTime()), [&progress](int percent) {
            progress.setValue(percent);
            QCoreApplication::processEvents();
        });
        progress.close();
        services.dialogs.inform(QStringLiteral("The year %1 is closed, its books kept in %2.").arg(plan.name, QDir::toNativeSeparators(plan.yearFile)));
        window.openScreen(QStringLiteral("sale"));
    } catch (const UnhandledError &error) {
        services.unhandledError(error.message());
    }
}

} // namespace vantrel
