#include "printoutpages.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace vantrel {

PrintoutPages::PrintoutPages(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_text = new QPlainTextEdit(this);
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_text->setAccessibleName(QStringLiteral("printout page"));
    m_text->installEventFilter(this);
    layout->addWidget(m_text, 1);
    auto *turn = new QHBoxLayout;
    m_previous = new QPushButton(QStringLiteral("Pre&vious Page"), this);
    m_next = new QPushButton(QStringLiteral("Ne&xt Page"), this);
    m_pageLabel = new QLabel(this);
    turn->addWidget(m_previous);
    turn->addWidget(m_next);
    turn->addWidget(m_pageLabel);
    turn->addStretch();
    layout->addLayout(turn);
    connect(m_previous, &QPushButton::clicked, this, [this] { showPage(m_page - 1); });
    connect(m_next, &QPushButton::clicked, this, [this] { showPage(m_page + 1); });
    setFocusProxy(m_text);
}

void PrintoutPages::setLines(const QStringList &lines)
{
    m_lines = lines;
    showPage(0);
}

int PrintoutPages::pageCount() const
{
    return std::max<int>(1, int((m_lines.size() + LinesPerPage - 1) / LinesPerPage));
}

void PrintoutPages::showPage(int page)
{
    m_page = std::clamp(page, 0, pageCount() - 1);
    m_text->setPlainText(m_lines.mid(m_page * LinesPerPage, LinesPerPage).join(QLatin1Char('\n')));
    m_pageLabel->setText(m_lines.isEmpty() ? QStringLiteral("Nothing has been printed yet.")
                                           : QStringLiteral("Page %1 of %2").arg(m_page + 1).arg(pageCount()));
    m_previous->setEnabled(m_page > 0);
    m_next->setEnabled(m_page + 1 < pageCount());
}

bool PrintoutPages::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_text && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_PageDown || key == Qt::Key_PageUp) {
            showPage(m_page + (key == Qt::Key_PageDown ? 1 : -1));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

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
