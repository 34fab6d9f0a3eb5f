#pragma once

#include <QString>

namespace vantrel {

class Database;

// The receipts and the payments are numbered in 16 bits, up to 32,767. Once either series has
// passed WarnAbove, the text that says which, how many numbers are left and that closing the
// year starts it again at 1; otherwise an empty text.
constexpr int WarnAbove = 30000;
QString seriesWarning(Database &db);

} // namespace vantrel
