#pragma once

#include "output/listfile.h"

namespace vantrel {

class Grid;

// Writes GRID's rows as the operator reads them (its headings, then every row; a register's
// fixed first column left out) into FOLDER as NAME.xlsx or NAME.csv: see writeList. Cells on
// the right of a column of numbers are numbers.
ExportResult exportGrid(Grid &grid, const QString &folder, const QString &name, ExportFormat format);

} // namespace vantrel
