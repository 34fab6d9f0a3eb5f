#pragma once

#include <QString>

namespace vantrel {

class Grid;

// A list as the operator reads it, written for a spreadsheet: the grid's headings, then every
// row. Cells on the right of a column of numbers are numbers; a text that is a date in the
// system's short form is a date; everything else is a text as shown (codes keep their leading
// zeros).
enum class ExportFormat {
    // An Excel workbook: numbers as numbers, dates as dates, the headings in bold and frozen,
    // columns sized to their texts.
    Workbook,
    // CSV: UTF-8 with a byte-order mark, comma-separated, CRLF lines; numbers bare with a dot,
    // dates as yyyy-mm-dd, texts quoted; a text beginning with = + - @ is kept from running as a
    // formula by a leading apostrophe.
    Csv,
};

// What exporting did: the file written (empty when nothing was), the data rows it holds, and
// the reason when it failed.
struct ExportResult {
    QString path;
    int rows = 0;
    QString failure;
};

// A path in FOLDER for NAME.SUFFIX that names no file yet: "NAME (2).SUFFIX" and on when it does.
QString freeExportPath(const QString &folder, const QString &name, const QString &suffix);

// Writes GRID's rows into FOLDER (made when missing) as NAME.xlsx or NAME.csv, NAME being made
// safe for a file name and numbered when the file exists. The file appears whole or not at all.
ExportResult exportGrid(Grid &grid, const QString &folder, const QString &name, ExportFormat format);

} // namespace vantrel
