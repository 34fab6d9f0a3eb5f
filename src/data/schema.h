#pragma once

#include <QString>

namespace vantrel {

// Writes a fresh database file holding every table of the shop, empty, readable and writable by
// its owner only. Never touches an existing file: throws UnhandledError if PATH exists or the
// file cannot be written.
void createDatabaseFile(const QString &path);

// The statements that create the tables, the receipt view and the indexes.
const char *schemaText();

// The triggers that keep the Number columns sound: the numbering columns (invoice, pono, refno,
// ID, psrno) hold numbers only, failing a statement that would store a text with "Data type
// mismatch in criteria expression."; refno stays within 16 bits and no Number column stores an
// infinite value, failing with "Overflow".
QString guardsText();

} // namespace vantrel
