#pragma once

#include "care/unreadabledates.h"
#include "widgets/screen.h"

class QDateEdit;

namespace vantrel {

// "Tools" > "Correct a Date...": the invoices, vouchers, receipts and payments whose date no
// register can read (a date kept as it was typed, "31/02/26"), listed afresh each time the
// screen comes to the front. The operator picks one, sets its date and writes it, after a
// question with No as its default; the edit log keeps what it was.
class CorrectDateScreen final : public Screen {
    Q_OBJECT
public:
    explicit CorrectDateScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void writeClicked();

    QList<UnreadableDate> m_found;
    Grid *m_list;
    QDateEdit *m_date;
};

} // namespace vantrel
