#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

namespace vantrel {

class SqliteFile;

// What bringing a shop file to the current schema did.
struct SchemaUpgrade {
    int from = 0;     // the version the file was at
    int to = 0;       // the version it is at now
    QString backup;   // the checked backup taken first; empty when nothing was upgraded
    QString findings; // what the quick check found after the upgrade; empty when nothing
    bool upgraded() const { return from != to; }
    // One line for the status line; empty when nothing was upgraded.
    QString notice() const;
};

// The schema version of a shop file: its recorded user_version, or for a file made before the
// version was recorded, the version its contents show (1: the tables; 2: the planner's
// statistics; 3: the ledger's sum indexes; 4: the numbering guards; 5 and later record it). Throws UnhandledError for a
// file that holds no shop.
int schemaVersion(SqliteFile &file);

// Brings the shop file at PATH to CurrentSchemaVersion: a backup into BACKUPFOLDER first (its
// pages checked by the engine's quick check),
// then every missing step in one transaction (a kill leaves the old schema or the new one, never
// a mix), then the quick check. A current file is left untouched. Throws UnhandledError, having
// written nothing, for a file newer than this program; and when the backup or a step fails (the
// transaction is rolled back then). PROGRESS hears, before each part of an upgrade, what it does
// and the percentage done; it is not called for a current file.
SchemaUpgrade bringToCurrentSchema(const QString &path, const QString &backupFolder, const QDateTime &now,
                                   const std::function<void(const QString &doing, int percent)> &progress = {});

} // namespace vantrel
