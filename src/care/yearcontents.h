#pragma once

#include <QByteArray>
#include <QString>

namespace vantrel {

struct YearClosePlan;

// Turns NEXT, a copy of the shop file, into the shop file as it stands after the close PLAN
// describes, in one transaction: the documents up to the cut-off gone, every stock lot as it
// stands, the ledger's closing rows replaced by opening rows (dated the new year's first day,
// every amount to the paisa) that carry every figure the screens compute, the year recorded as
// closed on CLOSEDON, and an edit log of its own that starts from the rows carried forward,
// chained to the closed year's by YEARSLASTHASH. Throws UnhandledError, NEXT unchanged.
void buildNewContents(const QString &next, const YearClosePlan &plan, const QString &closedOn, const QByteArray &yearsLastHash);

} // namespace vantrel
