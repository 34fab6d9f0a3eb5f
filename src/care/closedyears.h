#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace vantrel {

// The closed years of a shop: each one a row of the shop file's own record (closedyears: its
// name, the day it was closed, its file), written in the same transaction as the new contents;
// its books in a file of its own in the folder "years" beside the shop file, read only. On a
// server the record is the books' own, and a closed year's books are a schema of the same
// database ("year_2025_26"), which the counters read and nobody writes.

// The folder of the closed years' files beside DATABASE.
QString yearsFolder(const QString &database);

// The closed years as DATABASE records them, oldest first: each name ("2025-26") with the path
// of its file (on a server, its schema). Throws UnhandledError when the books cannot be read.
QList<QPair<QString, QString>> closedYears(const QString &database);

// The schema of the closed year NAME on a server: "year_2025_26".
QString yearSchema(const QString &name);
// Where a closed year's books are, as the operator is told: the file's path, or PLACE (a
// schema) on DATABASE's server.
QString yearPlaceShown(const QString &database, const QString &place);
// Where the closed year NAME goes: its file beside DATABASE, or its schema on DATABASE's server;
// and whether something is there already.
QString newYearPlace(const QString &database, const QString &name);
bool yearPlaceTaken(const QString &database, const QString &place);
// The books of a closed year kept at PLACE (closedYears() gives it), as a connection string.
QString yearBooks(const QString &database, const QString &place);

// Where a close builds the shop file's new contents, beside DATABASE.
QString newContentsOf(const QString &database);

// A file the engine was writing when a kill came, removed with its journals.
void removeUnfinished(const QString &path);

// After a kill in a close: a closed year's file still being written is kept when the database
// records that year as closed and removed when it does not, and the unfinished new contents go.
// Run at every start and before every close.
void finishInterruptedClose(const QString &database);

} // namespace vantrel
