#pragma once

#include "widgets/screen.h"

class QComboBox;
class QDateEdit;

namespace vantrel {

class Grid;

// "Edit Log": the changes of a span of days, newest first, one line per changed column with its
// old and new value side by side; narrowed to one table, a document or receipt number, or a
// party; printed on the line printer.
class EditLogScreen final : public Screen {
    Q_OBJECT
public:
    explicit EditLogScreen(Services &services, QWidget *parent = nullptr);

private:
    void showClicked();
    void printClicked();

    // The listing's statement for the span and filters as they stand.
    QString listing() const;

    QDateEdit *m_from;
    QDateEdit *m_to;
    QComboBox *m_table;
    QLineEdit *m_number;
    QLineEdit *m_party;
    QLineEdit *m_counter; // the counter that made the change, as the log names it
    Grid *m_changes;
};

} // namespace vantrel
