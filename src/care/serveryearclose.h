#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

namespace vantrel {

struct YearClosePlan;

// Closes on the books' server the year PLAN describes, as closeYear() does on the file: a backup
// read back whole first; then in one transaction, with the counters' writes held until it ends,
// the closed year's books into a schema of their own (the masters, every stock lot, the
// documents up to the cut-off, the edit log ending in the close), which every counter's role may
// read and none write; and in the live books the documents after the cut-off alone, opening rows
// in the ledger, the year recorded as closed, and an edit log that starts again from the rows
// carried forward, chained to the closed year's. Needs the books' owner (it makes a schema and
// switches the log's triggers off for its own deletes). DONE hears the percentage done. Throws
// UnhandledError, the books unchanged, when anything fails.
void closeServerYear(const QString &connection, const YearClosePlan &plan, const QDateTime &now, const std::function<void(int)> &done);

} // namespace vantrel
