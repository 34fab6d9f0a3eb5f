#pragma once

#include <QString>

namespace vantrel {

// Writes a fresh database file holding every table of the shop, empty, readable and writable by
// its owner only. Never touches an existing file: throws UnhandledError if PATH exists or the
// file cannot be written.
void createDatabaseFile(const QString &path);

// The statements that create the tables, the receipt view and the indexes.
const char *schemaText();

} // namespace vantrel
