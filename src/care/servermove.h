#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

// Moves a shop's file onto a server: makes the books in the empty database CONNECTION names and
// writes every row of the file's tables into them, in the order the rows came in, numbers as
// numbers and texts (a figure's "2X" too) as typed, all in one transaction; then proves the move
// by reading both back: every table's row count and the total of every Number column must be
// the same, and the quick check must find the same there as here. Returns one line per table
// ("sales: 1200 rows"), and one for the check. Throws UnhandledError when the file
// cannot be read, the server refuses a row (a numbering column holding a text: the check names
// such rows on the file) or the proof fails; the database is then left as it was, or, when only
// the proof failed, holding the books with the difference named.
QStringList moveFileToServer(const QString &file, const QString &connection);

} // namespace vantrel
