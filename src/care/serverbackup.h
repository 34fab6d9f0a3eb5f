#pragma once

#include <QString>

namespace vantrel {

// Backups of the books on a server, taken with the server's own pg_dump (its custom archive) while
// the counters work: one consistent snapshot of every table and of the edit log.
//
// A dump is kept only once it has been read back whole: restored into a scratch database of
// the same server (the role needs the right to create one), where every table holds the rows
// it held in the dump's snapshot, the edit log ends in the same entry, and the check finds its
// chain whole from its start; the scratch database is dropped after. A dump cut off anywhere
// fails one of these, is removed and throws UnhandledError.
void takeServerBackup(const QString &connection, const QString &path);

// Restores BACKUP into the empty database CONNECTION names (never one that holds anything), in
// one transaction, then reads it back as above. Throws UnhandledError, leaving the database as
// it was, when the backup cannot be restored.
void restoreServerBackup(const QString &backup, const QString &connection);

} // namespace vantrel
