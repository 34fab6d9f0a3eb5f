#pragma once

#include <QDate>
#include <QString>
#include <QVector>

namespace vantrel {

// A list as the operator reads it, written for a spreadsheet: its headings, then every row.
enum class ExportFormat {
    // An Excel workbook: numbers as numbers, dates as dates, the headings in bold and frozen,
    // columns sized to their texts.
    Workbook,
    // CSV: UTF-8 with a byte-order mark, comma-separated, CRLF lines; numbers bare with a dot,
    // dates as yyyy-mm-dd, texts quoted; a text beginning with = + - @ is kept from running as a
    // formula by a leading apostrophe.
    Csv,
};

// One cell as the spreadsheet takes it.
struct ListCell {
    enum Kind { Text, Number, Date } kind = Text;
    QString text;
    double number = 0;
    QDate date;

    // A data cell as shown: a number when it reads as one and stands in a column of numbers
    // (NUMBERCOLUMN), a date when it is one in the system's short form, else a text as shown
    // (codes keep their leading zeros).
    static ListCell of(const QString &text, bool numberColumn);
};
using ListCells = QVector<QVector<ListCell>>;

// What writing did: the file written (empty when nothing was), the data rows it holds, and the
// reason when it failed.
struct ExportResult {
    QString path;
    int rows = 0;
    QString failure;
};

// NAME with every character that FORBIDDEN names, and every control character, made a dash.
QString cleanName(QString name, const QString &forbidden = QStringLiteral("/\\:*?\"<>|"));

// A path in FOLDER for NAME.SUFFIX that names no file yet: "NAME (2).SUFFIX" and on when it does.
QString freeExportPath(const QString &folder, const QString &name, const QString &suffix);

// Writes CELLS (row 0 the headings) into FOLDER (made when missing) as NAME.xlsx or NAME.csv,
// NAME made safe for a file name and numbered when the file exists. The file appears whole or
// not at all.
ExportResult writeList(const ListCells &cells, const QString &folder, const QString &name, ExportFormat format);

} // namespace vantrel
