#include "printoutpages.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
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

} // namespace vantrel
