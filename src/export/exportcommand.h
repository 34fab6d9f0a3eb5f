#pragma once

namespace vantrel {

class Workspace;
struct Services;

// "Export to Excel" (F12) and "Export to CSV" (Shift+F12): the list of the active screen
// (the grid that holds the keyboard, else the first list with rows) goes into the exports
// folder, named by the screen, the list and the span of its dates; the status line says where,
// or why nothing was written. The shop's data is only read.
void exportToWorkbookCommand(Workspace &workspace, Services &services);
void exportToCsvCommand(Workspace &workspace, Services &services);

} // namespace vantrel
