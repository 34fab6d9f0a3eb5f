#include "purchasescreen.h"

#include "data/database.h"
#include "data/records.h"
#include "invoice/itemlookup.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"
#include "output/lineprinter.h"

#include <QFrame>
#include <QLineEdit>
#include <QPushButton>

namespace vantrel {

namespace {

// The keys for which the product grid's key event fires: those that type a character, and
// Enter, Escape and Backspace. Moving about the grid with the arrows chooses nothing.
bool typesInGrid(int key)
{
    return key < Qt::Key_Escape || key == Qt::Key_Escape || key == Qt::Key_Backspace || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

PurchaseScreen::PurchaseScreen(Services &services, QWidget *parent)
    : InvoiceScreen(services, {"Purchase", "Purchse Order No :", "Item code", "product stock grid", "party grid", "Purchase order",
                                   "Voucher %1 was taken at another counter; this voucher is %2.",
                                   "Voucher %1 was changed at another counter since it was shown; it was not cancelled.",
                                   "Voucher %1 was changed at another counter since its last line; this line was not added.", "purchasemain",
                                   "purchase", "pono"}, parent)
{
    on(m_modeEvents, &FieldEvents::keyReleased, &PurchaseScreen::modeKeyReleased);
    on(new FieldEvents(m_number), &FieldEvents::keyPressed, &PurchaseScreen::voucherNumberKeyPressed);
    on(m_products, &Grid::clicked, m_lookup, &ItemLookup::choose);
    on(m_products, &Grid::keyPressed, &PurchaseScreen::productGridKeyPressed);
    on(m_parties, &Grid::clicked, &PurchaseScreen::partyClickedInList);
    on(m_parties, &Grid::keyPressed, &PurchaseScreen::partyKeyPressedInList);
    on(m_add, &QPushButton::clicked, &PurchaseScreen::addClicked);
    on(m_endInventory, &QPushButton::clicked, &PurchaseScreen::endInventoryClicked);
    on(m_cancel, &QPushButton::clicked, &PurchaseScreen::cancelClicked);
    on(m_print, &QPushButton::clicked, &PurchaseScreen::printClicked);
    upperCaseTyping();
}

void PurchaseScreen::activated()
{
    prepareForDocument();
    for (Grid *grid : {m_lines, m_products, m_parties})
        grid->setColumnWidthTwips(0, 3000);
}

// Every key released here starts the voucher afresh, with a new number in the mode's own series.
void PurchaseScreen::modeKeyReleased()
{
    startDocument("select max(pono) as pono from purchasemain where trans='" + mode() + "'", "pono");
}

// Enter re-opens the voucher of this number and mode; Escape hides the product panel. The
// number goes into the header query as it stands, empty or not.
void PurchaseScreen::voucherNumberKeyPressed(int key)
{
    if (key == Qt::Key_Escape)
        m_productPanel->hide();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return;
    rememberDocument();
    m_lines->bindIfAny(db(), "select prodname,qty,rate,amount from purchase where pono='" + m_number->text() + "' And trans='" + mode() + "'");
    const Recordset header = db().query("select netamt from purchasemain where pono=" + m_number->text() + " and trans='" + mode() + "'");
    m_total->setText(header.eof() ? QString() : header.text("netamt"));
    m_cancel->setEnabled(true);
    m_endInventory->setEnabled(true);
}

void PurchaseScreen::productGridKeyPressed(int key)
{
    if (typesInGrid(key))
        m_lookup->choose();
}

// A click lists the voucher's lines with six columns, Enter with four.
void PurchaseScreen::partyClickedInList()
{
    openSuppliersVoucher("cmpid,prodname,model,qty,rate,amount");
}

void PurchaseScreen::partyKeyPressedInList(int key)
{
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        openSuppliersVoucher("prodname,qty,rate,amount");
}

void PurchaseScreen::openSuppliersVoucher(const QString &columns)
{
    m_party->setText(m_parties->text(m_parties->row(), m_parties->col()));
    hideAfterChoice(m_parties, m_productName);
    const Recordset open = db().query("select pono from purchase where party='" + m_party->text() + "' and trans='" + mode()
                                      + "' and status='u' group by pono");
    if (!open.eof())
        m_number->setText(open.text("pono"));
    rememberDocument();
    m_lines->bindIfAny(db(), "select " + columns + " from purchase where pono='" + m_number->text() + "' And trans='" + mode()
                                 + "' and status='u'");
    const Recordset header = db().query("select netamt from purchasemain where pono=" + m_number->text() + " and trans='" + mode() + "'");
    m_total->setText(header.eof() ? QString() : header.text("netamt"));
    m_endInventory->setEnabled(true);
    m_cancel->setEnabled(true);
}

// One line, in this order: the line, the stock row, the lines and their total, the header, as
// one action. Nothing is checked first; a failing statement leaves the earlier ones done.
void PurchaseScreen::addClicked()
{
    act([this] { addLine(); });
    m_endInventory->setEnabled(false);
    m_print->setEnabled(false);
    m_lookup->listAllProducts();
    clearItemFields();
}

void PurchaseScreen::addLine()
{
    if (!stillTheDocumentAdded())
        return;
    if (m_writeLines) {
        takeProposedNumber();
        db().execute("insert into purchase(cmpid,psrno,pono,prodname,party,model,qty,rate,amount,trans,status) values('" + m_cmpid->text()
                         + "','" + m_psrno->text() + "','" + m_number->text() + "', '" + m_productName->text() + "','" + m_party->text() + "','"
                         + m_itemCode->text() + "','" + m_qty->text() + "','" + m_rate->text() + "','" + m_amount->text() + "','" + mode()
                         + "','u')");
    }
    const bool newLot = bookStock();

    // The first heading reads "prodname" after a new lot and "Item" after a raised one.
    const QString item = newLot ? QStringLiteral("prodname") : QStringLiteral("prodname as Item");
    m_lines->bind(db(), "select " + item + ",qty,rate,amount from purchase where pono='" + m_number->text() + "' And trans='" + mode() + "'");
    double total = 0;
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row)
        total += val(m_lines->text(row, 3));
    m_total->setText(doubleText(total));

    if (m_writeHeader) {
        writeHeader();
        rememberDocument();
    }
}

// One stock row per product name: the first purchase creates it with its own voucher, supplier,
// rate and amount; later ones only raise the quantities.
bool PurchaseScreen::bookStock()
{
    const QString lotQuery = "select * from stock where prodname='" + m_productName->text() + "'";
    const Recordset lot = db().query(lotQuery);
    if (lot.eof()) {
        db().execute("insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt) values('" + m_cmpid->text() + "','"
                     + m_number->text() + "','" + m_psrno->text() + "','" + m_productName->text() + "','" + m_itemCode->text() + "','"
                     + m_party->text() + "','" + m_qty->text() + "','" + m_rate->text() + "','" + m_amount->text() + "')");
        const float bought = toSingle(db().query(lotQuery).number("totqty"));
        db().execute("update stock set stk='" + singleText(bought) + "' where prodname='" + m_productName->text() + "'");
        dialogs().inform(QStringLiteral(" stock added successfully"));
        return true;
    }
    const float total = toSingle(val(m_qty->text()) + lot.number("totqty"));
    const float used = toSingle(lot.number("usedqty"));
    db().execute("update stock set totqty='" + singleText(total) + "',usedqty='" + singleText(used) + "',stk='" + singleText(toSingle(double(total) - double(used)))
                 + "' where prodname='" + m_productName->text() + "'");
    dialogs().inform(QStringLiteral("Stock Updated Successfully"));
    return false;
}

void PurchaseScreen::writeHeader()
{
    const Recordset header = db().query("select * from purchasemain where pono=" + m_number->text() + " and trans='" + mode() + "'");
    if (header.eof()) {
        db().execute("insert into purchasemain(pono,dat,party,trans,netamt) values('" + m_number->text() + "','" + m_date->text() + "','"
                     + m_party->text() + "','" + mode() + "','" + m_total->text() + "')");
        dialogs().inform(QStringLiteral("Party transcation completed"));
    } else {
        db().execute("update purchasemain set netamt='" + m_total->text() + "' where pono=" + m_number->text() + " and trans='" + mode() + "'");
    }
}

// Settling touches the purchase lines alone. The mode field then reads "C"; the next voucher
// is numbered only when a key is released in it.
void PurchaseScreen::endInventoryClicked()
{
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To End Inventory")))
        return;
    act([this] {
        db().execute("update purchase set status='p' where pono='" + m_number->text() + "' and trans='" + mode() + "'");
        dialogs().inform(QStringLiteral("Voucher Paid Successfully"));
    });
    for (QLineEdit *field : {m_mode, m_party, m_number, m_itemCode})
        field->clear();
    m_mode->setFocus();
    m_mode->setText(QStringLiteral("C"));
}

// Each line's quantity is taken back out of the stock row, read from the lines grid, then the
// voucher's lines and header are deleted.
void PurchaseScreen::cancelClicked()
{
    const QString lines = "select cmpid,model as code,prodname as item,qty,rate,amount from purchase where pono='" + m_number->text()
                          + "' And trans='" + mode() + "'";
    m_lines->bind(db(), lines);
    const QStringList shown = linesShown();
    const Recordset header = db().query("select netamt from purchasemain where pono=" + m_number->text() + " and trans='" + mode() + "'");
    if (!header.eof())
        m_total->setText(header.text("netamt"));
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To Cancel Invoice")))
        return;
    if (!cancelUnlessChanged(shown, [this] { cancelVoucher(); })) {
        m_lines->refresh();
        return;
    }

    for (QLineEdit *field : {m_number, m_party, m_qty, m_rate, m_amount, m_total})
        field->clear();
    for (QPushButton *button : {m_cancel, m_endInventory, m_print})
        button->setEnabled(false);
    // The next voucher starts in the mode field, not on "&Close" beyond the disabled buttons.
    m_mode->setFocus();
}

void PurchaseScreen::cancelVoucher()
{
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row) {
        const QString item = m_lines->text(row, 2);
        const double quantity = val(m_lines->text(row, 3));
        const Recordset lot = db().query("select * from stock where prodname='" + item + "'");
        if (lot.eof())
            continue;
        const qint16 total = toInt16(lot.number("totqty") - quantity);
        const qint16 available = toInt16(lot.number("stk") - quantity);
        db().execute("update stock set totqty='" + QString::number(total) + "',stk='" + QString::number(available) + "' where prodname='" + item + "'");
        dialogs().inform(QStringLiteral("Stock Returned Successfully"));
    }
    db().execute("delete from purchase where pono='" + m_number->text() + "' and trans='" + mode() + "'");
    db().execute("delete from purchasemain where pono=" + m_number->text() + " and trans='" + mode() + "'");
    dialogs().inform(QStringLiteral("Invoice Cancelled Successfully"));
}

// Wider rules than the invoice, and no blank between "Date :" and the date.
void PurchaseScreen::printClicked()
{
    printDocument("Purchse Order No :" + spaces(1) + m_number->text() + spaces(3) + "Date :" + m_date->text(), 39);
}

} // namespace vantrel
