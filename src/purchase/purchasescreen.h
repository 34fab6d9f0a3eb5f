#pragma once

#include "invoice/invoicescreen.h"

namespace vantrel {

// The "Purchase" screen: the mirror of Sales over the purchase tables. Each added line creates
// the product's stock row on its first purchase or raises it on later ones; there is no
// discount and no ledger entry. Where the two screens differ, the difference is written out
// here in the handler concerned.
class PurchaseScreen final : public InvoiceScreen {
    Q_OBJECT
public:
    explicit PurchaseScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void modeKeyReleased();
    void voucherNumberKeyPressed(int key);
    void productGridKeyPressed(int key);
    void partyClickedInList();
    void partyKeyPressedInList(int key);
    void addClicked();
    void addLine();
    void cancelVoucher();
    void endInventoryClicked();
    void cancelClicked();
    void printClicked();

    // The supplier's first unsettled voucher of this mode comes back, its lines with COLUMNS.
    void openSuppliersVoucher(const QString &columns);
    // Books the line's quantity into the product's stock row; true when the row was new.
    bool bookStock();
    void writeHeader();
};

} // namespace vantrel
