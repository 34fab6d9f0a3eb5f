#pragma once

#include <QDate>

struct sqlite3;

namespace vantrel {

class ShortDate;

// Registers on the connection the two date functions that the system's statements use:
//   cdate(text): a date in the short date form or an ISO date (yyyy-mm-dd) as the ISO date
//     text; any other text fails the statement with "Data type mismatch in criteria expression.";
//     null stays null; a number is a day count from 30 December 1899.
//   format(value, pattern): a date value (as cdate takes it) written with the pattern's
//     d, dd, m, mm, mmm, mmmm, yy, yyyy (any case; other characters stand as they are); a value
//     that is not a date comes back as its text.
// Both run once per row of a register, so they parse bytes in place and allocate nothing.
void registerSqlFunctions(sqlite3 *handle, const ShortDate &form);

// The date that cdate reads in TEXT (the short date form or an ISO date); an invalid date for
// any other text.
QDate dateOfText(const QString &text, const ShortDate &form);

} // namespace vantrel
