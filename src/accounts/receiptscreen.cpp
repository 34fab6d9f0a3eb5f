#include "receiptscreen.h"

#include "data/database.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "data/unhandlederror.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

ReceiptScreen::ReceiptScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Receipt"), parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    m_number = addField(form, QStringLiteral("Receipt No"));
    m_date = new QLabel(this);
    m_date->setAccessibleName(QStringLiteral("DATE"));
    form->addRow(QStringLiteral("DATE"), m_date);
    m_account = addField(form, QStringLiteral("Account"));
    m_accountName = addField(form, QStringLiteral("Name Of Account"));
    m_amount = addField(form, QStringLiteral("Amount"));
    auto *save = m_save = new QPushButton(QStringLiteral("&Save"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(save);
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    buttons->addStretch();
    layout->addLayout(buttons);

    m_receipts = makeGrid(QStringLiteral("receipt list"));
    layout->addWidget(m_receipts, 1);
    auto *totals = new QFormLayout;
    layout->addLayout(totals);
    m_total = addField(totals, QStringLiteral("Total Amount"));

    m_accountGrid = makeGrid(QStringLiteral("account search grid A"));
    m_accountGrid->hide();
    m_accountNameGrid = makeGrid(QStringLiteral("account search grid B"));
    m_accountNameGrid->hide();

    auto *account = new FieldEvents(m_account);
    on(account, &FieldEvents::keyReleased, &ReceiptScreen::accountKeyReleased);
    downEntersList(account, m_accountGrid);
    auto *accountName = new FieldEvents(m_accountName);
    on(accountName, &FieldEvents::keyReleased, &ReceiptScreen::accountNameKeyReleased);
    downEntersList(accountName, m_accountNameGrid);
    on(m_accountGrid, &Grid::clicked, &ReceiptScreen::accountGridClicked);
    on(m_accountGrid, &Grid::keyPressed, &ReceiptScreen::accountGridKeyPressed);
    on(m_accountNameGrid, &Grid::clicked, &ReceiptScreen::accountNameGridClicked);
    on(m_accountNameGrid, &Grid::keyPressed, &ReceiptScreen::accountNameGridKeyPressed);
    on(save, &QPushButton::clicked, &ReceiptScreen::saveClicked);
    guard([this] { proposeNumber("select max(refno) as ref from ledger where type='receipt'", "ref"); });
    alignNumbers({m_amount, m_total});
    setKeysHint(QStringLiteral("Down, Enter takes a row \u00b7 Alt+S saves \u00b7 Alt+C closes"));
}

void ReceiptScreen::makeReadOnly()
{
    m_save->setEnabled(false);
}

void ReceiptScreen::activated()
{
    m_date->setText(ShortDate().text(services().clock.today()));
    m_accountGrid->setColumnWidthTwips(0, 3000);
    m_accountNameGrid->setColumnWidthTwips(0, 3000);
    m_receipts->setColumnWidthTwips(QStringLiteral("Name_of_Account"), 3000);
}

void ReceiptScreen::proposeNumber(const QString &maxQuery, const QString &column)
{
    m_proposedNumber.propose(db(), m_number, maxQuery, column);
}

// The "Account" list closes only by a choice in it.
void ReceiptScreen::accountKeyReleased()
{
    if (!m_account->text().isEmpty())
        searchParties(m_account, m_accountGrid);
}

void ReceiptScreen::accountNameKeyReleased(int key)
{
    if (m_accountName->text().isEmpty())
        return;
    searchParties(m_accountName, m_accountNameGrid);
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
        m_accountGrid->hide();
        m_accountNameGrid->hide();
    }
}

void ReceiptScreen::accountGridClicked()
{
    m_account->setText(m_accountGrid->text(m_accountGrid->row(), m_accountGrid->col()));
    hideAfterChoice(m_accountGrid, m_accountName);
    if (!m_accountName->text().isEmpty())
        showLedgerReceipts();
}

// Every key refreshes the list, Enter also takes the account.
void ReceiptScreen::accountGridKeyPressed(int key)
{
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        m_account->setText(m_accountGrid->text(m_accountGrid->row(), m_accountGrid->col()));
        hideAfterChoice(m_accountGrid, m_accountName);
    }
    if (!m_accountName->text().isEmpty())
        showLedgerReceipts();
}

void ReceiptScreen::accountNameGridClicked()
{
    m_accountName->setText(m_accountNameGrid->text(m_accountNameGrid->row(), m_accountNameGrid->col()));
    hideAfterChoice(m_accountNameGrid, m_amount);
}

// Unlike the "Account" list, this one lists from the receipt view.
void ReceiptScreen::accountNameGridKeyPressed(int key)
{
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        m_accountName->setText(m_accountNameGrid->text(m_accountNameGrid->row(), m_accountNameGrid->col()));
        hideAfterChoice(m_accountNameGrid, m_amount);
    }
    if (!m_accountName->text().isEmpty())
        showReceipts("select refno as receipt,dat as Date1,ac as Name_of_Account,amt as Amount from receipt where accnm='" + m_accountName->text() + "'");
}

bool ReceiptScreen::showReceipts(const QString &query)
{
    m_receipts->bind(db(), query);
    const int rows = m_receipts->rows();
    float total = 0;
    for (int row = 1; row < rows; ++row)
        total = toSingle(double(total) + val(m_receipts->text(row, 3)));
    m_total->setText(singleText(total));
    return rows > 1;
}

bool ReceiptScreen::showLedgerReceipts()
{
    return showReceipts("select refno,dat as Date1,ac as Name_of_Account,credit as Amount from ledger where accnm='" + m_accountName->text()
                        + "' and type='receipt'");
}

// The receipt, the shop's overall balance on it, the account's list, the next number, as one
// action. Once the list comes back empty, a failing step no longer ends the action: the next
// one runs.
void ReceiptScreen::saveClicked()
{
    act([this] { saveReceipt(); });
    // The next receipt starts at its account; left on the button, Enter would save this one again.
    m_account->setFocus();
}

void ReceiptScreen::saveReceipt()
{
    m_proposedNumber.take(db(), dialogs(), m_number, QStringLiteral("Receipt %1 was taken at another counter; this receipt is %2."));
    const QString today = ShortDate().text(services().clock.today());
    db().execute("insert into ledger(refno,dat,ac,credit,accnm,type)values('" + m_number->text() + "','" + today + "','" + m_account->text()
                 + "','" + m_amount->text() + "','" + m_accountName->text() + "','Receipt')");
    db().query("select refno,credit,debit from ledger where refno=" + m_number->text() + " and type='receipt'");
    const float credit = toSingle(db().query("select sum(credit) as credit from ledger where type='receipt'").number("credit"));
    const float debit = toSingle(db().query("select sum(debit) as debit from ledger where type='payment'").number("debit"));
    const float balance = toSingle(credit <= debit ? double(debit) - double(credit) : double(credit) - double(debit));
    db().execute("update ledger set balance='" + singleText(balance) + "' where refno=" + m_number->text() + " and type='receipt'");
    dialogs().inform(QStringLiteral("balance counted"));

    bool ignoreErrors = !showLedgerReceipts();
    const auto step = [&](const std::function<void()> &action) {
        try {
            action();
        } catch (const UnhandledError &) {
            if (!ignoreErrors)
                throw;
        }
    };
    step([&] { dialogs().inform(QStringLiteral("Item Added successfully")); });
    step([&] { proposeNumber("select max(refno) as refno from ledger where type='receipt'", "refno"); });
    step([&] { ignoreErrors = !showLedgerReceipts() || ignoreErrors; });
}

} // namespace vantrel
