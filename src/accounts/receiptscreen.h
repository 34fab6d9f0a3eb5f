#pragma once

#include "widgets/proposednumber.h"
#include "widgets/screen.h"

class QLabel;

namespace vantrel {

class Grid;

// "Receipt": money received into an account, booked as a receipt row of the ledger with the
// shop's overall balance, and the receipts of the receiving account listed with their total.
class ReceiptScreen final : public Screen {
    Q_OBJECT
public:
    explicit ReceiptScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;
    void makeReadOnly() override;

private:
    void accountKeyReleased();
    void accountNameKeyReleased(int key);
    void accountGridClicked();
    void accountGridKeyPressed(int key);
    void accountNameGridClicked();
    void accountNameGridKeyPressed(int key);
    void saveClicked();
    void saveReceipt();

    void proposeNumber(const QString &maxQuery, const QString &column);
    // Lists the query's receipts and totals their Amount; false when it found none (the total
    // is then 0).
    bool showReceipts(const QString &query);
    bool showLedgerReceipts();

    QLineEdit *m_number;
    ProposedNumber m_proposedNumber;
    QLabel *m_date;
    QLineEdit *m_account;
    QLineEdit *m_accountName;
    QLineEdit *m_amount;
    QLineEdit *m_total;
    QPushButton *m_save;
    Grid *m_accountGrid;
    Grid *m_accountNameGrid;
    Grid *m_receipts;
};

} // namespace vantrel
