#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

// The lines a printer takes on one page.
constexpr int LinesPerPage = 66;

// Writes LINES into a PDF file at PATH, monospaced, LinesPerPage to a page, every line whole,
// so that it reads like the paper. Returns why it failed, or an empty string.
QString writePrintoutPdf(const QString &path, const QString &title, const QStringList &lines);

} // namespace vantrel
