// Receipts into the ledger and the ledger view of one account over a span of dates.
#include "accounts/ledgerscreen.h"
#include "accounts/receiptscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QDateEdit>
#include <QLabel>

using namespace vantrel;
using test::field;
using test::Rows;

namespace {

struct ReceiptDesk : test::Desk {
    ReceiptScreen *screen = nullptr;

    ReceiptDesk()
    {
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM STORES')");
        shop.exec("insert into suppliermaster(ID,suppname) values('2','CASH ACCOUNT')");
    }
    void openScreen() { screen = open<ReceiptScreen>("rcpt"); }
    void receive(const QString &account, const QString &accountName, const QString &amount)
    {
        for (const char *label : {"Account", "Name Of Account", "Amount"})
            field(screen, label)->clear();
        field(screen, "Account")->setText(account);
        field(screen, "Name Of Account")->setText(accountName);
        field(screen, "Amount")->setText(amount);
        test::click(screen, "&Save");
    }
};

struct LedgerDesk : test::Desk {
    LedgerScreen *screen = nullptr;

    LedgerDesk()
    {
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM')");
        shop.exec("insert into suppliermaster(ID,suppname) values('2','RAM STORES')");
        const QStringList rows = {"1,'01/15/2024','RAM','100','','receipt'", "2,'01/15/2023','RAM','50','','receipt'",
                                  "3,'02/10/2024','RAM','','30','payment'", "4,'12/20/2023','RAM','70','','receipt'",
                                  "5,'01/20/2024','RAM STORES','90','','receipt'"};
        for (const QString &row : rows)
            shop.exec("insert into ledger(refno,dat,ac,credit,debit,type) values(" + row + ")");
        screen = open<LedgerScreen>("led");
    }
    // The rows shown for ACCOUNT, picked from the search, between FROM and TO.
    Rows show(const QString &account, const QDate &from, const QDate &to)
    {
        qobject_cast<QDateEdit *>(test::named(screen, "From Date"))->setDate(from);
        qobject_cast<QDateEdit *>(test::named(screen, "To Date"))->setDate(to);
        field(screen, "Account Name")->clear();
        test::type(screen, "Account Name", account);
        Grid *accounts = test::grid(screen, "account search grid");
        accounts->setCurrentCell(1, 0);
        accounts->setFocus();
        QTest::keyClick(accounts, Qt::Key_Return);
        Grid *ledger = test::grid(screen, "ledger grid");
        Rows rows;
        for (int r = 1, n = ledger->rows(); r < n; ++r)
            rows << QStringList{ledger->text(r, 1), ledger->text(r, 0)};
        std::sort(rows.begin(), rows.end()); // the query asks for no order
        return rows;
    }
};

} // namespace

class AccountsTest : public QObject {
    Q_OBJECT
private slots:
    void theFirstReceiptIsNumberOneAndItsBalanceItsAmount()
    {
        ReceiptDesk d;
        d.openScreen();
        QCOMPARE(field(d.screen, "Receipt No")->text(), QStringLiteral("1"));
        QCOMPARE(qobject_cast<QLabel *>(test::named(d.screen, "DATE"))->text(), QStringLiteral("11/23/2026"));
        d.receive("RAM STORES", "CASH ACCOUNT", "250");
        QCOMPARE(d.shop.dialogs.shown, (QStringList{"balance counted", "Item Added successfully"}));
        QCOMPARE(d.shop.rows("select refno,dat,ac,credit,accnm,type,balance from ledger"),
                 (Rows{{"1", "11/23/2026", "RAM STORES", "250", "CASH ACCOUNT", "Receipt", "250"}}));
        QCOMPARE(field(d.screen, "Receipt No")->text(), QStringLiteral("2"));
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("250"));
        Grid *list = test::grid(d.screen, "receipt list");
        QCOMPARE((QStringList{list->text(0, 0), list->text(0, 1), list->text(0, 2), list->text(0, 3)}),
                 (QStringList{"refno", "Date1", "Name_of_Account", "Amount"}));
        QCOMPARE(list->text(1, 2), QStringLiteral("RAM STORES"));
    }

    void theBalanceStaysPositiveAndNumbersRunPerType()
    {
        ReceiptDesk d;
        d.shop.exec("insert into ledger(refno,ac,debit,type) values(1,'RAM STORES','400','payment')");
        d.shop.exec("insert into ledger(refno,ac,debit,type) values(2,'RAM STORES','100','payment')");
        d.openScreen();
        QCOMPARE(field(d.screen, "Receipt No")->text(), QStringLiteral("1"));
        d.receive("RAM STORES", "CASH ACCOUNT", "120.5");
        QCOMPARE(d.shop.rows("select refno,balance from ledger where type='receipt'"), (Rows{{"1", "379.5"}}));
        d.receive("RAM STORES", "CASH ACCOUNT", "600");
        QCOMPARE(d.shop.rows("select refno,balance from ledger where type='receipt' order by refno"), (Rows{{"1", "379.5"}, {"2", "220.5"}}));
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("720.5"));
        QCOMPARE(d.shop.rows("select refno,balance from ledger where type='payment' order by refno"), (Rows{{"1", ""}, {"2", ""}}));
    }

    void theListIsKeyedByTheReceivingAccount()
    {
        ReceiptDesk d;
        d.openScreen();
        d.receive("RAM STORES", "CASH ACCOUNT", "10");
        d.receive("RAM STORES", "", "20");
        d.receive("RAM STORES", "CASH ACCOUNT", "30");
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("40"));
        d.receive("OTHER", "", "5");
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("25"));
        QCOMPARE(test::grid(d.screen, "receipt list")->rows(), 3);
    }

    void anEmptyOrWordyAmountIsStoredAsTyped()
    {
        ReceiptDesk d;
        d.openScreen();
        d.receive("RAM STORES", "NOBODY", "");
        d.receive("RAM STORES", "NOBODY", "ten");
        QCOMPARE(d.shop.rows("select refno,credit from ledger order by refno"), (Rows{{"1", ""}, {"2", "ten"}}));
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("0"));
        QVERIFY(d.shop.unhandledErrors.isEmpty());
    }

    void theTwoSearchListsBehaveDifferently()
    {
        ReceiptDesk d;
        d.shop.exec("insert into ledger(refno,dat,ac,credit,accnm,type) values(7,'11/01/2026','X','15','CASH ACCOUNT','receipt')");
        d.openScreen();
        test::type(d.screen, "Account", "ra");
        Grid *a = test::grid(d.screen, "account search grid A");
        QVERIFY(!a->isHidden());
        test::press(d.screen, "Account", Qt::Key_Escape);
        QVERIFY(!a->isHidden()); // only a choice closes it
        test::clickCell(a, 1, 0);
        QCOMPARE(field(d.screen, "Account")->text(), QStringLiteral("RAM STORES"));
        QVERIFY(a->isHidden());

        test::type(d.screen, "Name Of Account", "CA");
        Grid *b = test::grid(d.screen, "account search grid B");
        QVERIFY(!b->isHidden());
        QTest::keyClick(field(d.screen, "Name Of Account"), Qt::Key_Down);
        QTest::keyClick(b, Qt::Key_Return);
        QCOMPARE(field(d.screen, "Name Of Account")->text(), QStringLiteral("CASH ACCOUNT"));
        // Enter in list B lists from the receipt view, headed "receipt".
        Grid *list = test::grid(d.screen, "receipt list");
        QCOMPARE(list->text(0, 0), QStringLiteral("receipt"));
        QCOMPARE(list->text(1, 0), QStringLiteral("7"));
        QCOMPARE(field(d.screen, "Total Amount")->text(), QStringLiteral("15"));
    }

    void aLedgerShowsTheExactAccountWithinTheSpan()
    {
        LedgerDesk d;
        QCOMPARE(qobject_cast<QDateEdit *>(test::named(d.screen, "From Date"))->date(), QDate(2026, 11, 23));
        QCOMPARE(d.show("RAM", QDate(2024, 1, 1), QDate(2024, 2, 28)),
                 (Rows{{"1", "01/15/2024"}, {"2", "01/15/2023"}, {"3", "02/10/2024"}}));
        QCOMPARE(test::grid(d.screen, "ledger grid")->text(0, 4), QStringLiteral("balance"));
        QVERIFY(test::grid(d.screen, "account search grid")->isHidden());
    }

    void spansAreComparedAsMonthFirstTexts()
    {
        LedgerDesk d;
        // January 2024 also brings January of other years.
        QCOMPARE(d.show("RAM", QDate(2024, 1, 1), QDate(2024, 1, 31)), (Rows{{"1", "01/15/2024"}, {"2", "01/15/2023"}}));
        // Across a year end nothing.
        QCOMPARE(d.show("RAM", QDate(2023, 12, 1), QDate(2024, 1, 31)), Rows{});
        // From later than To nothing.
        QCOMPARE(d.show("RAM", QDate(2024, 3, 1), QDate(2024, 2, 1)), Rows{});
        // A span without rows: headings only.
        QCOMPARE(d.show("RAM", QDate(2024, 6, 1), QDate(2024, 6, 30)), Rows{});
        QCOMPARE(test::grid(d.screen, "ledger grid")->text(0, 0), QStringLiteral("dat"));
    }

    void aStoredDateThatIsNotADateFailsTheView()
    {
        LedgerDesk d;
        d.shop.exec("update ledger set dat='SOMEDAY' where refno=4");
        d.show("RAM", QDate(2024, 1, 1), QDate(2024, 1, 31));
        QCOMPARE(d.shop.unhandledErrors, QStringList{"Data type mismatch in criteria expression."});
    }
};

VANTREL_TEST_MAIN(AccountsTest)
#include "test_accounts.moc"
