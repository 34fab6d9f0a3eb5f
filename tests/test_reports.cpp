// Day books, date-wise and party-wise registers and the stock enquiry, through their screens.
#include "purchase/purchasescreen.h"
#include "reports/daybookscreen.h"
#include "reports/partyregisterscreen.h"
#include "reports/registerscreen.h"
#include "reports/stockscreen.h"
#include "sales/salesscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QDateEdit>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>

using namespace vantrel;
using test::field;
using test::Rows;

namespace {

Rows gridRows(Grid *grid, int firstCol = 0)
{
    Rows rows;
    for (int r = 1, n = grid->rows(); r < n; ++r) {
        QStringList row;
        for (int c = firstCol; c < grid->cols(); ++c)
            row << grid->text(r, c);
        rows << row;
    }
    std::sort(rows.begin(), rows.end()); // the queries ask for no order
    return rows;
}

QString printed(test::Desk &d)
{
    QFile file(d.shop.directory() + "/LPT1");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("(no printout)");
}

void setSpan(Screen *screen, const QString &from, const QString &to, const QDate &start, const QDate &end)
{
    qobject_cast<QDateEdit *>(test::named(screen, from))->setDate(start);
    qobject_cast<QDateEdit *>(test::named(screen, to))->setDate(end);
}

struct RegisterDesk : test::Desk {
    RegisterDesk()
    {
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('1','11/23/2026','RAM','C','100')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('2','11/5/2026','SHAH','D','50.5')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('3','11/10/2025','RAM','C','7')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('4','12/30/2025','RAM','C','9')");
        shop.exec("insert into purchasemain(pono,dat,party,trans,netamt) values('8','11/23/2026','RAM','D','300')");
    }
};

} // namespace

class ReportsTest : public QObject {
    Q_OBJECT
private slots:
    void aDayBookListsTodaysHeadersByTheirExactDateText()
    {
        test::Desk d;
        auto *book = d.open<DayBookScreen>("db");
        QCOMPARE(book->windowTitle(), QStringLiteral("Sales-Day Book"));
        Grid *grid = test::grid(book, "day book grid");
        QCOMPARE(grid->rows(), 1);
        QCOMPARE(grid->text(0, 1), QStringLiteral("Date"));
        QCOMPARE(grid->text(0, 7), QStringLiteral("gd"));
        QCOMPARE(field(book, "Total (Rs.)")->text(), QStringLiteral("0"));

        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt,gd) values('1','11/23/2026','RAM','C','100','90')");
        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('2','11/23/2026','SHAH','D','25.5')");
        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('3','2026-11-23','OTHER','C','1000')");
        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('4','11/22/2026','OLD','C','1')");
        // Coming back to the front reads again.
        d.open<Screen>("sale");
        d.open<Screen>("db");
        QCOMPARE(gridRows(grid), (Rows{{"1", "11/23/2026", "RAM", "C", "", "", "100", "90"}, {"2", "11/23/2026", "SHAH", "D", "", "", "25.5", ""}}));
        QCOMPARE(field(book, "Total (Rs.)")->text(), QStringLiteral("125.5"));

        auto *purchases = d.open<DayBookScreen>("pdb");
        QCOMPARE(purchases->windowTitle(), QStringLiteral("Purchase Day Book"));
        QCOMPARE(test::grid(purchases, "day book grid")->text(0, 0), QStringLiteral("pono"));
        QCOMPARE(field(purchases, "Total (Rs.)")->text(), QStringLiteral("0"));
    }

    void aRegisterListsASpanOfMonthFirstTexts()
    {
        RegisterDesk d;
        auto *reg = d.open<RegisterScreen>("dwsrpt");
        Grid *grid = test::grid(reg, "register grid");
        setSpan(reg, "From", "To", QDate(2026, 11, 1), QDate(2026, 11, 30));
        test::click(reg, "&Show");
        QCOMPARE(grid->text(0, 0), QString());
        QCOMPARE(grid->text(0, 1), QStringLiteral("invoice"));
        QCOMPARE(gridRows(grid, 1), (Rows{{"1", "11/23/2026", "RAM", "C", "100"}, {"2", "11/5/2026", "SHAH", "D", "50.5"}, {"3", "11/10/2025", "RAM", "C", "7"}}));
        QCOMPARE(field(reg, "Total (Rs.)")->text(), QStringLiteral("157.5"));

        setSpan(reg, "From", "To", QDate(2025, 12, 1), QDate(2026, 1, 31));
        test::click(reg, "&Show");
        QCOMPARE(gridRows(grid, 1), Rows{});
        QCOMPARE(field(reg, "Total (Rs.)")->text(), QStringLiteral("0"));
    }

    void anEmptyRegisterPrintsItsFrame()
    {
        RegisterDesk d;
        auto *reg = d.open<RegisterScreen>("dtprpt");
        setSpan(reg, "From", "To", QDate(2026, 1, 1), QDate(2026, 1, 2));
        test::click(reg, "&Show");
        test::click(reg, "Print");
        QCOMPARE(printed(d), QStringLiteral("               COMPANY NAME\r\n\r\n"
                                            "               ADDRESS\r\n\r\n"
                                            "==============================================\r\n"
                                            "Datewise Purchase Register\r\n"
                                            "From 1/1/2026   To 1/2/2026\r\n"
                                            "==============================================\r\n"
                                            "pono   Date     party       trans  netamt\r\n"
                                            "----------------------------------------------\r\n"
                                            "----------------------------------------------\r\n"
                                            "Total (Rs.)                            0\r\n"
                                            "==============================================\r\n"));
        QCOMPARE(test::lastPrinted(d.window), QStringLiteral("Printed Datewise Purchase Register 1/1/2026 to 1/2/2026: 13 lines"));
    }

    void printedCellsAreCutAndTheAmountRightJustified()
    {
        RegisterDesk d;
        d.shop.exec("delete from salesmain");
        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('123456','11/23/2026','SIDDHIVINAYAK MEDICOS','D','12345678')");
        d.shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('7','11/22/2026','RAM','C','37.5')");
        auto *reg = d.open<RegisterScreen>("dwsrpt");
        setSpan(reg, "From", "To", QDate(2026, 11, 22), QDate(2026, 11, 23));
        test::click(reg, "&Show");
        test::click(reg, "Print");
        const QStringList lines = printed(d).split("\r\n");
        QCOMPARE(lines[5], QStringLiteral("Datewise Sales Register"));
        QCOMPARE(lines[6], QStringLiteral("From 11/22/2026   To 11/23/2026"));
        QCOMPARE(lines[8], QStringLiteral("invoice   Date     party       trans  netamt"));
        const QStringList rows = lines.mid(10, 2);
        QVERIFY2(rows.contains(QStringLiteral("  12345 11/23/2026 SIDDHIVINAYAK M D 1234567")), qPrintable(rows.join('|')));
        QVERIFY2(rows.contains(QStringLiteral("  7     11/22/2026 RAM             C    37.5")), qPrintable(rows.join('|')));
        QCOMPARE(lines[13], QStringLiteral("Total (Rs.)                            12345715.5"));
    }

    void aClickedCellGoesToTheOpenInvoiceScreen()
    {
        RegisterDesk d;
        auto *sales = d.open<SalesScreen>("sale");
        auto *reg = d.open<RegisterScreen>("dwsrpt");
        setSpan(reg, "From", "To", QDate(2026, 11, 23), QDate(2026, 11, 23));
        test::click(reg, "&Show");
        Grid *grid = test::grid(reg, "register grid");
        test::clickCell(grid, 1, 4);
        QCOMPARE(field(sales, "Invoice No :")->text(), QStringLiteral("C"));
        QCOMPARE(field(sales, "C/D")->text(), QStringLiteral("RAM"));
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Enter C/D only"});
        test::clickCell(grid, 1, 1);
        QCOMPARE(field(sales, "Invoice No :")->text(), QStringLiteral("1"));
        QCOMPARE(field(sales, "C/D")->text(), QString());
        QCOMPARE(d.window.mdiArea()->activeSubWindow()->widget(), static_cast<QWidget *>(reg));

        auto *purchase = d.open<PurchaseScreen>("pur");
        auto *preg = d.open<RegisterScreen>("dtprpt");
        setSpan(preg, "From", "To", QDate(2026, 11, 23), QDate(2026, 11, 23));
        test::click(preg, "&Show");
        test::clickCell(test::grid(preg, "register grid"), 1, 5);
        QCOMPARE(field(purchase, "Purchse Order No :")->text(), QStringLiteral("300"));
        QCOMPARE(field(purchase, "C/D")->text(), QStringLiteral("D"));
    }

    void aPartyRegisterFiltersByPartyAndPrintsIt()
    {
        RegisterDesk d;
        d.shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM')");
        auto *reg = d.open<PartyRegisterScreen>("prsale");
        test::type(reg, "Party:", "ra");
        Grid *parties = test::grid(reg, "party search grid");
        QVERIFY(!parties->isHidden());
        test::clickCell(parties, 1, 0);
        QCOMPARE(field(reg, "Party:")->text(), QStringLiteral("RAM"));
        QVERIFY(parties->isHidden());
        setSpan(reg, "From Date", "To Date", QDate(2025, 11, 1), QDate(2025, 12, 31));
        field(reg, "Party:")->setText("ram");
        test::click(reg, "&Show");
        QCOMPARE(gridRows(test::grid(reg, "register grid"), 1),
                 (Rows{{"1", "11/23/2026", "RAM", "C", "100"}, {"3", "11/10/2025", "RAM", "C", "7"}, {"4", "12/30/2025", "RAM", "C", "9"}}));
        QCOMPARE(field(reg, "Total (Rs.)")->text(), QStringLiteral("116"));
        test::click(reg, "Print");
        const QStringList lines = printed(d).split("\r\n");
        QCOMPARE(lines.mid(5, 3), (QStringList{"Partywise Sales Register", "Party: ram", "From Date 11/1/2025   To Date 12/31/2025"}));

        // Each activation sets the span back to today.
        d.open<Screen>("sale");
        d.open<Screen>("prsale");
        QCOMPARE(qobject_cast<QDateEdit *>(test::named(reg, "From Date"))->date(), QDate(2026, 11, 23));
    }

    void escapeInTheSalesPartyHidesTheRegisterForGood()
    {
        RegisterDesk d;
        d.shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM')");
        auto *reg = d.open<PartyRegisterScreen>("prsale");
        test::type(reg, "Party:", "R");
        test::press(reg, "Party:", Qt::Key_Escape);
        Grid *grid = test::grid(reg, "register grid");
        QVERIFY(grid->isHidden());
        QVERIFY(!test::grid(reg, "party search grid")->isHidden());
        field(reg, "Party:")->setText("RAM");
        test::click(reg, "&Show");
        QVERIFY(grid->isHidden());
        QCOMPARE(grid->rows(), 2);

        auto *purchases = d.open<PartyRegisterScreen>("prpur");
        test::type(purchases, "Party:", "R");
        test::press(purchases, "Party:", Qt::Key_Escape);
        QVERIFY(!test::grid(purchases, "register grid")->isHidden());
        field(purchases, "Party:")->setText("RAM");
        test::click(purchases, "&Show");
        QCOMPARE(gridRows(test::grid(purchases, "register grid"), 1), (Rows{{"8", "11/23/2026", "RAM", "D", "300"}}));
    }

    // The purchase side reads the purchase headers only: the day book today's, the register its
    // span's, the party-wise register one party's, each with its own total and printed title.
    void thePurchaseReportsReadThePurchases()
    {
        RegisterDesk d;
        d.shop.exec("insert into purchasemain(pono,dat,party,trans,netamt) values('9','11/22/2026','RAM','C','40'),"
                    "('10','11/23/2026','RAMESH','C','60'),('11','12/2/2026','RAM','C','5')");
        auto *book = d.open<DayBookScreen>("pdb");
        QCOMPARE(gridRows(test::grid(book, "day book grid")), (Rows{{"10", "11/23/2026", "RAMESH", "C", "60"}, {"8", "11/23/2026", "RAM", "D", "300"}}));
        QCOMPARE(field(book, "Total (Rs.)")->text(), QStringLiteral("360"));

        auto *reg = d.open<RegisterScreen>("dtprpt");
        setSpan(reg, "From", "To", QDate(2026, 11, 1), QDate(2026, 11, 30));
        test::click(reg, "&Show");
        QCOMPARE(gridRows(test::grid(reg, "register grid"), 1),
                 (Rows{{"10", "11/23/2026", "RAMESH", "C", "60"}, {"8", "11/23/2026", "RAM", "D", "300"}, {"9", "11/22/2026", "RAM", "C", "40"}}));
        QCOMPARE(field(reg, "Total (Rs.)")->text(), QStringLiteral("400"));
        test::click(reg, "Print");
        QCOMPARE(printed(d).split("\r\n").at(5), QStringLiteral("Datewise Purchase Register"));

        auto *byParty = d.open<PartyRegisterScreen>("prpur");
        setSpan(byParty, "From Date", "To Date", QDate(2026, 11, 1), QDate(2026, 11, 30));
        field(byParty, "Party:")->setText("RAM");
        test::click(byParty, "&Show");
        QCOMPARE(gridRows(test::grid(byParty, "register grid"), 1), (Rows{{"8", "11/23/2026", "RAM", "D", "300"}, {"9", "11/22/2026", "RAM", "C", "40"}}));
        QCOMPARE(field(byParty, "Total (Rs.)")->text(), QStringLiteral("340"));
        test::click(byParty, "Print");
        QCOMPARE(printed(d).split("\r\n").mid(5, 2), (QStringList{"Partywise Purchase Register", "Party: RAM"}));
    }

    void stockShowsAProductsFigures()
    {
        test::Desk d;
        d.shop.exec("insert into companymaster(companyname,cmpid) values('CIPLA LTD','CIP')");
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,model) values('CIP','1','ABACAVIR','111')");
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,model) values('CIP','2','ABCIXIMAB','222')");
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,model) values('CIP','3','ZINC','333')");
        d.shop.exec("insert into stock(cmpid,psrno,prodname,model,totqty,rate,stk) values('CIP','1','ABACAVIR','111','20','9.5','20')");
        d.shop.exec("insert into stock(cmpid,psrno,prodname,model,totqty,rate,stk) values('CIP','3','ZINC','333','5','2','5')");
        auto *stock = d.open<StockScreen>("stksum");
        test::type(stock, "Product Name", "ab");
        QCOMPARE(field(stock, "Product Name")->text(), QStringLiteral("AB"));
        Grid *products = test::grid(stock, "product grid");
        QCOMPARE(products->rows(), 3);

        test::clickCell(products, 0, 0);
        test::clickCell(products, 1, 2);
        QCOMPARE(d.shop.dialogs.shown, (QStringList{" Wrong selection", "Wrong Selection"}));

        // Bought, never sold: total and available alike, the used field empty.
        test::clickCell(products, 1, 0);
        QCOMPARE(field(stock, "Product Id")->text(), QStringLiteral("1"));
        QCOMPARE(field(stock, "Company Name")->text(), QStringLiteral("CIPLA LTD"));
        QCOMPARE(field(stock, "company code")->text(), QStringLiteral("CIP"));
        QCOMPARE(field(stock, "Total Stock:")->text(), QStringLiteral("20"));
        QCOMPARE(field(stock, "Used Stock:")->text(), QString());
        QCOMPARE(field(stock, "Available Stock:")->text(), QStringLiteral("20"));
        Grid *codes = test::grid(stock, "item-code grid");
        QCOMPARE(codes->rows(), 2);
        test::clickCell(codes, 1, 0);
        QCOMPARE(field(stock, "Item Code")->text(), QStringLiteral("111"));
        QCOMPARE(field(stock, "MRP")->text(), QStringLiteral("9.5"));

        // Never purchased: empty figures and no item codes.
        field(stock, "Product Name")->clear();
        test::type(stock, "Product Name", "ABC");
        test::clickCell(products, 1, 1);
        QCOMPARE(field(stock, "Product Name")->text(), QStringLiteral("ABCIXIMAB"));
        for (const char *label : {"Total Stock:", "Used Stock:", "Available Stock:"})
            QVERIFY2(field(stock, label)->text().isEmpty(), label);
        QCOMPARE(codes->rows(), 1);
    }

    void enterOnAStockProductTakesItsNameOnly()
    {
        test::Desk d;
        d.shop.exec("insert into companymaster(companyname,cmpid) values('CIPLA LTD','CIP')");
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname) values('CIP','1','ABACAVIR')");
        auto *stock = d.open<StockScreen>("stksum");
        test::type(stock, "Product Name", "A");
        QTest::keyClick(field(stock, "Product Name"), Qt::Key_Down);
        QTest::keyClick(test::grid(stock, "product grid"), Qt::Key_Return);
        QCOMPARE(field(stock, "Product Name")->text(), QStringLiteral("ABACAVIR"));
        QVERIFY(field(stock, "Product Id")->text().isEmpty());
        QVERIFY(test::grid(stock, "product grid")->isHidden());
    }
};

VANTREL_TEST_MAIN(ReportsTest)
#include "test_reports.moc"
