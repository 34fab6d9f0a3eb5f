#pragma once

#include <QString>

namespace vantrel {

// The connection string exactly as the program has always built it, with '/' as the separator:
// "Provider=...;Data Source=" + directory + "/vantrel.accdb;Jet OLEDB:Database Password=...;".
QString buildConnectionString(const QString &programDirectory);

// The value of "Data Source=" up to the next ';' (blanks kept), or an empty text when absent.
QString dataSourceOf(const QString &connectionString);

inline constexpr const char *DatabaseFileName = "vantrel.accdb";

} // namespace vantrel
