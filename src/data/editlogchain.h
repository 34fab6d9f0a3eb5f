#pragma once

#include "editlog.h"

#include <QByteArray>
#include <array>

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_value;

namespace vantrel {

// The edit log's chain: each entry's hash covers the one before it, so that an entry changed,
// deleted or put in out of turn breaks it; and the digests of the rows a log starts from.

// One field of an entry as the chain reads it: its kind (N null, I integer, T anything else) and
// the engine's text of it.
struct EntryField {
    char kind = 'N';
    QByteArray text;
};
// An entry's fields from id to source, in the table's order.
using EntryFields = std::array<EntryField, 8>;
EntryField fieldOf(sqlite3_value *value);
// The fields of the row ROW stands on, from its first eight columns.
EntryFields entryFields(sqlite3_stmt *row);

// The chain: the hash of an entry given the hash of the one before it ("" before the first).
QByteArray chainHash(const QByteArray &previous, const EntryFields &entry);
// The digest of a table's rows in rowid order, each as its rowid and JSON array (the same text
// as the log's triggers write).
QByteArray tableDigest(sqlite3 *db, const LoggedTable &table);

} // namespace vantrel
