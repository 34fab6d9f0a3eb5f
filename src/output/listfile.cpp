#include "listfile.h"

#include "data/shortdate.h"
#include "data/sqlfunctions.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <xlsxwriter.h>

namespace vantrel {

namespace {

QString csvField(const ListCell &cell)
{
    if (cell.kind == ListCell::Number)
        return cell.text;
    if (cell.kind == ListCell::Date)
        return cell.date.toString(Qt::ISODate);
    QString text = cell.text;
    if (!text.isEmpty() && QStringLiteral("=+-@").contains(text.at(0)))
        text.prepend(QLatin1Char('\''));
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

QString writeCsv(const ListCells &cells, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    file.write("\xEF\xBB\xBF");
    for (const QVector<ListCell> &line : cells) {
        QStringList fields;
        for (const ListCell &cell : line)
            fields << csvField(cell);
        file.write(fields.join(QLatin1Char(',')).toUtf8() + "\r\n");
    }
    return file.commit() ? QString() : file.errorString();
}

QString writeWorkbook(const ListCells &cells, const QString &path, const QString &sheet)
{
    const QString part = path + QStringLiteral(".part");
    lxw_workbook *workbook = workbook_new(QFile::encodeName(part).constData());
    if (!workbook)
        return QStringLiteral("the workbook cannot be made");
    const QString name = cleanName(sheet.left(31), QStringLiteral("[]:*?/\\"));
    lxw_worksheet *worksheet = workbook_add_worksheet(workbook, name.toUtf8().constData());
    lxw_format *heading = workbook_add_format(workbook);
    format_set_bold(heading);
    lxw_format *date = workbook_add_format(workbook);
    format_set_num_format(date, "yyyy-mm-dd");
    QVector<int> widths;
    for (int row = 0; row < cells.size(); ++row) {
        for (int col = 0; col < cells[row].size(); ++col) {
            const ListCell &cell = cells[row][col];
            if (widths.size() <= col)
                widths << 0;
            widths[col] = std::max(widths[col], int(cell.kind == ListCell::Date ? 10 : cell.text.size()));
            if (cell.kind == ListCell::Number) {
                worksheet_write_number(worksheet, lxw_row_t(row), lxw_col_t(col), cell.number, nullptr);
            } else if (cell.kind == ListCell::Date) {
                lxw_datetime when = {cell.date.year(), cell.date.month(), cell.date.day(), 0, 0, 0};
                worksheet_write_datetime(worksheet, lxw_row_t(row), lxw_col_t(col), &when, date);
            } else if (!cell.text.isEmpty()) {
                worksheet_write_string(worksheet, lxw_row_t(row), lxw_col_t(col), cell.text.toUtf8().constData(), row == 0 ? heading : nullptr);
            }
        }
    }
    for (int col = 0; col < widths.size(); ++col)
        worksheet_set_column(worksheet, lxw_col_t(col), lxw_col_t(col), std::min(60, widths[col] + 2), nullptr);
    worksheet_freeze_panes(worksheet, 1, 0);
    const lxw_error error = workbook_close(workbook);
    if (error != LXW_NO_ERROR || !QFile::rename(part, path)) {
        QFile::remove(part);
        return QString::fromUtf8(error != LXW_NO_ERROR ? lxw_strerror(error) : "the workbook could not be put in place");
    }
    return {};
}

} // namespace

ListCell ListCell::of(const QString &text, bool numberColumn)
{
    static const ShortDate form;
    // The short form's shape: its separators, one or two digits of day and month, four of the year.
    static const QRegularExpression shape = [] {
        QString pattern = QRegularExpression::escape(form.pattern());
        pattern.replace(QRegularExpression(QStringLiteral("d+|M+")), QStringLiteral("\\d{1,2}")).replace(QStringLiteral("yyyy"), QStringLiteral("\\d{4}"));
        return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
    }();
    ListCell cell;
    cell.text = text;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (isNumber && numberColumn) {
        cell.kind = Number;
        cell.number = number;
    } else if (const QDate date = dateOfText(text, form); date.isValid() && shape.match(text).hasMatch()) {
        cell.kind = Date; // written in the system's short form, and in no other
        cell.date = date;
    }
    return cell;
}

QString cleanName(QString name, const QString &forbidden)
{
    for (QChar &c : name)
        if (forbidden.contains(c) || c < QLatin1Char(' '))
            c = QLatin1Char('-');
    return name.trimmed();
}

QString freeExportPath(const QString &folder, const QString &name, const QString &suffix)
{
    QString path = QDir(folder).filePath(name + suffix);
    for (int n = 2; QFile::exists(path); ++n)
        path = QDir(folder).filePath(QStringLiteral("%1 (%2)%3").arg(name).arg(n).arg(suffix));
    return path;
}

ExportResult writeList(const ListCells &cells, const QString &folder, const QString &name, ExportFormat format)
{
    ExportResult result;
    if (!QDir().mkpath(folder)) {
        result.failure = QStringLiteral("the folder %1 cannot be made").arg(folder);
        return result;
    }
    const QString path = freeExportPath(folder, cleanName(name), format == ExportFormat::Workbook ? QStringLiteral(".xlsx") : QStringLiteral(".csv"));
    result.failure = format == ExportFormat::Workbook ? writeWorkbook(cells, path, cleanName(name)) : writeCsv(cells, path);
    if (result.failure.isEmpty()) {
        result.path = path;
        result.rows = int(cells.size()) - 1;
    }
    return result;
}

} // namespace vantrel
