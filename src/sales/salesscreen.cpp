#include "salesscreen.h"

#include "data/database.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "invoice/itemlookup.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"
#include "widgets/lineprinter.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

namespace {

// A row of label-field pairs; a field's width in characters, 0 to let it stretch.
class FieldRow {
public:
    explicit FieldRow(QVBoxLayout *parent) : m_row(new QHBoxLayout) { parent->addLayout(m_row); }
    FieldRow &add(const QString &label, QLineEdit *field, int chars)
    {
        if (!label.isEmpty()) {
            auto *caption = new QLabel(label);
            caption->setBuddy(field);
            m_row->addWidget(caption);
        }
        if (chars > 0)
            field->setFixedWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('M')) * chars + 12);
        m_row->addWidget(field, chars > 0 ? 0 : 1);
        m_row->addSpacing(12);
        return *this;
    }
    FieldRow &add(QWidget *widget)
    {
        m_row->addWidget(widget);
        return *this;
    }
    void end() { m_row->addStretch(); }

private:
    QHBoxLayout *m_row;
};

} // namespace

SalesScreen::SalesScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Sales"), parent)
{
    buildFields();
    buildButtons();
    connectHandlers();
    upperCaseTyping();
    resize(1240, 660);
}

void SalesScreen::buildFields()
{
    auto *layout = new QVBoxLayout(this);
    m_mode = makeField(QStringLiteral("C/D"));
    m_invoice = makeField(QStringLiteral("Invoice No :"), QStringLiteral("txtpono"));
    m_date = makeField(QStringLiteral("Date :"), QStringLiteral("txtdate"));
    FieldRow(layout).add("C/D", m_mode, 2).add("Invoice No :", m_invoice, 8).add("Date :", m_date, 10).end();

    m_party = makeField(QStringLiteral("Party:"));
    FieldRow(layout).add("Party:", m_party, 36).end();

    m_productName = makeField(QStringLiteral("Product Name:"));
    m_itemCode = makeField(QStringLiteral("item code"));
    m_cmpid = makeField(QStringLiteral("cmpid"));
    m_psrno = makeField(QStringLiteral("psrno"));
    FieldRow(layout)
        .add("Product Name:", m_productName, 36)
        .add("item code", m_itemCode, 12)
        .add("cmpid", m_cmpid, 8)
        .add("psrno", m_psrno, 5)
        .end();

    m_qty = makeField(QStringLiteral("Qty"));
    m_rate = makeField(QStringLiteral("Rate"));
    m_amount = makeField(QStringLiteral("Amount"));
    m_add = new QPushButton(QStringLiteral("&Add"), this);
    m_add->setObjectName(QStringLiteral("cmdadd"));
    FieldRow(layout).add("Qty", m_qty, 6).add("Rate", m_rate, 9).add("Amount", m_amount, 11).add(m_add).end();

    m_lines = makeGrid(QStringLiteral("lines grid"));
    layout->addWidget(m_lines, 1);

    m_total = makeField(QStringLiteral("Total Amount"));
    m_discountPercent = makeField(QStringLiteral("discount percent"));
    m_discountAmount = makeField(QStringLiteral("discount amount"));
    m_grandTotal = makeField(QStringLiteral("GRAND TOTAL"));
    FieldRow(layout)
        .add("Total Amount", m_total, 11)
        .add("Discount", m_discountPercent, 5)
        .add("%", m_discountAmount, 11)
        .add("GRAND TOTAL", m_grandTotal, 11)
        .end();
}

void SalesScreen::buildButtons()
{
    m_endInventory = new QPushButton(QStringLiteral("&End Inventory"), this);
    m_cancel = new QPushButton(QStringLiteral("C&ancel"), this);
    m_print = new QPushButton(QStringLiteral("&Print"), this);
    m_close = makeCloseButton(QStringLiteral("&Close"), QStringLiteral("cmdclose"));
    m_close->setToolTip(QStringLiteral("Close this form"));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton *button : {m_endInventory, m_cancel, m_print, m_close})
        buttons->addWidget(button);
    static_cast<QVBoxLayout *>(layout())->addLayout(buttons);

    // The search lists drop over the screen under the field they serve.
    m_parties = makeGrid(QStringLiteral("party list"));
    m_parties->hide();
    m_productPanel = new QFrame(this);
    m_productPanel->setFrameShape(QFrame::StyledPanel);
    m_products = makeGrid(QStringLiteral("product/stock grid"), m_productPanel);
    auto *panelLayout = new QVBoxLayout(m_productPanel);
    panelLayout->setContentsMargins(0, 0, 0, 0);
    panelLayout->addWidget(m_products);
    m_productPanel->hide();
    m_lookup = new ItemLookup(this, {m_productName, m_itemCode, m_cmpid, m_psrno, m_qty, m_rate, m_amount, m_productPanel, m_products});
}

void SalesScreen::connectHandlers()
{
    on(m_mode, &QLineEdit::textChanged, &SalesScreen::modeChanged);
    on(new FieldEvents(m_mode), &FieldEvents::keyReleased, &SalesScreen::modeKeyReleased);
    auto *party = new FieldEvents(m_party);
    on(party, &FieldEvents::keyPressed, &SalesScreen::partyKeyPressed);
    on(party, &FieldEvents::keyReleased, &SalesScreen::partyKeyReleased);
    on(party, &FieldEvents::clicked, &SalesScreen::partyClicked);
    on(party, &FieldEvents::focusLost, &SalesScreen::partyFocusLost);
    on(m_parties, &Grid::chosen, &SalesScreen::partyChosen);
    on(new FieldEvents(m_invoice), &FieldEvents::keyPressed, &SalesScreen::invoiceNumberKeyPressed);
    on(m_lines, &Grid::clicked, &SalesScreen::linesGridClicked);
    on(new FieldEvents(m_discountPercent), &FieldEvents::focusLost, &SalesScreen::discountFocusLost);
    on(m_add, &QPushButton::clicked, &SalesScreen::addClicked);
    on(m_endInventory, &QPushButton::clicked, &SalesScreen::endInventoryClicked);
    on(m_cancel, &QPushButton::clicked, &SalesScreen::cancelClicked);
    on(m_print, &QPushButton::clicked, &SalesScreen::printClicked);

    auto *productName = new FieldEvents(m_productName);
    on(productName, &FieldEvents::clicked, m_lookup, &ItemLookup::showPanel);
    on(productName, &FieldEvents::keyPressed, m_lookup, &ItemLookup::productNameKeyPressed);
    on(productName, &FieldEvents::keyReleased, m_lookup, &ItemLookup::searchByName);
    on(m_products, &Grid::chosen, m_lookup, &ItemLookup::choose);
    on(new FieldEvents(m_itemCode), &FieldEvents::keyPressed, m_lookup, &ItemLookup::itemCodeKeyPressed);
    on(m_qty, &QLineEdit::textChanged, m_lookup, &ItemLookup::computeAmount);
}

QString SalesScreen::mode() const
{
    return m_mode->text();
}

QString SalesScreen::invoiceNumber() const
{
    return m_invoice->text().isEmpty() ? QStringLiteral("0") : m_invoice->text();
}

void SalesScreen::activated()
{
    m_mode->setFocus();
    m_date->setText(ShortDate().text(services().clock.today()));
    for (QPushButton *button : {m_endInventory, m_print, m_cancel, m_add})
        button->setEnabled(false);
    m_products->setColumnWidthTwips(3, 3000);
    m_parties->setColumnWidthTwips(3, 3000);
}

void SalesScreen::modeChanged()
{
    static const QStringList modes = {"D", "C", "d", "c"};
    if (!mode().isEmpty() && !modes.contains(mode()))
        dialogs().inform(QStringLiteral("Enter C/D only"));
}

// Every key released here starts the invoice afresh: a new number in the mode's own series.
void SalesScreen::modeKeyReleased()
{
    m_party->setFocus();
    for (QLineEdit *field : {m_party, m_productName, m_qty, m_rate, m_amount, m_total})
        field->clear();
    m_add->setEnabled(true);
    m_print->setEnabled(true);
    const double next = nextNumber(db(), "select max(invoice) as invoice from salesmain where trans='" + mode() + "'", "invoice");
    m_invoice->setText(doubleText(next));
    m_salesOpened = true;
    m_stockOpened = true;
    m_lines->clear();
}

// Down takes the keyboard into the party list while it shows.
void SalesScreen::partyKeyPressed(int key)
{
    if (key == Qt::Key_Down && !m_parties->isHidden())
        m_parties->setFocus(Qt::OtherFocusReason);
}

void SalesScreen::partyKeyReleased(int key)
{
    if (m_party->text().isEmpty())
        return;
    m_parties->bind(db(), "select suppname from suppliermaster where suppname like '" + m_party->text() + "%'");
    showBelow(m_parties, m_party);
    if (key == Qt::Key_Escape)
        m_parties->hide();
}

void SalesScreen::partyClicked()
{
    showBelow(m_parties, m_party);
}

void SalesScreen::partyFocusLost()
{
    if (!m_parties->isHidden())
        focusAfterwards(m_parties);
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
    m_invoice->setText(open.text("invoice"));
    m_lines->bindIfAny(db(), "select prodname,qty,rate,amount from sales where invoice='" + m_invoice->text() + "' And trans='"
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
    m_lines->bindIfAny(db(), "select prodname,qty,rate,amount from sales where invoice='" + m_invoice->text() + "' And trans='" + mode() + "'");
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
    m_lines->bindIfAny(db(), "select cmpid,model as code,prodname as item,qty,rate,amount from sales where invoice='" + m_invoice->text()
                                 + "' And trans='" + mode() + "'");
}

// One line, in this order: the line, the payment (credit only), the stock, the lines and their
// total, the header. Nothing is checked first; a failing statement leaves the earlier ones done.
void SalesScreen::addClicked()
{
    if (m_salesOpened) {
        db().execute("insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) values('" + m_cmpid->text()
                     + "','" + m_psrno->text() + "','" + m_invoice->text() + "', '" + m_productName->text() + "','" + m_party->text() + "','"
                     + m_itemCode->text() + "','" + m_qty->text() + "','" + m_rate->text() + "','" + m_amount->text() + "','" + mode()
                     + "','u')");
        if (mode() == QLatin1String("D") || mode() == QLatin1String("d"))
            bookPayment();
    }
    consumeStock();

    m_lines->bind(db(), "select prodname as Item,qty,rate,amount from sales where invoice='" + m_invoice->text() + "' And trans='" + mode() + "'");
    float total = 0;
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row)
        total = float(double(total) + val(m_lines->text(row, 3)));
    m_total->setText(singleText(total));

    if (m_stockOpened)
        writeHeader(m_total->text());
    resetForNextLine();
}

// A credit line is paid out of the ledger; the balance is the shop's overall one.
void SalesScreen::bookPayment()
{
    const qint16 reference = toInt16(nextNumber(db(), "select max(refno) as refno from ledger where type='payment'", "refno"));
    db().execute("insert into ledger(refno,dat,ac,debit,type) values(" + QString::number(reference) + ",'" + m_date->text() + "','"
                 + m_party->text() + "','" + m_amount->text() + "','payment')");
    const float credit = float(db().query("select sum(credit) as credit from ledger where type='receipt'").number("credit"));
    const float debit = float(db().query("select sum(debit) as debit from ledger where type='payment'").number("debit"));
    const float balance = credit == 0 ? debit : std::abs(credit - debit);
    db().execute("update ledger set balance='" + singleText(balance) + "' where refno=" + QString::number(reference) + " and type='payment'");
    dialogs().inform(QStringLiteral("balance counted"));
}

// The first lot's figures, less the quantity, are written on every lot of the product name.
void SalesScreen::consumeStock()
{
    const Recordset lot = db().query("select * from stock where prodname='" + m_productName->text() + "'");
    if (lot.eof())
        return;
    const float quantity = float(val(m_qty->text()));
    const float stock = float(lot.number("stk")) - quantity;
    const float used = float(lot.number("usedqty")) + quantity;
    db().execute("update stock set usedqty='" + singleText(used) + "',stk='" + singleText(stock) + "' where prodname='"
                 + m_productName->text() + "'");
}

void SalesScreen::writeHeader(const QString &total)
{
    const Recordset header = db().query("select * from salesmain where invoice=" + m_invoice->text() + " and trans='" + mode() + "'");
    if (header.eof()) {
        db().execute("insert into salesmain(invoice,dat,party,trans,netamt) values('" + m_invoice->text() + "','" + m_date->text() + "','"
                     + m_party->text() + "','" + mode() + "','" + total + "')");
        dialogs().inform(QStringLiteral("Party transcation completed"));
    } else {
        db().execute("update salesmain set netamt='" + total + "' where invoice=" + m_invoice->text() + " and trans='" + mode() + "'");
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

void SalesScreen::clearItemFields()
{
    for (QLineEdit *field : {m_productName, m_qty, m_rate, m_itemCode, m_amount})
        field->clear();
    for (QPushButton *button : {m_cancel, m_endInventory, m_print})
        button->setEnabled(true);
    m_productName->setFocus();
}

void SalesScreen::discountFocusLost()
{
    const double total = val(m_total->text());
    m_discountAmount->setText(doubleText(total * val(m_discountPercent->text()) / 100));
    m_grandTotal->setText(doubleText(total - val(m_discountAmount->text())));
    const Recordset header = db().query("select * from salesmain where invoice=" + m_invoice->text() + " and trans='" + mode() + "'");
    if (header.eof())
        return;
    db().execute("update salesmain set dis='" + m_discountPercent->text() + "',disamt='" + m_discountAmount->text() + "',gd='"
                 + m_grandTotal->text() + "' where invoice=" + m_invoice->text() + " and trans='" + mode() + "'");
    dialogs().inform(QStringLiteral("Discount Calculated on invoice"));
}

void SalesScreen::endInventoryClicked()
{
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To End Inventory")))
        return;
    db().execute("update sales set status='p' where invoice='" + m_invoice->text() + "' and trans='" + mode() + "'");
    dialogs().inform(QStringLiteral("Invoice Amount Received"));
    m_mode->setFocus();
    for (QLineEdit *field : {m_party, m_invoice, m_itemCode, m_total, m_grandTotal, m_discountPercent, m_discountAmount})
        field->clear();
}

// Each line's quantity goes back to stock, read from the lines grid as it stands, then the
// invoice's lines and header are deleted. The ledger keeps its payments.
void SalesScreen::cancelClicked()
{
    m_lines->bindIfAny(db(), "select cmpid,model as code,prodname as item,qty,rate,amount from sales where invoice='" + m_invoice->text()
                                 + "' And trans='" + mode() + "'");
    const Recordset header = db().query("select netamt from salesmain where invoice=" + invoiceNumber() + " and trans='" + mode() + "'");
    if (!header.eof())
        m_total->setText(header.text("netamt"));
    if (!dialogs().ask(QStringLiteral("Are You Sure You Want To Cancel Invoice")))
        return;

    m_products->refresh();
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
    db().execute("delete from sales where invoice='" + m_invoice->text() + "' and trans='" + mode() + "'");
    db().execute("delete from salesmain where invoice=" + m_invoice->text() + " and trans='" + mode() + "'");
    dialogs().inform(QStringLiteral("Invoice Cancelled Successfully"));

    m_lines->refresh();
    for (QLineEdit *field : {m_invoice, m_itemCode, m_amount, m_total})
        field->clear();
    m_cancel->setEnabled(false);
    m_print->setEnabled(false);
}

// What the screen shows goes to the printer: the fields and the first four columns of the grid.
void SalesScreen::printClicked()
{
    const QString rule = QString(25, QLatin1Char('='));
    const QString dashes = QString(25, QLatin1Char('-'));
    QStringList lines = {
        spaces(10) + "COMPANY NAME",
        spaces(10) + "ADDRESS",
        rule,
        "Invoice No :" + spaces(1) + m_invoice->text() + spaces(3) + "Date :" + spaces(3) + m_date->text(),
        "Party:" + spaces(3) + m_party->text(),
        rule,
        m_lines->text(0, 0) + spaces(6) + m_lines->text(0, 1) + spaces(3) + m_lines->text(0, 2) + spaces(1) + m_lines->text(0, 3),
        dashes,
    };
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row)
        lines << padRight(m_lines->text(row, 0), 15) + spaces(1) + padRight(m_lines->text(row, 1), 3) + spaces(1)
                     + padRight(m_lines->text(row, 2), 4) + spaces(2) + padRight(m_lines->text(row, 3), 7);
    lines << dashes << spaces(8) + "Total Amount" + spaces(6) + m_total->text() << rule;
    LinePrinter(services().programDirectory).print(lines);
}

} // namespace vantrel
