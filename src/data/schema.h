#pragma once

#include <QString>

namespace vantrel {

// The version of the shop's schema this program writes, recorded in the file's user_version.
// Files made before it was recorded are recognised by what they hold (see years/schemaupgrade.h).
constexpr int CurrentSchemaVersion = 7;
// Why books of schema VERSION, newer than this program's, are left alone: "written by a newer
// Vantrel (...). Nothing was changed; start the newer program."
QString newerSchemaReason(int version);

// Writes a fresh database file holding every table of the shop, empty, readable and writable by
// its owner only. Never touches an existing file: throws UnhandledError if PATH exists or the
// file cannot be written.
void createDatabaseFile(const QString &path);

// The statements that create the tables, the receipt view and the indexes.
const char *schemaText();
// The two indexes that cover the overall ledger sums (schema version 3).
const char *ledgerSumIndexesText();
// The years closed out of this file, each with the name of its own file (schema version 6).
const char *closedYearsText();
// The planner's fixed statistics (schema version 2; the indexes of version 3 since then),
// replacing any the file holds.
const char *statisticsText();

// The triggers that keep the Number columns sound: the numbering columns (invoice, pono, refno,
// ID, psrno) hold numbers only, failing a statement that would store a text with "Data type
// mismatch in criteria expression."; refno stays within 16 bits and no Number column stores an
// infinite value, failing with "Overflow".
QString guardsText();

} // namespace vantrel
