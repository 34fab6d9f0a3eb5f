#pragma once

#include "widgets/screen.h"

class QCheckBox;
class QComboBox;

namespace vantrel {

// "Settings...": what the program keeps in its own settings (never in the shop's file): the
// financial year's start, where printouts go, whether each is shown first, the folder exports
// go into, the shop's name and address at the head of every printout, the server the books are
// on (blank: the file) and the name the server's edit log gives this counter (blank: the
// computer's). Save writes them; they hold from the next action on, the books' place and the
// counter's name from the next start.
class SettingsScreen final : public Screen {
    Q_OBJECT
public:
    explicit SettingsScreen(Services &services, QWidget *parent = nullptr);

private:
    void saveClicked();

    QLineEdit *m_yearStart;
    QComboBox *m_printer;
    QCheckBox *m_preview;
    QLineEdit *m_exportFolder;
    QLineEdit *m_shopName;
    QLineEdit *m_shopAddress;
    QLineEdit *m_booksServer;
    QLineEdit *m_counterName;
};

} // namespace vantrel
