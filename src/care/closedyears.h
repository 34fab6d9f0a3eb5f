#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace vantrel {

// The closed years of a shop: each one a row of the shop file's own record (closedyears: its
// name, the day it was closed, its file), written in the same transaction as the new contents;
// its books in a file of its own in the folder "years" beside the shop file, read only.

// The folder of the closed years' files beside DATABASE.
QString yearsFolder(const QString &database);

// The closed years as DATABASE records them, oldest first: each name ("2025-26") with the path
// of its file. Throws UnhandledError when the file cannot be read.
QList<QPair<QString, QString>> closedYears(const QString &database);

// Where a close builds the shop file's new contents, beside DATABASE.
QString newContentsOf(const QString &database);

// A file the engine was writing when a kill came, removed with its journals.
void removeUnfinished(const QString &path);

// After a kill in a close: a closed year's file still being written is kept when the database
// records that year as closed and removed when it does not, and the unfinished new contents go.
// Run at every start and before every close.
void finishInterruptedClose(const QString &database);

} // namespace vantrel
