#include "ledgerscreen.h"

#include "data/database.h"
#include "widgets/clock.h"
#include "widgets/datepicker.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"

#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

LedgerScreen::LedgerScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Ledger"), parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    m_account = addField(form, QStringLiteral("Account Name"));
    const QDate today = services.clock.today();
    m_from = makeDatePicker(this, QStringLiteral("From Date"), today);
    m_to = makeDatePicker(this, QStringLiteral("To Date"), today);
    form->addRow(QStringLiteral("From Date"), m_from);
    form->addRow(QStringLiteral("To Date"), m_to);
    m_ledger = makeGrid(QStringLiteral("ledger grid"));
    layout->addWidget(m_ledger, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(buttons);

    m_accounts = makeGrid(QStringLiteral("account search grid"));
    m_accounts->hide();

    auto *account = new FieldEvents(m_account);
    on(account, &FieldEvents::keyReleased, &LedgerScreen::accountKeyReleased);
    downEntersList(account, m_accounts);
    on(m_accounts, &Grid::clicked, &LedgerScreen::accountChosen);
    on(m_accounts, &Grid::keyPressed, &LedgerScreen::accountGridKeyPressed);
    setKeysHint(QStringLiteral("Down, Enter takes a row \u00b7 Alt+C closes"));
}

void LedgerScreen::activated()
{
    m_accounts->setColumnWidthTwips(0, 3000);
}

void LedgerScreen::accountKeyReleased(int key)
{
    if (m_account->text().isEmpty())
        return;
    searchParties(m_account, m_accounts);
    if (key == Qt::Key_Escape)
        m_accounts->hide();
}

void LedgerScreen::accountGridKeyPressed(int key)
{
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        accountChosen();
}

// The account's rows whose month-first date text lies between the two bounds' texts.
void LedgerScreen::accountChosen()
{
    m_account->setText(m_accounts->text(m_accounts->row(), m_accounts->col()));
    const QString from = m_from->date().toString(QStringLiteral("MM/dd/yyyy"));
    const QString to = m_to->date().toString(QStringLiteral("MM/dd/yyyy"));
    m_ledger->bind(db(), "select dat,refno,credit,debit,balance from ledger where format(cdate(dat),'MM/DD/YYYY') between '" + from + "' and '"
                             + to + "' and ac= '" + m_account->text() + "'");
    hideAfterChoice(m_accounts, m_from);
}

} // namespace vantrel
