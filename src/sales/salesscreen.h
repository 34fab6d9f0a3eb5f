#pragma once

#include "invoice/invoicescreen.h"

namespace vantrel {

// The "Sales" screen, where invoices are written; it opens at start-up. A key released in the
// mode field starts an invoice of that mode with the next number of its series; "&Add" writes
// each line (with its stock consumption and, on credit, its ledger payment) and the header;
// the discount, settling, cancelling and printing act on the invoice whose number and mode
// stand in the fields.
class SalesScreen final : public InvoiceScreen {
    Q_OBJECT
public:
    explicit SalesScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void modeKeyReleased();
    void partyChosen();
    void invoiceNumberKeyPressed(int key);
    void linesGridClicked();
    void addClicked();
    void addLine();
    void cancelInvoice();
    void discountFocusLost();
    void endInventoryClicked();
    void cancelClicked();
    void printClicked();

    void bookPayment();
    void consumeStock();
    void writeHeader();
    void resetForNextLine();
    // The invoice number for a numeric comparison: the field, or 0 when it is empty.
    QString invoiceNumber() const;

    QLineEdit *m_discountPercent;
    QLineEdit *m_discountAmount;
    QLineEdit *m_grandTotal;
};

} // namespace vantrel
