#include "salesscreen.h"

#include "data/database.h"
#include "data/records.h"
#include "invoice/itemlookup.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"
#include "output/lineprinter.h"

#include <QHBoxLayout>
#include <cmath>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vantrel {

SalesScreen::SalesScreen(Services &services, QWidget *parent)
    : InvoiceScreen(services, {"Sales", "Invoice No :", "item code", "product/stock grid", "party list", "Sales invoice",
                                "Invoice %1 was taken at another counter; this invoice is %2.",
                                "Invoice %1 was changed at another counter since it was shown; it was not cancelled.",
                                "Invoice %1 was changed at another counter since its last line; this line was not added.", "salesmain",
                                "sales", "invoice"}, parent)
{
    // The discount beside the total: percent, then the amount, which has no label of its own.
    m_discountPercent = makeField(QStringLiteral("discount percent"));
    m_discountAmount = makeField(QStringLiteral("discount amount"));
    m_grandTotal = makeField(QStringLiteral("GRAND TOTAL"));
    auto *discount = new QLabel(QStringLiteral("Discount"), this);
    auto *grandTotal = new QLabel(QStringLiteral("GRAND TOTAL"), this);
    grandTotal->setBuddy(m_grandTotal);
    addToTotals(discount);
    addToTotals(m_discountPercent);
    addToTotals(new QLabel(QStringLiteral("%"), this));
    addToTotals(m_discountAmount);
    addToTotals(grandTotal);
    addToTotals(m_grandTotal);
    setWidthInCharacters(m_discountPercent, 5);
    setWidthInCharacters(m_discountAmount, 11);
    setWidthInCharacters(m_grandTotal, 11);
    alignNumbers({m_discountPercent, m_discountAmount, m_grandTotal});
    setTabOrder(m_total, m_discountPercent);
    setTabOrder(m_discountPercent, m_discountAmount);
    setTabOrder(m_discountAmount, m_grandTotal);
    setTabOrder(m_grandTotal, m_endInventory);

    on(m_modeEvents, &FieldEvents::keyReleased, &SalesScreen::modeKeyReleased);
    on(m_parties, &Grid::chosen, &SalesScreen::partyChosen);
    on(new FieldEvents(m_number), &FieldEvents::keyPressed, &SalesScreen::invoiceNumberKeyPressed);
    on(m_products, &Grid::chosen, m_lookup, &ItemLookup::choose);
    on(m_lines, &Grid::clicked, &SalesScreen::linesGridClicked);
    on(new FieldEvents(m_discountPercent), &FieldEvents::focusLost, &SalesScreen::discountFocusLost);
    on(m_add, &QPushButton::clicked, &SalesScreen::addClicked);
    on(m_endInventory, &QPushButton::clicked, &SalesScreen::endInventoryClicked);
    on(m_cancel, &QPushButton::clicked, &SalesScreen::cancelClicked);
    on(m_print, &QPushButton::clicked, &SalesScreen::printClicked);
    upperCaseTyping();
}

QString SalesScreen::invoiceNumber() const
{
    return m_number->text().isEmpty() ? QStringLiteral("0") : m_number->text();
}

void SalesScreen::activated()
{
    prepareForDocument();
    m_products->setColumnWidthTwips(3, 3000);
    m_parties->setColumnWidthTwips(3, 3000);
}

// Every key released here starts the invoice afresh, with a new number in the mode's own series.
void SalesScreen::modeKeyReleased()
{
    startDocument("select max(invoice) as invoice from salesmain where trans='" + mode() + "'", "invoice");
}

// The party's first unsettled invoice of this mode comes back onto the screen.
void SalesScreen::partyChosen()
{
    m_party->setText(m_parties->text(m_parties->row(), m_parties->col()));
    hideAfterChoice(m_parties, m_productName);
    const Recordset open = db().query("select invoice from sales where party='" + m_party->text() + "' and trans='" + mode()
                                      + "' and status='u' group by invoice");
    if (open.eof())
        return;
    m_number->setText(open.text("invoice"));
    rememberDocument();
    m_lines->bindIfAny(db(), "select prodname,qty,rate,amount from sales where invoice='" + m_number->text() + "' And trans='"
                                 + mode() + "' and status='u'");
    const Recordset header = db().query("select netamt from salesmain where invoice=" + invoiceNumber() + " and trans='" + mode() + "'");
    m_total->setText(header.eof() ? QString() : header.text("netamt"));
    m_endInventory->setEnabled(true);
    m_cancel->setEnabled(true);
    m_lines->setColumnWidthTwips(3, 3000);
}

// Enter re-opens the invoice of this number and mode: its lines and its header's figures.
void SalesScreen::invoiceNumberKeyPressed(int key)
{
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return;
    rememberDocument();
    m_lines->bindIfAny(db(), "select prodname,qty,rate,amount from sales where invoice='" + m_number->text() + "' And trans='" + mode() + "'");
    const Recordset header = db().query("select dis,disamt,netamt,gd from salesmain where invoice=" + invoiceNumber() + " and trans='" + mode() + "'");
    if (header.eof()) {
        for (QLineEdit *field : {m_grandTotal, m_discountPercent, m_discountAmount, m_total})
            field->clear();
    } else {
        m_discountPercent->setText(header.text("dis"));
        m_discountAmount->setText(header.text("disamt"));
        m_total->setText(header.text("netamt"));
        m_grandTotal->setText(header.text("gd"));
    }
    m_endInventory->setEnabled(true);
    m_cancel->setEnabled(true);
    m_lines->setColumnWidthTwips(3, 3000);
}

void SalesScreen::linesGridClicked()
{
    m_lines->bindIfAny(db(), "select cmpid,model as code,prodname as item,qty,rate,amount from sales where invoice='" + m_number->text()
                                 + "' And trans='" + mode() + "'");
}

// One line, in this order: the line, the payment (credit only), the stock, the lines and their
// total, the header, as one action. Nothing is checked first; a failing statement leaves the
// earlier ones done.
void SalesScreen::addClicked()
{
    act([this] { addLine(); });
    resetForNextLine();
}

void SalesScreen::addLine()
{
    if (!stillTheDocumentAdded())
        return;
    if (m_writeLines) {
        takeProposedNumber();
        db().execute("insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) values('" + m_cmpid->text()
                     + "','" + m_psrno->text() + "','" + m_number->text() + "', '" + m_productName->text() + "','" + m_party->text() + "','"
                     + m_itemCode->text() + "','" + m_qty->text() + "','" + m_rate->text() + "','" + m_amount->text() + "','" + mode()
                     + "','u')");
        if (mode() == QLatin1String("D") || mode() == QLatin1String("d"))
            bookPayment();
    }
    consumeStock();

    m_lines->bind(db(), "select prodname as Item,qty,rate,amount from sales where invoice='" + m_number->text() + "' And trans='" + mode() + "'");
    float total = 0;
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row)
        total = toSingle(double(total) + val(m_lines->text(row, 3)));
    m_total->setText(singleText(total));

    if (m_writeHeader) {
        writeHeader();
        rememberDocument();
    }
}

// A credit line is paid out of the ledger; the balance is the shop's overall one.
void SalesScreen::bookPayment()
{
    const qint16 reference = toInt16(nextNumber(db(), "select max(refno) as refno from ledger where type='payment'", "refno"));
    db().execute("insert into ledger(refno,dat,ac,debit,type) values(" + QString::number(reference) + ",'" + m_date->text() + "','"
                 + m_party->text() + "','" + m_amount->text() + "','payment')");
    const float credit = toSingle(db().query("select sum(credit) as credit from ledger where type='receipt'").number("credit"));
    const float debit = toSingle(db().query("select sum(debit) as debit from ledger where type='payment'").number("debit"));
    const float balance = credit == 0 ? debit : toSingle(std::abs(double(credit) - double(debit)));
    db().execute("update ledger set balance='" + singleText(balance) + "' where refno=" + QString::number(reference) + " and type='payment'");
    dialogs().inform(QStringLiteral("balance counted"));
}

// The first lot's figures, less the quantity, are written on every lot of the product name.
void SalesScreen::consumeStock()
{
    const Recordset lot = db().query("select * from stock where prodname='" + m_productName->text() + "'");
    if (lot.eof())
        return;
    const double quantity = val(m_qty->text());
    const float stock = toSingle(lot.number("stk") - quantity);
    const float used = toSingle(lot.number("usedqty") + quantity);
    db().execute("update stock set usedqty='" + singleText(used) + "',stk='" + singleText(stock) + "' where prodname='"
                 + m_productName->text() + "'");
}

void SalesScreen::writeHeader()
{
    const Recordset header = db().query("select * from salesmain where invoice=" + m_number->text() + " and trans='" + mode() + "'");
    if (header.eof()) {
        db().execute("insert into salesmain(invoice,dat,party,trans,netamt) values('" + m_number->text() + "','" + m_date->text() + "','"
                     + m_party->text() + "','" + mode() + "','" + m_total->text() + "')");
        dialogs().inform(QStringLiteral("Party transcation completed"));
    } else {
        db().execute("update salesmain set netamt='" + m_total->text() + "' where invoice=" + m_number->text() + " and trans='" + mode() + "'");
    }
}

// The item fields empty for the next line; company code, serial, party, date, mode, number and
// total stay. The all-products list is filled twice and the fields cleared again after it, as
// the screen has always done.
void SalesScreen::resetForNextLine()
{
    clearItemFields();
    m_lookup->listAllProducts();
    m_lookup->listAllProducts();
    clearItemFields();
    m_lines->setColumnWidthTwips(3, 2800);
}

void SalesScreen::discountFocusLost()
{
    const double total = val(m_total->text());
    m_discountAmount->setText(doubleText(total * val(m_discountPercent->text()) / 100));
    m_grandTotal->setText(doubleText(total - val(m_discountAmount->text())));
    act([this] {
        const Recordset header = db().query("select * from salesmain where invoice=" + m_number->text() + " and trans='" + mode() + "'");
        if (header.eof())
            return;
        db().execute("update salesmain set dis='" + m_discountPercent->text() + "',disamt='" + m_discountAmount->text() + "',gd='"
                     + m_grandTotal->text() + "' where invoice=" + m_number->text() + " and trans='" + mode() + "'");
        dialogs().inform(QStringLiteral("Discount Calculated on invoice"));
    });
}

void SalesScreen::endInventoryClicked()
{
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To End Inventory")))
        return;
    act([this] {
        db().execute("update sales set status='p' where invoice='" + m_number->text() + "' and trans='" + mode() + "'");
        dialogs().inform(QStringLiteral("Invoice Amount Received"));
    });
    m_mode->setFocus();
    for (QLineEdit *field : {m_party, m_number, m_itemCode, m_total, m_grandTotal, m_discountPercent, m_discountAmount})
        field->clear();
}

// Each line's quantity goes back to stock, read from the lines grid as it stands, then the
// invoice's lines and header are deleted. The ledger keeps its payments.
void SalesScreen::cancelClicked()
{
    const QString lines = "select cmpid,model as code,prodname as item,qty,rate,amount from sales where invoice='" + m_number->text()
                          + "' And trans='" + mode() + "'";
    m_lines->bindIfAny(db(), lines);
    const QStringList shown = linesShown();
    const Recordset header = db().query("select netamt from salesmain where invoice=" + invoiceNumber() + " and trans='" + mode() + "'");
    if (!header.eof())
        m_total->setText(header.text("netamt"));
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To Cancel Invoice")))
        return;

    m_products->refresh();
    const bool cancelled = cancelUnlessChanged(shown, [this] { cancelInvoice(); });
    m_lines->refresh();
    if (!cancelled)
        return;
    for (QLineEdit *field : {m_number, m_itemCode, m_amount, m_total})
        field->clear();
    m_cancel->setEnabled(false);
    m_print->setEnabled(false);
    // The next invoice starts in the mode field, not on "&Close" beyond the disabled buttons.
    m_mode->setFocus();
}

void SalesScreen::cancelInvoice()
{
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row) {
        const QString product = m_lines->text(row, 2);
        const double quantity = val(m_lines->text(row, 3));
        const Recordset lot = db().query("select * from stock where prodname='" + product + "'");
        if (lot.eof())
            continue;
        const qint16 stock = toInt16(lot.number("stk") + quantity);
        const qint16 used = toInt16(lot.number("usedqty") - quantity);
        db().execute("update stock set usedqty='" + QString::number(used) + "',stk='" + QString::number(stock) + "' where prodname='" + product + "'");
        dialogs().inform(QStringLiteral("Stock Returned Successfully"));
    }
    db().execute("delete from sales where invoice='" + m_number->text() + "' and trans='" + mode() + "'");
    db().execute("delete from salesmain where invoice=" + m_number->text() + " and trans='" + mode() + "'");
    dialogs().inform(QStringLiteral("Invoice Cancelled Successfully"));
}

void SalesScreen::printClicked()
{
    printDocument("Invoice No :" + spaces(1) + m_number->text() + spaces(3) + "Date :" + spaces(3) + m_date->text(), 25);
}

} // namespace vantrel
