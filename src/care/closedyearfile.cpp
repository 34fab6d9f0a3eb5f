#include "closedyearfile.h"

#include "cutoff.h"
#include "data/editlog.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "data/unhandlederror.h"
#include "yearclose.h"

namespace vantrel {

QByteArray makeClosedYearFile(const QString &part, const YearClosePlan &plan)
{
    SqliteFile file(part, SqliteFile::Access::ReadWrite);
    registerSqlFunctions(file.handle(), ShortDate());
    if (const QString failed = attachEditLog(file.handle()); !failed.isEmpty())
        throw UnhandledError(failed);
    CutOff(plan.cutOff).keepOnly(file, false);
    writeEditLogNote(file.handle(), QStringLiteral("close"),
                     QStringLiteral("The year %1 is closed: this file keeps its books up to %2 and is not written again.")
                         .arg(plan.name, ShortDate().text(plan.cutOff)));
    return lastEditLogHash(file.handle());
}

} // namespace vantrel
