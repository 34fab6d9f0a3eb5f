#include "stockscreen.h"

#include "data/database.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

StockScreen::StockScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Stock"), parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *item = new QGroupBox(QStringLiteral("Item Wise Stock Details"), this);
    auto *itemForm = new QFormLayout(item);
    m_productName = addField(itemForm, QStringLiteral("Product Name"));
    m_productId = addField(itemForm, QStringLiteral("Product Id"));
    m_companyName = addField(itemForm, QStringLiteral("Company Name"));
    m_itemCode = addField(itemForm, QStringLiteral("Item Code"));
    m_companyCode = makeField(QStringLiteral("company code"));
    itemForm->addRow(QString(), m_companyCode);
    layout->addWidget(item);

    auto *stock = new QGroupBox(QStringLiteral("Stock"), this);
    auto *stockForm = new QFormLayout(stock);
    m_rate = addField(stockForm, QStringLiteral("MRP"));
    m_total = addField(stockForm, QStringLiteral("Total Stock:"));
    m_used = addField(stockForm, QStringLiteral("Used Stock:"));
    m_available = addField(stockForm, QStringLiteral("Available Stock:"));
    layout->addWidget(stock);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(buttons);
    layout->addStretch();

    m_products = makeGrid(QStringLiteral("product grid"));
    m_products->hide();
    m_itemCodes = makeGrid(QStringLiteral("item-code grid"));
    m_itemCodes->hide();

    auto *productName = new FieldEvents(m_productName);
    on(productName, &FieldEvents::keyReleased, &StockScreen::productNameKeyReleased);
    downEntersList(productName, m_products);
    on(m_products, &Grid::clicked, &StockScreen::productClicked);
    on(m_products, &Grid::keyPressed, &StockScreen::productGridKeyPressed);
    on(m_itemCodes, &Grid::chosen, &StockScreen::itemCodeClicked);
    auto *itemCode = new FieldEvents(m_itemCode);
    on(itemCode, &FieldEvents::clicked, &StockScreen::itemCodeFieldClicked);
    downEntersList(itemCode, m_itemCodes);
    upperCaseTyping();
    alignNumbers({m_rate, m_total, m_used, m_available});
    setKeysHint(QStringLiteral("Down, Enter takes a row \u00b7 Alt+C closes"));
}

void StockScreen::activated()
{
    m_products->setColumnWidthTwips(0, 3000);
}

void StockScreen::productNameKeyReleased()
{
    if (m_productName->text().isEmpty())
        return;
    m_products->bind(db(), "select p.prodname,p.psrno,c.companyname,c.cmpid from productmaster p,companymaster c where p.cmpid=c.cmpid and prodname like '"
                               + m_productName->text() + "%'");
    showBelow(m_products, m_productName);
}

bool StockScreen::acceptPick(Grid *grid)
{
    if (grid->row() < 1) {
        dialogs().inform(QStringLiteral(" Wrong selection"));
        return false;
    }
    if (grid->col() > 1) {
        dialogs().inform(QStringLiteral("Wrong Selection"));
        return false;
    }
    return true;
}

// A null sum (no lots, or nothing sold yet) shows as an empty field, not 0.
void StockScreen::showFigures(const Recordset &figures)
{
    m_total->setText(figures.text("totqty"));
    m_used->setText(figures.text("usedqty"));
    m_available->setText(figures.text("stk"));
}

// The product and its totals over its stock rows, with one item code line per row.
void StockScreen::productClicked()
{
    if (!acceptPick(m_products))
        return;
    const int row = m_products->row();
    m_productName->setText(m_products->text(row, 0));
    m_productId->setText(m_products->text(row, 1));
    m_companyName->setText(m_products->text(row, 2));
    m_companyCode->setText(m_products->text(row, 3));
    hideAfterChoice(m_products, m_itemCode);
    showFigures(db().query("select sum(totqty) as totqty,sum(usedqty) as usedqty,sum(stk) as stk from stock where psrno=" + m_productId->text()
                           + " and cmpid='" + m_companyCode->text() + "'"));
    m_itemCodes->bind(db(), "select model from stock where psrno=" + m_productId->text() + " and cmpid='" + m_companyCode->text() + "'");
    showBelow(m_itemCodes, m_itemCode);
}

// Enter takes the product's name only.
void StockScreen::productGridKeyPressed(int key)
{
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return;
    if (!acceptPick(m_products))
        return;
    m_productName->setText(m_products->text(m_products->row(), 0));
    hideAfterChoice(m_products, m_productName);
}

// The first rate group of the item code's rows.
void StockScreen::itemCodeClicked()
{
    if (!acceptPick(m_itemCodes))
        return;
    m_itemCode->setText(m_itemCodes->text(m_itemCodes->row(), m_itemCodes->col()));
    hideAfterChoice(m_itemCodes, m_itemCode);
    const Recordset group = db().query("select rate,sum(totqty) as totqty,sum(usedqty) as usedqty,sum(stk) as stk from stock where model='"
                                       + m_itemCode->text() + "' and prodname='" + m_productName->text() + "' group by rate");
    if (group.eof())
        return;
    showFigures(group);
    m_rate->setText(group.text("rate"));
}

void StockScreen::itemCodeFieldClicked()
{
    showBelow(m_itemCodes, m_itemCode);
}

} // namespace vantrel
