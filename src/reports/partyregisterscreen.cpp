#include "partyregisterscreen.h"

#include "data/database.h"
#include "widgets/clock.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"
#include "output/lineprinter.h"

#include <QDateEdit>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace vantrel {

const PartyRegisterScreen::PartyKind PartyRegisterScreen::Sales = {
    {"Partywise Sales Report",
     "select invoice,dat as [Date],party,trans,netamt from salesmain where format(cdate(dat),'MM/DD/YYYY') between '",
     "select sum(netamt) as charge from salesmain where format(cdate(dat),'MM/DD/YYYY') between '",
     "Partywise Sales Register",
     "sale"},
    "' and party= '",
    true,
};

const PartyRegisterScreen::PartyKind PartyRegisterScreen::Purchase = {
    {"Partywise Purchase Report",
     "select pono,dat as [Date],party,trans,netamt from purchasemain where format(cdate(dat),'MM/DD/YYYY') between '",
     "select sum(netamt) as charge from purchasemain where format(cdate(dat),'MM/DD/YYYY') between '",
     "Partywise Purchase Register",
     "pur"},
    "' and party='",
    false,
};

PartyRegisterScreen::PartyRegisterScreen(Services &services, const PartyKind &kind, QWidget *parent)
    : RegisterScreen(services, kind.register_, QStringLiteral("From Date"), QStringLiteral("To Date"), parent), m_partyKind(kind)
{
    m_party = makeField(QStringLiteral("Party:"));
    auto *label = new QLabel(QStringLiteral("Party:"), this);
    label->setBuddy(m_party);
    m_form->insertRow(0, label, m_party);
    setTabOrder(m_party, m_from);
    m_parties = makeGrid(QStringLiteral("party search grid"));
    m_parties->hide();

    auto *party = new FieldEvents(m_party);
    on(party, &FieldEvents::keyReleased, &PartyRegisterScreen::partyKeyReleased);
    downEntersList(party, m_parties);
    on(m_parties, &Grid::chosen, &PartyRegisterScreen::partyChosen);
}

void PartyRegisterScreen::activated()
{
    RegisterScreen::activated();
    const QDate today = services().clock.today();
    m_from->setDate(today);
    m_to->setDate(today);
    m_parties->setColumnWidthTwips(QStringLiteral("suppname"), 3000);
}

QString PartyRegisterScreen::afterTo() const
{
    return m_partyKind.partyCondition + m_party->text() + "'";
}

QStringList PartyRegisterScreen::titleLines() const
{
    return {m_kind.title, "Party:" + spaces(1) + m_party->text()};
}

void PartyRegisterScreen::partyKeyReleased(int key)
{
    if (m_party->text().isEmpty())
        return;
    searchParties(m_party, m_parties);
    if (key == Qt::Key_Escape && m_partyKind.escapeHidesRegister)
        m_register->hide();
}

void PartyRegisterScreen::partyChosen()
{
    m_party->setText(m_parties->text(m_parties->row(), m_parties->col()));
    hideAfterChoice(m_parties, m_from);
}

} // namespace vantrel
