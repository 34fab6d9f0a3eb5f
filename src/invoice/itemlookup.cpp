#include "itemlookup.h"

#include "data/database.h"
#include "data/records.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/grid.h"
#include "widgets/screen.h"

#include <QLineEdit>

namespace vantrel {

ItemLookup::ItemLookup(Screen *screen, const Fields &fields) : QObject(screen), m_screen(screen), m_fields(fields)
{
}

void ItemLookup::showPanel()
{
    showBelow(m_fields.panel, m_fields.productName);
}

void ItemLookup::productNameKeyPressed(int key)
{
    if (!m_fields.panel->isHidden())
        enterListOnDown(key, m_fields.grid);
}

void ItemLookup::searchByName(int key)
{
    if (m_fields.productName->text().isEmpty())
        return;
    m_fields.grid->bind(m_screen->services().db,
                        "select p.prodname,sum(s.stk) as stk,p.boxno,p.cmpid,p.psrno from stock s right join productmaster p on p.cmpid=s.cmpid and p.psrno=s.psrno where p.prodname like '"
                            + m_fields.productName->text() + "%' group by p.cmpid,p.psrno,p.prodname,p.boxno");
    showPanel();
    if (key == Qt::Key_Escape)
        m_fields.panel->hide();
}

void ItemLookup::choose()
{
    Grid *grid = m_fields.grid;
    if (grid->row() < 1 || grid->col() > 1) {
        m_screen->services().dialogs.inform(QStringLiteral("Wrong Selection"));
        return;
    }
    m_fields.productName->setText(grid->text(grid->row(), grid->col()));
    hideAfterChoice(m_fields.panel, m_fields.qty);
    const Recordset product = m_screen->services().db.query(
        "select cmpid,psrno,model,rate from productmaster where prodname='" + m_fields.productName->text() + "'");
    if (product.eof())
        return;
    m_fields.itemCode->setText(product.text("model"));
    m_fields.cmpid->setText(product.text("cmpid"));
    m_fields.psrno->setText(product.text("psrno"));
    m_fields.rate->setText(product.text("rate"));
}

void ItemLookup::itemCodeKeyPressed(int key)
{
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return;
    const Recordset product = m_screen->services().db.query(
        "select cmpid,psrno,prodname,rate from productmaster where model='" + m_fields.itemCode->text() + "'");
    if (!product.eof()) {
        m_fields.productName->setText(product.text("prodname"));
        m_fields.cmpid->setText(product.text("cmpid"));
        m_fields.psrno->setText(product.text("psrno"));
        m_fields.rate->setText(product.text("Rate"));
    }
    m_fields.qty->setFocus();
}

void ItemLookup::computeAmount()
{
    m_fields.amount->setText(doubleText(val(m_fields.rate->text()) * val(m_fields.qty->text())));
}

void ItemLookup::listAllProducts()
{
    m_fields.grid->bind(m_screen->services().db,
                        "select p.prodname,sum(s.stk) as stk,p.cmpid,p.psrno from stock s right join productmaster p on p.cmpid=s.cmpid and p.psrno=s.psrno group by p.cmpid,p.psrno,p.prodname");
}

} // namespace vantrel
