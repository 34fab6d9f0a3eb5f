#pragma once

#include "widgets/screen.h"

class QLineEdit;
class QPushButton;
class QFrame;

namespace vantrel {

class Grid;
class ItemLookup;

// The "Sales" screen, where invoices are written; it opens at start-up. A key released in the
// mode field starts an invoice of that mode with the next number of its series; "&Add" writes
// each line (with its stock consumption and, on credit, its ledger payment) and the header;
// the discount, settling, cancelling and printing act on the invoice whose number and mode
// stand in the fields.
class SalesScreen final : public Screen {
    Q_OBJECT
public:
    explicit SalesScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void buildFields();
    void buildButtons();
    void connectHandlers();

    void modeChanged();
    void modeKeyReleased();
    void partyKeyPressed(int key);
    void partyKeyReleased(int key);
    void partyClicked();
    void partyFocusLost();
    void partyChosen();
    void invoiceNumberKeyPressed(int key);
    void linesGridClicked();
    void addClicked();
    void discountFocusLost();
    void endInventoryClicked();
    void cancelClicked();
    void printClicked();

    void bookPayment();
    void consumeStock();
    void writeHeader(const QString &total);
    void resetForNextLine();
    void clearItemFields();
    // The invoice number for a numeric comparison: the field, or 0 when it is empty.
    QString invoiceNumber() const;
    QString mode() const;

    QLineEdit *m_mode;
    QLineEdit *m_invoice;
    QLineEdit *m_date;
    QLineEdit *m_party;
    QLineEdit *m_productName;
    QLineEdit *m_itemCode;
    QLineEdit *m_cmpid;
    QLineEdit *m_psrno;
    QLineEdit *m_qty;
    QLineEdit *m_rate;
    QLineEdit *m_amount;
    QLineEdit *m_total;
    QLineEdit *m_discountPercent;
    QLineEdit *m_discountAmount;
    QLineEdit *m_grandTotal;
    Grid *m_lines;
    QFrame *m_productPanel;
    Grid *m_products;
    Grid *m_parties;
    QPushButton *m_add;
    QPushButton *m_endInventory;
    QPushButton *m_cancel;
    QPushButton *m_print;
    QPushButton *m_close;
    ItemLookup *m_lookup;

    // Set by the first key released in the mode field, never cleared: until then "&Add" writes
    // no line and no header, yet still consumes stock.
    bool m_salesOpened = false;
    bool m_stockOpened = false;
};

} // namespace vantrel
