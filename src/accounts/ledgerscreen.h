#pragma once

#include "widgets/screen.h"

class QDateEdit;

namespace vantrel {

class Grid;

// "Ledger": one account's ledger rows between two dates. Dates are compared as month-first
// texts, so a span is chosen by month, then day, then year.
class LedgerScreen final : public Screen {
    Q_OBJECT
public:
    explicit LedgerScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void accountKeyReleased(int key);
    void accountChosen();
    void accountGridKeyPressed(int key);

    QLineEdit *m_account;
    QDateEdit *m_from;
    QDateEdit *m_to;
    Grid *m_accounts;
    Grid *m_ledger;
};

} // namespace vantrel
