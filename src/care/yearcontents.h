#pragma once

#include <QByteArray>
#include <QString>

namespace vantrel {

struct YearClosePlan;
struct CutOff;
class BooksReader;

// The ledger's opening rows for what closes, as the values of an insert into ledger(refno, dat,
// ac, credit, debit, accnm, type, balance): one receipt per receiving account carrying its
// receipts, one payment carrying the payments, and per account an "opening" row with its
// receipts and payments; every amount to the paisa, each with the overall balance at the cut-off.
QStringList openingRows(BooksReader &books, const CutOff &cut, const YearClosePlan &plan);

// Turns NEXT, a copy of the shop file, into the shop file as it stands after the close PLAN
// describes, in one transaction: the documents up to the cut-off gone, every stock lot as it
// stands, the ledger's closing rows replaced by opening rows (dated the new year's first day,
// every amount to the paisa) that carry every figure the screens compute, the year recorded as
// closed on CLOSEDON, and an edit log of its own that starts from the rows carried forward,
// chained to the closed year's by YEARSLASTHASH. Throws UnhandledError, NEXT unchanged.
void buildNewContents(const QString &next, const YearClosePlan &plan, const QString &closedOn, const QByteArray &yearsLastHash);

} // namespace vantrel
