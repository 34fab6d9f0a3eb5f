#pragma once

#include <QString>

namespace vantrel {

class MainWindow;
struct Services;

// "Export to Excel" (F12) and "Export to CSV" (Shift+F12): the list of the active screen
// (the grid that holds the keyboard, else the first list with rows) goes into the exports
// folder, named by the screen, the list and the span of its dates; the status line says where,
// or why nothing was written. The shop's data is only read.
void exportToWorkbookCommand(MainWindow &window, Services &services);
void exportToCsvCommand(MainWindow &window, Services &services);

// The folder exports go into: the setting "export/folder" of the program's settings when it
// names one, else (unset or blank) "exports" in the program directory.
QString exportFolder(const Services &services);

} // namespace vantrel
