#pragma once

#include <QByteArray>
#include <QString>

namespace vantrel {

struct YearClosePlan;

// Makes PART, a copy of the shop file, the closed year's file of PLAN: it keeps the documents up
// to the cut-off (those after it are deleted there through its edit log, as the program's) and
// its log ends with the close. Returns the hash the log ends on. Throws UnhandledError.
QByteArray makeClosedYearFile(const QString &part, const YearClosePlan &plan);

} // namespace vantrel
