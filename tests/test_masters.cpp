// The company, product and party masters driven through their screens.
#include "masters/companymasterscreen.h"
#include "masters/partymasterscreen.h"
#include "masters/productmasterscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QComboBox>

using namespace vantrel;
using test::field;
using test::Rows;

namespace {

void fill(QWidget *screen, const QList<QPair<QString, QString>> &values)
{
    for (const auto &[label, text] : values) {
        field(screen, label)->clear();
        test::type(screen, label, text);
    }
}

struct ProductDesk : test::Desk {
    ProductMasterScreen *screen;
    ProductDesk()
    {
        shop.exec("insert into companymaster(companyname,cmpid,shortname) values('CIPLA LTD','CIP','CIPLA')");
        shop.exec("insert into companymaster(companyname,cmpid,shortname) values('SUN PHARMA','SUN','SUN')");
        screen = open<ProductMasterScreen>("pm");
    }
    // "&Add", then the company whose name begins with PREFIX, picked by its code.
    void pickCompany(const QString &prefix)
    {
        test::click(screen, "&Add");
        field(screen, "search")->clear();
        test::type(screen, "search", prefix);
        test::clickCell(test::grid(screen, "company list"), 1, 0);
    }
    void saveProduct(const QString &name, const QString &code)
    {
        fill(screen, {{"Product Name", name}, {"Item Code", code}, {"MRP", "25"}, {"Sales Rate", "22.5"}});
        test::click(screen, "&Save");
    }
};

} // namespace

class MastersTest : public QObject {
    Q_OBJECT
private slots:
    void aCompanyCodeIsTakenOnce()
    {
        test::Desk d;
        auto *screen = d.open<CompanyMasterScreen>("cmpmst");
        QCOMPARE(screen->windowTitle(), QStringLiteral("Company Master"));
        fill(screen, {{"Company Code", "cip"}, {"Company Name", "cipla ltd"}, {"Short Name", "cipla"}, {"Address", "mumbai"}, {"Pin", "400001"}});
        test::click(screen, "Save");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Company Added Successfully"});
        QCOMPARE(d.shop.rows("select companyname,cmpid,shortname,address,pin from companymaster"),
                 (Rows{{"CIPLA LTD", "CIP", "CIPLA", "MUMBAI", "400001"}}));
        for (const char *label : {"Company Code", "Company Name", "Short Name", "Address", "Pin"})
            QVERIFY2(field(screen, label)->text().isEmpty(), label);
        QCOMPARE(QApplication::focusWidget(), field(screen, "Company Code"));

        fill(screen, {{"Company Code", "CIP"}, {"Company Name", "ANOTHER"}});
        test::click(screen, "Save");
        QCOMPARE(d.shop.dialogs.shown.last(), QStringLiteral("company id already used try another id"));
        QCOMPARE(d.shop.rows("select count(*) from companymaster"), Rows{{"1"}});
        QCOMPARE(field(screen, "Company Name")->text(), QStringLiteral("ANOTHER"));

        test::click(screen, "Edit");
        test::click(screen, "Delete");
        QCOMPARE(d.shop.rows("select count(*) from companymaster"), Rows{{"1"}});
        QCOMPARE(d.shop.dialogs.shown.size(), 2);
    }

    void productsAreNumberedPerCompany()
    {
        ProductDesk d;
        for (const char *label : {"&Save", "&Update", "&Delete"})
            QVERIFY2(!test::button(d.screen, label)->isEnabled(), label);
        d.pickCompany("ci");
        QCOMPARE(field(d.screen, "Company Code")->text(), QStringLiteral("CIP"));
        QCOMPARE(field(d.screen, "Mfg Name")->text(), QStringLiteral("CIPLA LTD"));
        QCOMPARE(field(d.screen, "Product Sr. No")->text(), QStringLiteral("1"));
        QCOMPARE(QApplication::focusWidget(), field(d.screen, "Product Name"));
        d.saveProduct("panadol", "8901");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Saved successfully"});
        QCOMPARE(d.shop.rows("select cmpid,mfgname,psrno,prodname,model,mrp,rate from productmaster"),
                 (Rows{{"CIP", "CIPLA LTD", "1", "PANADOL", "8901", "25", "22.5"}}));
        QVERIFY(field(d.screen, "Company Code")->text().isEmpty());

        d.pickCompany("CI");
        QCOMPARE(field(d.screen, "Product Sr. No")->text(), QStringLiteral("2"));
        d.pickCompany("SU");
        QCOMPARE(field(d.screen, "Company Code")->text(), QStringLiteral("SUN"));
        QCOMPARE(field(d.screen, "Product Sr. No")->text(), QStringLiteral("1"));
    }

    void aNameOrCodeInUseIsRefusedNameFirst()
    {
        ProductDesk d;
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,model) values('SUN','1','PANADOL','8901')");
        d.pickCompany("CI");
        d.saveProduct("PANADOL", "8901");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Product already exist and assign to other product please choose another"});
        d.saveProduct("PANADOL EXTRA", "8901");
        QCOMPARE(d.shop.dialogs.shown.last(), QStringLiteral("Item Code already exist and assign to other product please choose another"));
        QCOMPARE(d.shop.rows("select count(*) from productmaster"), Rows{{"1"}});
        QCOMPARE(field(d.screen, "Product Name")->text(), QStringLiteral("PANADOL EXTRA"));
    }

    void aCompanyPickedByItsNameIsRefused()
    {
        ProductDesk d;
        test::click(d.screen, "&Add");
        test::type(d.screen, "search", "C");
        test::clickCell(test::grid(d.screen, "company list"), 1, 1);
        QCOMPARE(d.shop.dialogs.shown, QStringList{"Wrong Selection"});
        QVERIFY(field(d.screen, "Company Code")->text().isEmpty());
    }

    void theCompanyCodeFieldSearchesProducts()
    {
        ProductDesk d;
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,shortname,model) values('CIP','1','PANADOL','PAN','8901')");
        d.shop.exec("insert into productmaster(cmpid,psrno,prodname,shortname,model) values('CIP','2','ZINC','ZN','8902')");
        test::type(d.screen, "Company Code", "pa");
        Grid *products = test::grid(d.screen, "product list");
        QVERIFY(!products->isHidden());
        QCOMPARE(products->rows(), 2);
        QCOMPARE(products->text(1, 1), QStringLiteral("PAN"));
        test::press(d.screen, "Company Code", Qt::Key_Escape);
        QVERIFY(products->isHidden());
        // Emptying the field leaves the list as it was.
        field(d.screen, "Company Code")->clear();
        test::press(d.screen, "Company Code", Qt::Key_Backspace);
        QCOMPARE(products->rows(), 2);
        field(d.screen, "Product Name")->setText("KEPT?");
        QTest::mouseClick(field(d.screen, "Company Code"), Qt::LeftButton);
        QVERIFY(field(d.screen, "Product Name")->text().isEmpty());
    }

    void anUpdateMatchesOnlyWithTheTrueCompanyCode()
    {
        ProductDesk d;
        d.shop.exec("insert into productmaster(cmpid,mfgname,psrno,prodname,shortname,model,mrp,wr,rate,boxno) "
                    "values('CIP','CIPLA LTD','1','PANADOL','PAN','8901','25','20','22.5','B1')");
        test::type(d.screen, "Company Code", "PAN");
        test::clickCell(test::grid(d.screen, "product list"), 1, 0);
        QCOMPARE(field(d.screen, "Company Code")->text(), QStringLiteral("CIPLA LTD"));
        QCOMPARE(field(d.screen, "Product Sr. No")->text(), QStringLiteral("1"));
        QCOMPARE(field(d.screen, "Sales Rate")->text(), QStringLiteral("22.5"));
        QCOMPARE(field(d.screen, "Boxno")->text(), QStringLiteral("B1"));
        QVERIFY(test::button(d.screen, "&Update")->isEnabled());

        fill(d.screen, {{"Sales Rate", "30"}});
        test::click(d.screen, "&Update");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"product updated successfully"});
        QCOMPARE(d.shop.rows("select cmpid,rate from productmaster"), (Rows{{"CIP", "22.5"}}));
        QVERIFY(field(d.screen, "Sales Rate")->text().isEmpty());

        test::type(d.screen, "Company Code", "PAN");
        test::clickCell(test::grid(d.screen, "product list"), 1, 0);
        fill(d.screen, {{"Company Code", "CIP"}, {"Sales Rate", "30"}});
        test::click(d.screen, "&Update");
        QCOMPARE(d.shop.rows("select cmpid,mfgname,psrno,prodname,shortname,rate from productmaster"),
                 (Rows{{"CIP", "CIPLA LTD", "1", "PANADOL", "PAN", "30"}}));
    }

    void partiesAreNumberedFromOneAndAboveTheHighest()
    {
        test::Desk d;
        auto *screen = d.open<PartyMasterScreen>("sm");
        QCOMPARE(screen->windowTitle(), QStringLiteral("Suppliermaster"));
        QCOMPARE(field(screen, "Party ID")->text(), QStringLiteral("1"));
        fill(screen, {{"Party Name :", "ram stores"}, {"Short Name:", "ram"}, {"City :", "pune"}, {"C/B/S/O", "c"}});
        auto *accountType = qobject_cast<QComboBox *>(test::named(screen, "Acc Type"));
        accountType->setCurrentIndex(0);
        test::click(screen, "&Save");
        QCOMPARE(d.shop.dialogs.shown, QStringList{"party added successfully"});
        QCOMPARE(d.shop.rows("select ID,suppname,shortname,city,cbso,acctype from suppliermaster"),
                 (Rows{{"1", "RAM STORES", "RAM", "PUNE", "C", "Asset"}}));
        QCOMPARE(field(screen, "Party ID")->text(), QStringLiteral("2"));
        QVERIFY(field(screen, "Party Name :")->text().isEmpty());
        QCOMPARE(field(screen, "Short Name:")->text(), QStringLiteral("RAM"));

        d.shop.exec("insert into suppliermaster(ID,suppname) values('7','GAP')");
        fill(screen, {{"Party Name :", "ravi"}});
        test::click(screen, "&Save");
        QCOMPARE(d.shop.rows("select ID from suppliermaster order by ID"), (Rows{{"1"}, {"2"}, {"7"}}));
        QCOMPARE(field(screen, "Party ID")->text(), QStringLiteral("8"));
    }

    void aPickedPartyFillsTheFieldsButNotItsHeading()
    {
        test::Desk d;
        d.shop.exec("insert into suppliermaster(ID,suppname,shortname,address,city,phone,mobile,pin,cbso,acctype) "
                    "values('4','RAM STORES','RAM','MG ROAD','PUNE','020','98','411001','S','Liability')");
        auto *screen = d.open<PartyMasterScreen>("sm");
        test::type(screen, "Party Name :", "ra");
        Grid *parties = test::grid(screen, "party list");
        test::clickCell(parties, 0, 0);
        QCOMPARE(d.shop.dialogs.shown, QStringList{" Wrong selection"});
        QCOMPARE(field(screen, "Party ID")->text(), QStringLiteral("5"));
        test::clickCell(parties, 1, 1);
        QCOMPARE(field(screen, "Party ID")->text(), QStringLiteral("4"));
        QCOMPARE(field(screen, "Party Name :")->text(), QStringLiteral("RAM STORES"));
        QCOMPARE(field(screen, "Address :")->text(), QStringLiteral("MG ROAD"));
        QCOMPARE(field(screen, "Pin Code :")->text(), QStringLiteral("411001"));
        QVERIFY(field(screen, "C/B/S/O")->text().isEmpty());

        fill(screen, {{"City :", "MUMBAI"}});
        test::click(screen, "&Update");
        QCOMPARE(d.shop.dialogs.shown.last(), QStringLiteral("party updated successfully"));
        QCOMPARE(d.shop.rows("select ID,city,cbso from suppliermaster"), (Rows{{"4", "MUMBAI", ""}}));
    }

    void deleteAsksFirst()
    {
        test::Desk d;
        d.shop.exec("insert into suppliermaster(ID,suppname) values('1','ASHA'),('2','RAM STORES'),('3','ZEN')");
        d.shop.exec("insert into sales(invoice,party) values('1','RAM STORES')");
        auto *screen = d.open<PartyMasterScreen>("sm");
        field(screen, "Party ID")->setText("2");
        d.shop.dialogs.answers = {false, true};
        test::click(screen, "&Delete");
        QCOMPARE(d.shop.rows("select count(*) from suppliermaster"), Rows{{"3"}});
        test::click(screen, "&Delete");
        QCOMPARE(d.shop.dialogs.shown, (QStringList{"Are You Sure", "Are You Sure", "Supplier deleted"}));
        QCOMPARE(d.shop.rows("select ID,suppname from suppliermaster order by ID"), (Rows{{"1", "ASHA"}, {"3", "ZEN"}}));
        QCOMPARE(d.shop.rows("select party from sales"), Rows{{"RAM STORES"}});
    }

    void afterCancelUpdateAndDeleteFail()
    {
        test::Desk d;
        d.shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM STORES')");
        auto *screen = d.open<PartyMasterScreen>("sm");
        test::click(screen, "Ca&ncel");
        QVERIFY(field(screen, "Party ID")->text().isEmpty());
        test::click(screen, "&Update");
        d.shop.dialogs.answers = {true};
        test::click(screen, "&Delete");
        QCOMPARE(d.shop.unhandledErrors.size(), 2);
        QVERIFY2(d.shop.unhandledErrors[0].contains("syntax error"), qPrintable(d.shop.unhandledErrors[0]));
        QCOMPARE(d.shop.unhandledErrors[1], QStringLiteral("incomplete input"));
        QCOMPARE(d.shop.rows("select ID,suppname from suppliermaster"), (Rows{{"1", "RAM STORES"}}));
    }

    void typingIsUpperCasedOnEveryMaster()
    {
        test::Desk d;
        for (const auto &[entry, label] : QList<QPair<const char *, QString>>{{"cmpmst", "Company Name"}, {"pm", "Product Name"}, {"sm", "Address :"}}) {
            Screen *screen = d.open<Screen>(entry);
            test::type(screen, label, "mg road 5");
            QCOMPARE(field(screen, label)->text(), QStringLiteral("MG ROAD 5"));
        }
    }
};

VANTREL_TEST_MAIN(MastersTest)
#include "test_masters.moc"
