// Every bad input on every field of every data-entry screen. Each case is a fresh shop: the
// screen is filled as the operator would fill it for a good save, one field then takes the bad
// input (its keys released as typing leaves them), and the save is pressed. The system's own
// response is whatever it is (a saved row, a message, the database's error that ends the
// program); what may never happen besides it: a damaged file, a row gone from any table, a
// table written that the action does not write, a quote stored (every value is spliced, so a
// stored quote means a statement was not what it says), a number column holding a text or an
// infinity, or an error that is not the database's or the system's own.
#include "accounts/receiptscreen.h"
#include "care/shopcheck.h"
#include "masters/companymasterscreen.h"
#include "masters/partymasterscreen.h"
#include "masters/productmasterscreen.h"
#include "purchase/purchasescreen.h"
#include "sales/salesscreen.h"
#include "support/desk.h"
#include "support/testmain.h"
#include "widgets/grid.h"

#include <QAbstractSpinBox>
#include <QDir>
#include <functional>

using namespace vantrel;
using test::field;

namespace {

const QStringList Tables = {"companymaster", "productmaster", "suppliermaster", "salesmain", "sales",
                            "purchasemain",  "purchase",      "stock",          "ledger"};

QStringList badInputs()
{
    return {QStringLiteral("'"),
            QString(10000, QLatin1Char('W')),
            QStringLiteral("\u0926\u0935\u093e \u20b9"), // Devanagari and the rupee sign
            QStringLiteral("   "),
            QStringLiteral("-"),
            QString(),
            QStringLiteral("1e308"),
            QStringLiteral("1,000.50"),
            QStringLiteral("x'; delete from sales; --")};
}

// A data-entry screen: how it is filled for a good save, the button that saves, and the tables
// that saving may write.
struct EntryScreen {
    const char *entry;
    std::function<void(QWidget *)> fill;
    const char *save;
    QStringList writes;
};

QList<EntryScreen> entryScreens()
{
    return {
        {"sale",
         [](QWidget *s) {
             test::type(s, "C/D", "C");
             test::pickFromList(s, "Party:", "RAM", "party list");
             test::keyItem(s, "item code", "8901", "2");
         },
         "&Add", {"sales", "ledger", "stock", "salesmain"}},
        {"pur",
         [](QWidget *s) {
             test::type(s, "C/D", "C");
             test::pickFromList(s, "Party:", "RAM", "party grid");
             test::keyItem(s, "Item code", "8901", "2", "9.5");
         },
         "&Add", {"purchase", "stock", "purchasemain"}},
        {"rcpt",
         [](QWidget *s) {
             field(s, "Account")->setText("RAM STORES");
             field(s, "Name Of Account")->setText("CASH");
             field(s, "Amount")->setText("100");
         },
         "&Save", {"ledger"}},
        {"cmpmst",
         [](QWidget *s) {
             for (const auto &[label, text] : {std::pair{"Company Code", "GSK"}, {"Company Name", "GLAXO"}, {"Short Name", "GSK"},
                                               {"Address", "MG ROAD"}, {"Pin", "560001"}})
                 test::type(s, label, text);
         },
         "Save", {"companymaster"}},
        {"sm",
         [](QWidget *s) {
             for (const auto &[label, text] : {std::pair{"Party Name :", "NEW PARTY"}, {"Short Name:", "NP"}, {"Address :", "MG ROAD"},
                                               {"City :", "PUNE"}, {"Phone:", "2020"}, {"Mobile :", "98"}, {"Pin Code :", "411001"},
                                               {"C/B/S/O", "C"}})
                 field(s, label)->setText(text);
         },
         "&Save", {"suppliermaster"}},
        {"pm",
         [](QWidget *s) {
             for (const auto &[label, text] :
                  {std::pair{"Company Code", "CIP"}, {"Product Sr. No", "2"}, {"Mfg Name", "CIPLA LTD"}, {"Product Name", "NEW ITEM"},
                   {"Product Short Name", "NI"}, {"Company Short Name", "CIP"}, {"Item Code", "8999"}, {"MRP", "10"},
                   {"Wholesale Rate", "8"}, {"Sales Rate", "9"}, {"Boxno", "B9"}})
                 field(s, label)->setText(text);
         },
         "&Save", {"productmaster"}},
    };
}

// The fields an operator can type into: named, shown, enabled and writable; not the text part of
// a date picker.
QList<QLineEdit *> typedFields(QWidget *screen)
{
    QList<QLineEdit *> fields;
    for (QLineEdit *f : screen->findChildren<QLineEdit *>())
        if (!f->accessibleName().isEmpty() && f->isVisibleTo(screen) && f->isEnabled() && !f->isReadOnly()
            && !qobject_cast<QAbstractSpinBox *>(f->parentWidget()))
            fields << f;
    return fields;
}

struct ShopDesk : test::Desk {
    ShopDesk()
    {
        shop.exec("insert into companymaster(companyname,cmpid) values('CIPLA LTD','CIP')");
        shop.exec("insert into productmaster(cmpid,mfgname,psrno,prodname,model,rate) values('CIP','CIPLA LTD','1','PANADOL','8901','12.5')");
        shop.exec("insert into stock(cmpid,pono,psrno,prodname,model,totqty,usedqty,stk) values('CIP','1','1','PANADOL','8901','10','0','10')");
        shop.exec("insert into suppliermaster(ID,suppname) values('1','RAM STORES'),('2','CASH')");
        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values('1','11/23/2026','RAVI','C','10')");
        shop.exec("insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('1','PANADOL','RAVI','1','10','10','C','p')");
        shop.exec("insert into purchasemain(pono,dat,party,trans,netamt) values('1','11/23/2026','RAVI','C','10')");
        shop.exec("insert into purchase(pono,prodname,party,qty,rate,amount,trans,status) values('1','PANADOL','RAVI','1','10','10','C','p')");
        shop.exec("insert into ledger(refno,dat,ac,credit,accnm,type,balance) values('1','11/20/2026','RAM STORES','50','CASH','receipt','50')");
    }
    QMap<QString, test::Rows> tables()
    {
        QMap<QString, test::Rows> all;
        for (const QString &table : Tables)
            all[table] = shop.rows("select * from " + table);
        return all;
    }
};

struct Tally {
    int cases = 0, saved = 0, ended = 0;
};

} // namespace

class TestBadInput : public QObject {
    Q_OBJECT

private slots:
    void everyBadInputOnEveryFieldGetsTheSystemsResponseAndNothingElse()
    {
        const QStringList inputs = badInputs();
        for (const EntryScreen &screen : entryScreens()) {
            Tally tally;
            int fieldCount;
            {
                ShopDesk probe;
                fieldCount = int(typedFields(probe.open<QWidget>(screen.entry)).size());
            }
            for (int f = 0; f < fieldCount; ++f) {
                for (const QString &input : inputs) {
                    ShopDesk d;
                    const QMap<QString, test::Rows> before = d.tables();
                    QWidget *s = d.open<QWidget>(screen.entry);
                    screen.fill(s);
                    QLineEdit *target = typedFields(s).value(f);
                    QVERIFY(target);
                    const QString where = QStringLiteral("%1, field \"%2\", input \"%3\"")
                                              .arg(QLatin1String(screen.entry), target->accessibleName(), input.left(30));
                    QVERIFY2(d.shop.unhandledErrors.isEmpty(), qPrintable(where + ": the good filling failed"));
                    d.shop.dialogs.answers = {true, true, true};
                    target->setFocus();
                    target->setText(input);
                    QTest::keyClick(target, Qt::Key_End);
                    if (d.shop.unhandledErrors.isEmpty())
                        test::click(s, screen.save);
                    ++tally.cases;
                    d.shop.unhandledErrors.isEmpty() ? ++tally.saved : ++tally.ended;

                    for (const QString &error : d.shop.unhandledErrors)
                        QVERIFY2(!error.contains("std::") && !error.contains("basic_string") && !error.isEmpty(),
                                 qPrintable(where + ": " + error));
                    const QMap<QString, test::Rows> after = d.tables();
                    for (const QString &table : Tables) {
                        QVERIFY2(after[table].size() >= before[table].size(), qPrintable(where + ": rows gone from " + table));
                        if (!screen.writes.contains(table))
                            QVERIFY2(after[table] == before[table], qPrintable(where + ": wrote " + table));
                        for (const QStringList &row : after[table])
                            for (const QString &value : row)
                                QVERIFY2(!value.contains(QLatin1Char('\'')) && value != "inf" && value != "-inf",
                                         qPrintable(where + ": " + table + " holds " + value.left(40)));
                    }
                    const CheckReport report = checkShopFile(QDir(d.shop.directory()).filePath("vantrel.accdb"), CheckDepth::Full);
                    QVERIFY2(report.damage.isEmpty(), qPrintable(where + ": " + report.text()));
                    for (const Finding &finding : report.traces)
                        QVERIFY2(finding.kind != QLatin1String("A number that is not a number"), qPrintable(where + ": " + report.text()));
                }
            }
            qInfo("%s: %d fields, %d cases: %d saved or answered with a message, %d ended by the database's error", screen.entry,
                  fieldCount, tally.cases, tally.saved, tally.ended);
            QVERIFY(fieldCount >= 3);
        }
    }
};

VANTREL_TEST_MAIN(TestBadInput)
#include "test_badinput.moc"
