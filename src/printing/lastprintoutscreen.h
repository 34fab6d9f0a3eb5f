#pragma once

#include "widgets/screen.h"

class QLabel;

namespace vantrel {

class PrintoutPages;

// "Last Printout": the lines last sent to the printer as the paper has them, page by page;
// printed again, or kept as a PDF or a text file in the exports folder.
class LastPrintoutScreen final : public Screen {
    Q_OBJECT
public:
    explicit LastPrintoutScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void printAgainClicked();
    void savePdfClicked();
    void saveTextClicked();
    void tellSaved(const QString &path, const QString &failure);

    QStringList m_lines;
    PrintoutPages *m_pages;
    QLabel *m_saved;
};

} // namespace vantrel
