// Whatever the operator types reaches the file exactly as typed, and nothing typed can break a
// numbering series or a figure: each case is keyed on the real screens of a shop holding more
// than the one row it is about, and checked in the file.
#include "accounts/receiptscreen.h"
#include "masters/companymasterscreen.h"
#include "masters/partymasterscreen.h"
#include "masters/productmasterscreen.h"
#include "reports/daybookscreen.h"
#include "reports/partyregisterscreen.h"
#include "sales/salesscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QHeaderView>

using namespace vantrel;
using test::field;
using test::Rows;

namespace {

const QString Mismatch = QStringLiteral("Data type mismatch in criteria expression.");

// A shop with a product in stock, two parties, and earlier documents and receipts in both modes.
struct ShopDesk : test::Desk {
    ShopDesk()
    {
        shop.exec("insert into companymaster(companyname,cmpid) values('CIPLA LTD','CIP')");
        shop.exec("insert into productmaster(cmpid,mfgname,psrno,prodname,model,rate) values('CIP','CIPLA LTD','1','PANADOL','8901','12.5')");
        shop.exec("insert into stock(cmpid,pono,psrno,prodname,model,totqty,usedqty,stk) values('CIP','1','1','PANADOL','8901','10','0','10')");
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM STORES')");
        shop.exec("insert into suppliermaster(ID,suppname) values('2','SRI NEW RIGHT JOIN ST STORE ON MAIN')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('4','11/23/2026','RAM STORES','C','10')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('2','11/23/2026','RAM STORES','D','20')");
        shop.exec("insert into sales(invoice,prodname,party,qty,amount,trans,status) values('2','PANADOL','RAM STORES','1','20','D','u')");
        shop.exec("insert into ledger(refno,dat,ac,credit,accnm,type,balance) values('1','11/20/2026','RAM STORES','50','CASH','receipt','50')");
        shop.exec("insert into ledger(refno,dat,ac,credit,accnm,type,balance) values('2','11/21/2026','RAM STORES','25','CASH','receipt','75')");
    }

    QStringList errors() const { return shop.unhandledErrors; }

    // A credit sale of one PANADOL to PARTY, typed into the party field.
    SalesScreen *sellTo(const QString &party, const QString &qty = "1")
    {
        auto *sales = open<SalesScreen>("sale");
        test::type(sales, "C/D", "D");
        field(sales, "Party:")->setText(party);
        test::type(sales, "item code", "8901");
        test::press(sales, "item code", Qt::Key_Return);
        test::type(sales, "Qty", qty);
        test::click(sales, "&Add");
        return sales;
    }

    void saveReceipt(const QString &number, const QString &amount)
    {
        auto *receipt = open<ReceiptScreen>("rcpt");
        field(receipt, "Receipt No")->setText(number);
        field(receipt, "Account")->setText("RAM STORES");
        field(receipt, "Name Of Account")->setText("CASH");
        field(receipt, "Amount")->setText(amount);
        test::click(receipt, "&Save");
    }

    // The width in twips of the column of GRID headed HEADING.
    static int widthTwips(Grid *grid, const QString &heading)
    {
        for (int col = 0; col < grid->cols(); ++col)
            if (grid->text(0, col) == heading)
                return grid->columnWidth(col) * 1440 / grid->logicalDpiX();
        return -1;
    }
};

} // namespace

class InputTest : public QObject {
    Q_OBJECT
private slots:
    void aJoinTypedIntoANameIsStoredAsTyped()
    {
        ShopDesk d;
        const QString party = QStringLiteral("SRI NEW RIGHT JOIN ST STORE ON MAIN");
        d.sellTo(party);
        QCOMPARE(d.errors(), QStringList());
        QCOMPARE(d.shop.rows("select party from sales where invoice='3'"), (Rows{{party}}));
        QCOMPARE(d.shop.rows("select party from salesmain where invoice=3 and trans='D'"), (Rows{{party}}));
        QCOMPARE(d.shop.rows("select ac from ledger where type='payment'"), (Rows{{party}}));
    }

    void anEmptyReceiptNumberFailsAndTheSeriesGoesOn()
    {
        ShopDesk d;
        d.saveReceipt("", "30");
        QCOMPARE(d.errors(), QStringList{Mismatch});
        QCOMPARE(d.shop.rows("select count(*) from ledger"), (Rows{{"2"}}));

        // The next receipt is still numbered above the stored ones and balances only itself.
        ShopDesk next;
        auto *receipt = next.open<ReceiptScreen>("rcpt");
        QCOMPARE(field(receipt, "Receipt No")->text(), QStringLiteral("3"));
    }

    void aReceiptNumberBeyondSixteenBitsOverflows()
    {
        ShopDesk d;
        d.saveReceipt("40000", "30");
        QCOMPARE(d.errors(), QStringList{"Overflow"});
        QCOMPARE(d.shop.rows("select refno from ledger order by refno"), (Rows{{"1"}, {"2"}}));
        d.shop.unhandledErrors.clear();
        d.saveReceipt("-32768", "30");
        QCOMPARE(d.errors(), QStringList());
        QCOMPARE(d.shop.rows("select refno,credit from ledger where refno<0"), (Rows{{"-32768", "30"}}));
    }

    void aWordInTheInvoiceNumberIsRefusedBeforeTheHeader()
    {
        ShopDesk d;
        auto *sales = d.open<SalesScreen>("sale");
        test::type(sales, "C/D", "D");
        field(sales, "Party:")->setText("RAM STORES");
        // "9-1" is a valid expression in the header's query, and a text in its insert.
        field(sales, "Invoice No :")->setText("9-1");
        test::type(sales, "item code", "8901");
        test::press(sales, "item code", Qt::Key_Return);
        test::type(sales, "Qty", "1");
        test::click(sales, "&Add");
        QCOMPARE(d.errors(), QStringList{Mismatch});
        QCOMPARE(d.shop.rows("select invoice,typeof(invoice) from salesmain order by invoice"),
                 (Rows{{"2", "real"}, {"4", "real"}}));
        // The series of mode D goes on from its highest number.
        d.shop.unhandledErrors.clear();
        field(sales, "C/D")->clear();
        test::type(sales, "C/D", "D");
        QCOMPARE(field(sales, "Invoice No :")->text(), QStringLiteral("3"));
    }

    void emptyMasterNumbersAreRefused()
    {
        ShopDesk d;
        auto *parties = d.open<PartyMasterScreen>("sm");
        QCOMPARE(field(parties, "Party ID")->text(), QStringLiteral("3"));
        field(parties, "Party ID")->clear();
        test::type(parties, "Party Name :", "NEW PARTY");
        test::click(parties, "&Save");
        QCOMPARE(d.errors(), QStringList{Mismatch});
        QCOMPARE(d.shop.rows("select count(*) from suppliermaster where typeof(ID)<>'real'"), (Rows{{"0"}}));

        d.shop.unhandledErrors.clear();
        auto *products = d.open<ProductMasterScreen>("pm");
        test::click(products, "&Add");
        test::type(products, "search", "CIP");
        test::clickCell(test::grid(products, "company list"), 1, 0);
        QCOMPARE(field(products, "Product Sr. No")->text(), QStringLiteral("2"));
        field(products, "Product Sr. No")->setText("2A");
        test::type(products, "Product Name", "CROCIN");
        test::type(products, "Item Code", "8911");
        test::click(products, "&Save");
        QCOMPARE(d.errors(), QStringList{Mismatch});
        QCOMPARE(d.shop.rows("select prodname,psrno from productmaster"), (Rows{{"PANADOL", "1"}}));
    }

    void aHugeQuantityOverflowsBeforeItsStepWrites()
    {
        ShopDesk d;
        auto *sales = d.sellTo("RAM STORES", "1E39");
        // The amount (12.5 x 1E39) still fits a double; the stock figure does not fit a single.
        QCOMPARE(d.errors(), QStringList{"Overflow"});
        QCOMPARE(d.shop.rows("select stk,usedqty from stock"), (Rows{{"10", "0"}}));
        QCOMPARE(d.shop.rows("select count(*) from sales where invoice='3'"), (Rows{{"1"}}));

        // A product of quantity and rate beyond a double is refused at the amount.
        d.shop.unhandledErrors.clear();
        test::type(sales, "item code", "8901");
        test::press(sales, "item code", Qt::Key_Return);
        field(sales, "Rate")->setText("1E300");
        test::type(sales, "Qty", "1E10");
        QCOMPARE(d.errors().value(0), QStringLiteral("Overflow"));
        QVERIFY(!field(sales, "Amount")->text().contains("inf", Qt::CaseInsensitive));
        const Rows figures = d.shop.rows("select qty||amount from sales union all select stk||usedqty from stock "
                                         "union all select debit||balance from ledger where type='payment'");
        for (const QStringList &row : figures)
            QVERIFY2(!row.join(QString()).contains("inf", Qt::CaseInsensitive), qPrintable(row.join(',')));
    }

    void aSecondStatementIsRefusedWithItsReason()
    {
        ShopDesk d;
        auto *company = d.open<CompanyMasterScreen>("cmpmst");
        test::type(company, "Company Code", "x'; delete from sales; --");
        test::click(company, "Save");
        QCOMPARE(d.errors(), QStringList{"Unable to execute multiple statements at a time"});
        QCOMPARE(d.shop.rows("select count(*) from sales"), (Rows{{"1"}}));
    }

    void widthsGoToTheColumnsTheyMean()
    {
        ShopDesk d;
        d.saveReceipt("3", "5");
        Grid *receipts = test::grid(d.window.screen("rcpt"), "receipt list");
        QCOMPARE(ShopDesk::widthTwips(receipts, "Name_of_Account"), 3000);
        QVERIFY(ShopDesk::widthTwips(receipts, "Amount") != 3000);

        auto *dayBook = d.open<DayBookScreen>("db");
        Grid *headers = test::grid(dayBook, "day book grid");
        QCOMPARE(ShopDesk::widthTwips(headers, "party"), 3000);
        QVERIFY(ShopDesk::widthTwips(headers, "trans") != 3000);

        auto *register_ = d.open<PartyRegisterScreen>("prsale");
        test::type(register_, "Party:", "RAM");
        QCOMPARE(ShopDesk::widthTwips(test::grid(register_, "party search grid"), "suppname"), 3000);
    }
};

VANTREL_TEST_MAIN(InputTest)
#include "test_input.moc"
