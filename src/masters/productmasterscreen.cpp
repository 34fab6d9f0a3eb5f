#include "productmasterscreen.h"

#include "data/database.h"
#include "data/records.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"

#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

ProductMasterScreen::ProductMasterScreen(Services &services, QWidget *parent)
    : Screen(services, QStringLiteral("Product Master"), parent)
{
    auto *layout = new QHBoxLayout(this);
    auto *left = new QVBoxLayout;
    layout->addLayout(left, 1);
    auto *form = new QFormLayout;
    left->addLayout(form);
    m_companyCode = addField(form, QStringLiteral("Company Code"));
    m_serial = addField(form, QStringLiteral("Product Sr. No"));
    m_mfgName = addField(form, QStringLiteral("Mfg Name"));
    m_productName = addField(form, QStringLiteral("Product Name"));
    m_productShortName = addField(form, QStringLiteral("Product Short Name"));
    m_companyShortName = addField(form, QStringLiteral("Company Short Name"));
    m_itemCode = addField(form, QStringLiteral("Item Code"));
    m_mrp = addField(form, QStringLiteral("MRP"));
    m_wholesaleRate = addField(form, QStringLiteral("Wholesale Rate"));
    m_salesRate = addField(form, QStringLiteral("Sales Rate"));
    m_boxno = addField(form, QStringLiteral("Boxno"));

    m_add = new QPushButton(QStringLiteral("&Add"), this);
    m_save = new QPushButton(QStringLiteral("&Save"), this);
    m_update = new QPushButton(QStringLiteral("&Update"), this);
    m_delete = new QPushButton(QStringLiteral("&Delete"), this);
    m_cancel = new QPushButton(QStringLiteral("Ca&ncel"), this);
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {m_add, m_save, m_update, m_delete, m_cancel, makeCloseButton(QStringLiteral("&Close"))})
        buttons->addWidget(button);
    left->addLayout(buttons);
    left->addStretch();

    // The company search, shown by "&Add", beside the fields.
    m_companyPanel = new QFrame(this);
    auto *panel = new QFormLayout(m_companyPanel);
    m_search = makeField(QStringLiteral("search"));
    panel->addRow(QStringLiteral("search"), m_search);
    m_companies = makeGrid(QStringLiteral("company list"), m_companyPanel);
    panel->addRow(m_companies);
    // Its room is kept while it is hidden, so the fields do not move when it shows.
    QSizePolicy keepRoom = m_companyPanel->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true);
    m_companyPanel->setSizePolicy(keepRoom);
    m_companyPanel->hide();
    layout->addWidget(m_companyPanel, 1);

    // The product list drops under the "Company Code" field, which doubles as its search box.
    m_products = makeGrid(QStringLiteral("product list"));
    m_products->hide();

    on(m_add, &QPushButton::clicked, &ProductMasterScreen::addClicked);
    auto *search = new FieldEvents(m_search);
    on(search, &FieldEvents::keyReleased, &ProductMasterScreen::companySearchKeyReleased);
    downEntersList(search, m_companies);
    on(m_companies, &Grid::chosen, &ProductMasterScreen::companyChosen);
    auto *code = new FieldEvents(m_companyCode);
    downEntersList(code, m_products);
    on(code, &FieldEvents::keyReleased, &ProductMasterScreen::companyCodeKeyReleased);
    on(code, &FieldEvents::clicked, &ProductMasterScreen::companyCodeClicked);
    on(m_products, &Grid::chosen, &ProductMasterScreen::productChosen);
    on(m_save, &QPushButton::clicked, &ProductMasterScreen::saveClicked);
    on(m_update, &QPushButton::clicked, &ProductMasterScreen::updateClicked);
    on(m_cancel, &QPushButton::clicked, &ProductMasterScreen::cancelClicked);
    upperCaseTyping();
    alignNumbers({m_mrp, m_wholesaleRate, m_salesRate});
    setKeysHint(QStringLiteral("Alt+A adds \u00b7 Down, Enter takes a row \u00b7 Alt+S saves \u00b7 Alt+U updates \u00b7 Alt+N cancels \u00b7 "
                               "Alt+C closes"));
}

void ProductMasterScreen::activated()
{
    for (QPushButton *button : {m_save, m_update, m_delete})
        button->setEnabled(false);
    m_products->setColumnWidthTwips(0, 3000);
    m_companies->setColumnWidthTwips(1, 3000);
}

void ProductMasterScreen::addClicked()
{
    m_companyPanel->show();
    m_save->setEnabled(true);
    m_search->setFocus();
}

void ProductMasterScreen::companySearchKeyReleased()
{
    m_companies->bind(db(), "select cmpid,companyname from companymaster where companyname like '" + m_search->text() + "%'");
    m_companies->show();
}

// A company is picked by its code: the product gets the next serial number of that company.
void ProductMasterScreen::companyChosen()
{
    if (m_companies->col() != 0) {
        dialogs().inform(QStringLiteral("Wrong Selection"));
        return;
    }
    const int row = m_companies->row();
    m_companyShortName->setText(m_companies->text(row, 1));
    m_companyCode->setText(m_companies->text(row, 0));
    m_mfgName->setText(m_companies->text(row, 1));
    m_proposedSerial.propose(db(), m_serial, "select max(psrno) as psrno from productmaster where cmpid='" + m_companyCode->text() + "'", "psrno");
    m_companyPanel->hide();
    m_productName->setFocus();
}

// The "Company Code" field is also the product search box when a product is to be edited.
void ProductMasterScreen::companyCodeKeyReleased(int key)
{
    if (m_companyCode->text().isEmpty())
        return;
    m_products->bind(db(), "select prodname,shortname from productmaster where prodname like '" + m_companyCode->text() + "%'");
    showBelow(m_products, m_companyCode);
    if (key == Qt::Key_Escape)
        m_products->hide();
}

void ProductMasterScreen::companyCodeClicked()
{
    m_products->hide();
    m_productName->clear();
}

// The picked product fills the screen; "Company Code" gets the company's name, so an update
// matches the product only once the true code is typed back.
void ProductMasterScreen::productChosen()
{
    m_productName->setText(m_products->text(m_products->row(), 0));
    const Recordset product = db().query(
        "select p.cmpid,p.shortname,p.psrno,p.prodname,p.shortname,p.model,p.mrp,p.wr,p.rate,p.boxno,c.companyname from productmaster p,companymaster c where p.cmpid=c.cmpid and prodname='"
        + m_productName->text() + "'");
    if (!product.eof()) {
        m_companyCode->setText(product.text("CompanyName"));
        m_mfgName->setText(product.text("CompanyName"));
        m_serial->setText(product.text("psrno"));
        m_companyShortName->setText(product.text("shortname"));
        m_productShortName->setText(product.text("shortname"));
        m_productName->setText(product.text("prodname"));
        m_itemCode->setText(product.text("model"));
        m_mrp->setText(product.text("mrp"));
        m_wholesaleRate->setText(product.text("wr"));
        m_salesRate->setText(product.text("Rate"));
        m_boxno->setText(product.text("boxno"));
    }
    m_update->setEnabled(true);
    hideAfterChoice(m_products, m_productName);
}

// A new product: its name, then its item code, must be unused; the check and the save are one
// action.
void ProductMasterScreen::saveClicked()
{
    bool saved = false;
    act([&] { saved = saveProduct(); });
    if (!saved)
        return;
    clearFields();
    // The next product starts with its company; "&Save" would only store an empty one.
    m_add->setFocus();
}

bool ProductMasterScreen::saveProduct()
{
    if (!db().query("select prodname from productmaster where prodname='" + m_productName->text() + "'").eof()) {
        dialogs().inform(QStringLiteral("Product already exist and assign to other product please choose another"));
        return false;
    }
    if (!db().query("select model from productmaster where model='" + m_itemCode->text() + "'").eof()) {
        dialogs().inform(QStringLiteral("Item Code already exist and assign to other product please choose another"));
        return false;
    }
    m_proposedSerial.take(db(), dialogs(), m_serial, QStringLiteral("Product %1 was taken at another counter; this product is %2."));
    db().execute("Insert into productmaster(cmpid,mfgname,psrno,prodname,shortname,model,mrp,wr,rate,boxno) values('" + m_companyCode->text()
                 + "','" + m_mfgName->text() + "','" + m_serial->text() + "','" + m_productName->text() + "','" + m_productShortName->text()
                 + "','" + m_itemCode->text() + "','" + m_mrp->text() + "','" + m_wholesaleRate->text() + "','" + m_salesRate->text() + "','"
                 + m_boxno->text() + "')");
    dialogs().inform(QStringLiteral("Saved successfully"));
    return true;
}

void ProductMasterScreen::updateClicked()
{
    m_update->setEnabled(false);
    act([this] {
        db().execute("update productmaster set cmpid='" + m_companyCode->text() + "',mfgname='" + m_mfgName->text() + "',psrno="
                     + m_serial->text() + ",prodname='" + m_productName->text() + "',shortname= '" + m_productShortName->text() + "',model='"
                     + m_itemCode->text() + "',mrp='" + m_mrp->text() + "',wr='" + m_wholesaleRate->text() + "',rate='" + m_salesRate->text()
                     + "',boxno='" + m_boxno->text() + "' where cmpid='" + m_companyCode->text() + "' and psrno=" + m_serial->text());
        dialogs().inform(QStringLiteral("product updated successfully"));
    });
    clearFields();
    m_companyCode->setFocus(); // where the next product to edit is searched
}

void ProductMasterScreen::cancelClicked()
{
    for (QPushButton *button : {m_update, m_save, m_delete})
        button->setEnabled(false);
    m_companyCode->setFocus();
}

void ProductMasterScreen::clearFields()
{
    for (QLineEdit *field : {m_companyCode, m_serial, m_mfgName, m_productName, m_productShortName, m_companyShortName, m_itemCode, m_mrp,
                             m_wholesaleRate, m_salesRate, m_boxno})
        field->clear();
}

} // namespace vantrel
