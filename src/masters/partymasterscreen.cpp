#include "partymasterscreen.h"

#include "data/database.h"
#include "data/records.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

PartyMasterScreen::PartyMasterScreen(Services &services, QWidget *parent)
    : Screen(services, QStringLiteral("Suppliermaster"), parent)
{
    auto *layout = new QHBoxLayout(this);
    auto *left = new QVBoxLayout;
    layout->addLayout(left);

    auto *supplier = new QGroupBox(QStringLiteral("Supplier"), this);
    auto *supplierForm = new QFormLayout(supplier);
    m_id = addField(supplierForm, QStringLiteral("Party ID"));
    m_name = addField(supplierForm, QStringLiteral("Party Name :"), QStringLiteral("txtsuppname"));
    left->addWidget(supplier);

    auto *details = new QGroupBox(QStringLiteral("Supplier Details"), this);
    auto *detailsForm = new QFormLayout(details);
    m_shortName = addField(detailsForm, QStringLiteral("Short Name:"));
    m_address = addField(detailsForm, QStringLiteral("Address :"));
    m_city = addField(detailsForm, QStringLiteral("City :"));
    m_phone = addField(detailsForm, QStringLiteral("Phone:"));
    m_mobile = addField(detailsForm, QStringLiteral("Mobile :"));
    m_pin = addField(detailsForm, QStringLiteral("Pin Code :"));
    m_category = addField(detailsForm, QStringLiteral("C/B/S/O"));
    m_accountType = addChoice(detailsForm, QStringLiteral("Acc Type"));
    m_accountType->addItems({QStringLiteral("Asset"), QStringLiteral("Liability")});
    m_accountType->setCurrentIndex(-1);
    left->addWidget(details);

    auto *save = new QPushButton(QStringLiteral("&Save"), this);
    save->setObjectName(QStringLiteral("cmdrefresh"));
    auto *update = new QPushButton(QStringLiteral("&Update"), this);
    update->setObjectName(QStringLiteral("cmdupdate"));
    auto *remove = new QPushButton(QStringLiteral("&Delete"), this);
    remove->setObjectName(QStringLiteral("cmddelete"));
    auto *cancel = new QPushButton(QStringLiteral("Ca&ncel"), this);
    cancel->setObjectName(QStringLiteral("cmdcancle"));
    QPushButton *close = makeCloseButton(QStringLiteral("&Close"), QStringLiteral("cmdclose"));
    close->setToolTip(QStringLiteral("Close this form"));
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {save, update, remove, cancel, close})
        buttons->addWidget(button);
    left->addLayout(buttons);
    left->addStretch();

    m_parties = makeGrid(QStringLiteral("party list"));
    layout->addWidget(m_parties, 1);

    auto *name = new FieldEvents(m_name);
    on(name, &FieldEvents::keyReleased, &PartyMasterScreen::nameKeyReleased);
    downEntersList(name, m_parties);
    on(m_parties, &Grid::chosen, &PartyMasterScreen::partyChosen);
    on(save, &QPushButton::clicked, &PartyMasterScreen::saveClicked);
    on(update, &QPushButton::clicked, &PartyMasterScreen::updateClicked);
    on(remove, &QPushButton::clicked, &PartyMasterScreen::deleteClicked);
    on(cancel, &QPushButton::clicked, &PartyMasterScreen::cancelClicked);
    upperCaseTyping();
    setKeysHint(QStringLiteral("Down, Enter takes a row \u00b7 Alt+S saves \u00b7 Alt+U updates \u00b7 Alt+D deletes \u00b7 "
                               "Alt+N cancels \u00b7 Alt+C closes"));
}

void PartyMasterScreen::activated()
{
    proposeNextNumber();
}

// The next party number, and the fields of a new party emptied.
void PartyMasterScreen::proposeNextNumber()
{
    m_proposedId.propose(db(), m_id, "select max(ID) as ID from suppliermaster", "ID");
    for (QLineEdit *field : {m_address, m_phone, m_mobile, m_pin, m_name, m_city})
        field->clear();
    m_parties->setColumnWidthTwips(0, 3000);
}

void PartyMasterScreen::nameKeyReleased()
{
    if (m_name->text().isEmpty())
        return;
    m_parties->bind(db(), "select suppname,ID from suppliermaster where suppname like '" + m_name->text() + "%'");
}

// A picked party fills the fields; its category and account type stay as they were.
void PartyMasterScreen::partyChosen()
{
    const int row = m_parties->row();
    if (row < 1) {
        dialogs().inform(QStringLiteral(" Wrong selection"));
        return;
    }
    if (m_parties->col() > 1) {
        dialogs().inform(QStringLiteral("Wrong Selection"));
        return;
    }
    m_name->setText(m_parties->text(row, 0));
    m_id->setText(m_parties->text(row, 1));
    const Recordset party = db().query("select * from suppliermaster where ID=" + m_id->text());
    if (party.eof())
        return;
    m_shortName->setText(party.text("shortname"));
    m_address->setText(party.text("address"));
    m_city->setText(party.text("city"));
    m_phone->setText(party.text("phone"));
    m_mobile->setText(party.text("mobile"));
    m_pin->setText(party.text("pin"));
}

void PartyMasterScreen::saveClicked()
{
    act([this] {
        m_proposedId.take(db(), dialogs(), m_id, QStringLiteral("Party %1 was taken at another counter; this party is %2."));
        db().execute("insert into suppliermaster(ID,suppname,shortname,address,city,phone,mobile,pin,cbso,acctype) values('" + m_id->text()
                     + "','" + m_name->text() + "','" + m_shortName->text() + "','" + m_address->text() + "','" + m_city->text() + "','"
                     + m_phone->text() + "','" + m_mobile->text() + "','" + m_pin->text() + "','" + m_category->text() + "','"
                     + m_accountType->currentText() + "')");
        dialogs().inform(QStringLiteral("party added successfully"));
    });
    proposeNextNumber();
    m_name->setFocus(); // the next party's name, under the number just proposed
}

// The number is written back onto itself; an empty one fails the statement.
void PartyMasterScreen::updateClicked()
{
    act([this] {
        db().execute("update suppliermaster set ID=" + m_id->text() + ",suppname='" + m_name->text() + "',shortname='" + m_shortName->text()
                     + "',address='" + m_address->text() + "',city='" + m_city->text() + "',phone='" + m_phone->text() + "',mobile='"
                     + m_mobile->text() + "',pin='" + m_pin->text() + "',cbso='" + m_category->text() + "',acctype='"
                     + m_accountType->currentText() + "' where ID=" + m_id->text());
        dialogs().inform(QStringLiteral("party updated successfully"));
    });
}

void PartyMasterScreen::deleteClicked()
{
    if (!dialogs().ask(QStringLiteral("Are You Sure")))
        return;
    act([this] {
        db().execute("delete from suppliermaster where ID=" + m_id->text());
        dialogs().inform(QStringLiteral("Supplier deleted"));
    });
    m_name->setFocus();
}

// Leaves "Party ID" empty until the screen is activated again or a party is saved.
void PartyMasterScreen::cancelClicked()
{
    for (QLineEdit *field : {m_id, m_address, m_phone, m_mobile, m_pin, m_name, m_city})
        field->clear();
    m_name->setFocus();
}

} // namespace vantrel
