#include "pastyearcommand.h"

#include "care/yearclose.h"
#include "data/database.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"
#include "widgets/workspace.h"

namespace vantrel {

void pastYearCommand(Workspace &workspace, Services &services)
{
    const QList<QPair<QString, QString>> years = closedYears(services.db.fileName());
    if (years.isEmpty()) {
        services.dialogs.inform(QStringLiteral("No year has been closed yet."));
        return;
    }
    QStringList names;
    for (const auto &year : years)
        names << year.first;
    const int chosen = services.dialogs.choose(QStringLiteral("Which closed year's books?"), names);
    if (chosen < 0)
        return;
    workspace.openPastYear(years[chosen].first, years[chosen].second);
}

} // namespace vantrel
