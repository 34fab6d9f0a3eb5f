#pragma once

#include "output/printoutpdf.h"

#include <QStringList>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace vantrel {

// A printout on screen as the paper has it: one page at a time in a fixed-width font, with the
// page's number; Page Up and Page Down (or the two buttons) turn the pages.
class PrintoutPages final : public QWidget {
    Q_OBJECT
public:
    explicit PrintoutPages(QWidget *parent = nullptr);

    void setLines(const QStringList &lines);
    int pageCount() const;
    int page() const { return m_page; }
    void showPage(int page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QStringList m_lines;
    int m_page = 0;
    QPlainTextEdit *m_text;
    QLabel *m_pageLabel;
    QPushButton *m_previous;
    QPushButton *m_next;
};

} // namespace vantrel
