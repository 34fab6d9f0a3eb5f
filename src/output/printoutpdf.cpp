#include "printoutpdf.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>

namespace vantrel {

QString writePrintoutPdf(const QString &path, const QString &title, const QStringList &lines)
{
    QPdfWriter pdf(path);
    pdf.setTitle(title);
    pdf.setCreator(QStringLiteral("Vantrel"));
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
    QPainter painter;
    if (!painter.begin(&pdf))
        return QStringLiteral("the file %1 cannot be written").arg(path);
    // One size for the whole printout: the longest line fits the width, a page's lines the height.
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QRect area = painter.viewport();
    int widest = 80;
    for (const QString &line : lines)
        widest = std::max<int>(widest, int(line.size()));
    font.setPointSizeF(100);
    const QFontMetricsF big(font, &pdf);
    const double scale = std::min(area.width() / big.horizontalAdvance(QString(widest, QLatin1Char('M'))), area.height() / (big.lineSpacing() * LinesPerPage));
    font.setPointSizeF(100 * scale);
    painter.setFont(font);
    const double step = QFontMetricsF(font, &pdf).lineSpacing(), ascent = QFontMetricsF(font, &pdf).ascent();
    for (int i = 0; i < lines.size(); ++i) {
        if (i > 0 && i % LinesPerPage == 0)
            pdf.newPage();
        painter.drawText(QPointF(0, ascent + step * (i % LinesPerPage)), lines.at(i));
    }
    return painter.end() ? QString() : QStringLiteral("the file %1 could not be finished").arg(path);
}

} // namespace vantrel
