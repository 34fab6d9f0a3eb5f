// The Purchase screen driven as the operator drives it, and a full cycle across Purchase and
// Sales through the one stock row of a product.
#include "purchase/purchasescreen.h"
#include "sales/salesscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QFile>

using namespace vantrel;
using test::field;
using test::Rows;

namespace {

struct PurchaseDesk : test::Desk {
    PurchaseScreen *screen;

    PurchaseDesk()
    {
        shop.exec("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP','1','PANADOL','8901','10')");
        shop.exec("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP','2','PARACETAMOL 500 TABLETS','8902','12500')");
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM DISTRIBUTORS')");
        shop.exec("insert into suppliermaster(ID,suppname) values('2','SHAH AGENCIES')");
        screen = open<PurchaseScreen>("pur");
    }
    void type(const QString &label, const QString &text) { test::type(screen, label, text); }
    QString text(const QString &label) { return field(screen, label)->text(); }
    Grid *grid(const QString &role) { return test::grid(screen, role); }

    void start(const QString &mode, const QString &party)
    {
        field(screen, "C/D")->clear();
        type("C/D", mode);
        type("Party:", party);
        QTest::keyClick(field(screen, "Party:"), Qt::Key_Down);
        QTest::keyClick(grid("party grid"), Qt::Key_Return);
    }
    void addLine(const QString &code, const QString &qty, const QString &rate = {})
    {
        type("Item code", code);
        test::press(screen, "Item code", Qt::Key_Return);
        if (!rate.isEmpty())
            field(screen, "Rate")->setText(rate);
        type("Qty", qty);
        test::click(screen, "&Add");
    }
    // Vouchers numbered 1 in both modes and a second credit one, a product without stock yet.
    void fillTheShop()
    {
        shop.exec("insert into productmaster(cmpid,psrno,prodname,model,rate) values('CIP','3','ZINCOVIT','8903','40')");
        shop.exec("insert into purchasemain(pono,dat,party,trans,netamt) values('1','11/20/2026','RAM DISTRIBUTORS','C','40'),"
                  "('1','11/20/2026','RAM DISTRIBUTORS','D','95'),('2','11/21/2026','SHAH AGENCIES','D','50')");
        shop.exec("insert into purchase(pono,prodname,party,qty,rate,amount,trans,status) values"
                  "('1','PARACETAMOL 500 TABLETS','RAM DISTRIBUTORS','4','10','40','C','u'),('1','PANADOL','RAM DISTRIBUTORS','10','9.5','95','D','u'),"
                  "('2','PANADOL','SHAH AGENCIES','10','5','50','D','u')");
        shop.exec("insert into stock(cmpid,pono,psrno,prodname,model,totqty,usedqty,stk) values"
                  "('CIP','1','1','PANADOL','8901','20','5','15'),('CIP','1','2','PARACETAMOL 500 TABLETS','8902','4','0','4')");
    }
    void reopen(const QString &mode, const QString &number)
    {
        field(screen, "C/D")->clear();
        type("C/D", mode);
        field(screen, "Purchse Order No :")->clear();
        type("Purchse Order No :", number);
        test::press(screen, "Purchse Order No :", Qt::Key_Return);
    }
    Rows headers() { return shop.rows("select pono,trans,netamt from purchasemain order by trans,pono"); }
    Rows statuses() { return shop.rows("select pono,trans,prodname,status from purchase order by trans,pono,rowid"); }
    Rows stock() { return shop.rows("select prodname,totqty,usedqty,stk from stock order by prodname"); }

    Rows lot(const QString &product = "PANADOL")
    {
        return shop.rows("select pono,party,totqty,rate,amt,usedqty,stk from stock where prodname='" + product + "'");
    }
};

} // namespace

class PurchaseTest : public QObject {
    Q_OBJECT
private slots:
    void theFirstPurchaseCreatesTheLot()
    {
        PurchaseDesk d;
        QVERIFY(!test::button(d.screen, "&Add")->isEnabled());
        d.start("c", "ra");
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("1"));
        d.addLine("8901", "10", "9.5");
        QCOMPARE(d.shop.dialogs.shown, (QStringList{" stock added successfully", "Party transcation completed"}));
        QCOMPARE(d.lot(), (Rows{{"1", "RAM DISTRIBUTORS", "10", "9.5", "95", "", "10"}}));
        QCOMPARE(d.shop.rows("select cmpid,psrno,pono,prodname,party,model,qty,rate,amount,trans,status from purchase"),
                 (Rows{{"CIP", "1", "1", "PANADOL", "RAM DISTRIBUTORS", "8901", "10", "9.5", "95", "C", "u"}}));
        QCOMPARE(d.shop.rows("select pono,dat,party,trans,netamt from purchasemain"), (Rows{{"1", "11/23/2026", "RAM DISTRIBUTORS", "C", "95"}}));
        QCOMPARE(d.grid("lines grid")->text(0, 0), QStringLiteral("prodname"));
        QCOMPARE(d.text("Total Amount"), QStringLiteral("95"));
        QCOMPARE(QApplication::focusWidget(), field(d.screen, "Product Name:"));
        QCOMPARE(d.grid("product stock grid")->text(1, 1), QStringLiteral("10"));
    }

    void laterPurchasesRaiseTheOneLot()
    {
        PurchaseDesk d;
        d.start("C", "RAM");
        d.addLine("8901", "10", "9.5");
        d.start("D", "SHAH");
        d.addLine("8901", "4", "11");
        QCOMPARE(d.shop.dialogs.shown.mid(2), (QStringList{"Stock Updated Successfully", "Party transcation completed"}));
        QCOMPARE(d.lot(), (Rows{{"1", "RAM DISTRIBUTORS", "14", "9.5", "95", "0", "14"}}));
        QCOMPARE(d.grid("lines grid")->text(0, 0), QStringLiteral("Item"));
        QCOMPARE(d.shop.rows("select pono,trans,netamt from purchasemain order by trans"), (Rows{{"1", "C", "95"}, {"1", "D", "44"}}));
    }

    void aPartlySoldProductBoughtAgain()
    {
        PurchaseDesk d;
        d.shop.exec("insert into stock(cmpid,pono,psrno,prodname,totqty,usedqty,stk) values('CIP','9','1','PANADOL','10','3','7')");
        d.start("C", "RAM");
        d.addLine("8901", "5");
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock"), (Rows{{"15", "3", "12"}}));
    }

    void eachModeHasItsOwnSeries()
    {
        PurchaseDesk d;
        d.shop.exec("insert into purchasemain(pono,trans) values('5','C')");
        d.type("C/D", "d");
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("1"));
        field(d.screen, "C/D")->clear();
        d.type("C/D", "c");
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("6"));
        field(d.screen, "C/D")->clear();
        d.type("C/D", "x");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Enter C/D only"});
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("1"));
    }

    void aSuppliersOpenVoucherComesBackByClickOrEnter()
    {
        PurchaseDesk d;
        d.shop.exec("insert into purchase(cmpid,pono,prodname,party,model,qty,rate,amount,trans,status) values('CIP','4','PANADOL','RAM DISTRIBUTORS','8901','2','10','20','C','u')");
        d.shop.exec("insert into purchasemain(pono,party,trans,netamt) values('4','RAM DISTRIBUTORS','C','20')");
        d.start("C", "RAM");
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("4"));
        QCOMPARE(d.grid("lines grid")->cols(), 4);
        QCOMPARE(d.text("Total Amount"), QStringLiteral("20"));

        d.type("Party:", "");
        test::clickCell(d.grid("party grid"), 1, 0);
        QCOMPARE(d.grid("lines grid")->cols(), 6);
        QCOMPARE(d.grid("lines grid")->text(0, 2), QStringLiteral("model"));

        // A supplier with nothing open leaves the number as it was.
        field(d.screen, "Purchse Order No :")->setText("17");
        field(d.screen, "Party:")->clear();
        d.type("Party:", "SHAH");
        QTest::keyClick(field(d.screen, "Party:"), Qt::Key_Down);
        QTest::keyClick(d.grid("party grid"), Qt::Key_Return);
        QCOMPARE(d.text("Party:"), QStringLiteral("SHAH AGENCIES"));
        QCOMPARE(d.text("Purchse Order No :"), QStringLiteral("17"));
        QCOMPARE(d.text("Total Amount"), QString());
    }

    void endInventoryMarksTheVoucherPaidAndSetsCashMode()
    {
        PurchaseDesk d;
        d.start("D", "RAM");
        d.addLine("8901", "3");
        d.shop.dialogs.shown.clear();
        d.shop.dialogs.answers = {true};
        test::click(d.screen, "&End Inventory");
        QCOMPARE(d.shop.dialogs.shown, (QStringList{"Are You Sure You Want To End Inventory", "Voucher Paid Successfully"}));
        QCOMPARE(d.shop.rows("select status from purchase"), Rows{{"p"}});
        QCOMPARE(d.text("C/D"), QStringLiteral("C"));
        QVERIFY(d.text("Purchse Order No :").isEmpty());
        QVERIFY(d.text("Party:").isEmpty());
        QCOMPARE(d.shop.rows("select totqty,stk from stock"), (Rows{{"3", "3"}}));
    }

    void cancelTakesTheQuantitiesBackOutRounded()
    {
        PurchaseDesk d;
        d.start("C", "RAM");
        d.addLine("8901", "10");
        d.addLine("8902", "2.5");
        d.shop.exec("update stock set totqty='10',stk='10' where prodname='PARACETAMOL 500 TABLETS'");
        // PANADOL was sold meanwhile beyond what this voucher brought.
        d.shop.exec("update stock set usedqty='12',stk='-2' where prodname='PANADOL'");
        d.shop.dialogs.shown.clear();
        d.shop.dialogs.answers = {true};
        test::click(d.screen, "C&ancel");
        QCOMPARE(d.shop.dialogs.shown, (QStringList{"Are You Sure You Want To Cancel Invoice", "Stock Returned Successfully",
                                                    "Stock Returned Successfully", "Invoice Cancelled Successfully"}));
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock where prodname='PANADOL'"), (Rows{{"0", "12", "-12"}}));
        QCOMPARE(d.shop.rows("select totqty,stk from stock where prodname like 'PARA%'"), (Rows{{"8", "8"}}));
        QCOMPARE(d.shop.rows("select count(*) from purchase"), Rows{{"0"}});
        QCOMPARE(d.shop.rows("select count(*) from purchasemain"), Rows{{"0"}});
        QVERIFY(!test::button(d.screen, "C&ancel")->isEnabled());
        QVERIFY(d.text("Total Amount").isEmpty());
    }

    // Among other vouchers and other products' stock, each action on credit voucher 1 changes
    // its own rows only.
    void linesAndSettlingTouchOnlyTheirOwnVoucherAndProduct()
    {
        PurchaseDesk d;
        d.fillTheShop();
        d.reopen("D", "1");
        QCOMPARE(d.text("Total Amount"), QStringLiteral("95"));
        d.addLine("8903", "3", "40");
        d.addLine("8901", "2", "10");
        QCOMPARE(d.headers(), (Rows{{"1", "C", "40"}, {"1", "D", "235"}, {"2", "D", "50"}}));
        QCOMPARE(d.stock(), (Rows{{"PANADOL", "22", "5", "17"}, {"PARACETAMOL 500 TABLETS", "4", "0", "4"}, {"ZINCOVIT", "3", "", "3"}}));
        d.shop.dialogs.answers = {true};
        test::click(d.screen, "&End Inventory");
        QCOMPARE(d.statuses(), (Rows{{"1", "C", "PARACETAMOL 500 TABLETS", "u"}, {"1", "D", "PANADOL", "p"}, {"1", "D", "ZINCOVIT", "p"},
                                     {"1", "D", "PANADOL", "p"}, {"2", "D", "PANADOL", "u"}}));
    }

    void cancelTakesOnlyItsOwnVoucherAndItsOwnProducts()
    {
        PurchaseDesk d;
        d.fillTheShop();
        d.reopen("D", "1");
        d.shop.dialogs.answers = {true};
        test::click(d.screen, "C&ancel");
        QCOMPARE(d.headers(), (Rows{{"1", "C", "40"}, {"2", "D", "50"}}));
        QCOMPARE(d.statuses(), (Rows{{"1", "C", "PARACETAMOL 500 TABLETS", "u"}, {"2", "D", "PANADOL", "u"}}));
        QCOMPARE(d.stock(), (Rows{{"PANADOL", "10", "5", "5"}, {"PARACETAMOL 500 TABLETS", "4", "0", "4"}}));
    }

    // Escape in the party field hides its list; Escape in the number hides the product panel.
    void escapeHidesTheLists()
    {
        PurchaseDesk d;
        d.type("C/D", "C");
        d.type("Party:", "RA");
        QVERIFY(!d.grid("party grid")->isHidden());
        test::press(d.screen, "Party:", Qt::Key_Escape);
        QVERIFY(d.grid("party grid")->isHidden());
        QCOMPARE(d.text("Party:"), QStringLiteral("RA"));

        d.type("Product Name:", "PA");
        QVERIFY(d.grid("product stock grid")->isVisible());
        test::press(d.screen, "Purchse Order No :", Qt::Key_Escape);
        QVERIFY(!d.grid("product stock grid")->isVisible());
        QCOMPARE(d.text("Product Name:"), QStringLiteral("PA"));
    }

    void printWritesTheVoucherLayout()
    {
        PurchaseDesk d;
        d.start("C", "RAM");
        d.addLine("8902", "2");
        d.addLine("8902", "1");
        test::click(d.screen, "&Print");
        QCOMPARE(test::lastPrinted(d.window), QStringLiteral("Printed Purchase order 1: 13 lines"));
        QFile printed(d.shop.directory() + "/LPT1");
        QVERIFY(printed.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(printed.readAll()),
                 QStringLiteral("          COMPANY NAME\r\n"
                                "          ADDRESS\r\n"
                                "=======================================\r\n"
                                "Purchse Order No : 1   Date :11/23/2026\r\n"
                                "Party:   RAM DISTRIBUTORS\r\n"
                                "=======================================\r\n"
                                "Item      qty   rate amount\r\n"
                                "---------------------------------------\r\n"
                                "PARACETAMOL 500 2   1250  25000  \r\n"
                                "PARACETAMOL 500 1   1250  12500  \r\n"
                                "---------------------------------------\r\n"
                                "        Total Amount      37500\r\n"
                                "=======================================\r\n"));
    }

    void buyingSellingAndCancellingBothMoveTheOneStockRow()
    {
        PurchaseDesk d;
        d.start("C", "RAM");
        d.addLine("8901", "10");
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock"), (Rows{{"10", "", "10"}}));

        auto *sales = d.open<SalesScreen>("sale");
        test::type(sales, "C/D", "D");
        test::type(sales, "Party:", "SHAH");
        test::type(sales, "item code", "8901");
        test::press(sales, "item code", Qt::Key_Return);
        test::type(sales, "Qty", "3");
        test::click(sales, "&Add");
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock"), (Rows{{"10", "3", "7"}}));

        d.shop.dialogs.answers = {true};
        test::click(sales, "C&ancel");
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock"), (Rows{{"10", "0", "10"}}));

        // Back on Purchase, the voucher is re-opened by its number, which enables "C&ancel".
        d.window.openScreen("pur");
        QVERIFY(!test::button(d.screen, "C&ancel")->isEnabled());
        field(d.screen, "C/D")->setText("C");
        field(d.screen, "Purchse Order No :")->setText("1");
        test::press(d.screen, "Purchse Order No :", Qt::Key_Return);
        QCOMPARE(d.text("Total Amount"), QStringLiteral("100"));
        d.shop.dialogs.answers = {true};
        test::click(d.screen, "C&ancel");
        QCOMPARE(d.shop.rows("select totqty,usedqty,stk from stock"), (Rows{{"0", "0", "0"}}));
        QCOMPARE(d.shop.rows("select count(*) from purchase"), Rows{{"0"}});
        QCOMPARE(d.shop.rows("select count(*) from sales"), Rows{{"0"}});
    }

    void aTypingKeyInTheProductGridChoosesButArrowsMove()
    {
        PurchaseDesk d;
        d.type("Product Name:", "PA");
        Grid *products = d.grid("product stock grid");
        QTest::keyClick(field(d.screen, "Product Name:"), Qt::Key_Down);
        QTest::keyClick(products, Qt::Key_Down);
        QCOMPARE(d.text("Product Name:"), QStringLiteral("PA"));
        QCOMPARE(products->row(), 2);
        QTest::keyClick(products, Qt::Key_Space);
        QCOMPARE(d.text("Product Name:"), QStringLiteral("PARACETAMOL 500 TABLETS"));
        QCOMPARE(d.text("Rate"), QStringLiteral("12500"));
        QVERIFY(products->parentWidget()->isHidden());
    }
};

VANTREL_TEST_MAIN(PurchaseTest)
#include "test_purchase.moc"
