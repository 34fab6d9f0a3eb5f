// Every bad input on every field of every data-entry screen, filled for a good save and saved.
// The system's own response is whatever it is (a row, a message, the database's error); never a
// damaged file, a row gone, a table written that the save does not write, a quote stored (every
// value is spliced: a stored quote is a statement that was not what it says), a number column
// holding a text or an infinity, or an error that is neither the database's nor the system's.
#include "support/steps.h"

#include <QAbstractSpinBox>

using namespace vantrel;

namespace {

const QStringList BadInputs = {"'", QString(10000, QLatin1Char('W')), "\u0926\u0935\u093e \u20b9", "   ", "-", "",
                               "1e308", "1,000.50", "x'; delete from sales; --"};

// The steps that fill a screen for a good save, its save button, the tables the save may write.
struct EntryScreen {
    const char *fill;
    const char *save;
    QStringList writes;
};

const EntryScreen Screens[] = {
    {"start sale C RAM; type item code=8901; key item code=Return; type Qty=2", "&Add", {"sales", "ledger", "stock", "salesmain"}},
    {"start pur C RAM; type Item code=8901; key Item code=Return; set Rate=9.5; type Qty=2", "&Add", {"purchase", "stock", "purchasemain"}},
    {"open rcpt; set Account=RAM; set Name Of Account=RAVI MEDICALS; set Amount=100", "&Save", {"ledger"}},
    {"open cmpmst; type Company Code=GSK; type Company Name=GLAXO; type Short Name=GSK; type Address=MG ROAD; type Pin=560001", "Save",
     {"companymaster"}},
    {"open sm; set Party Name :=NEW PARTY; set Short Name:=NP; set Address :=MG ROAD; set City :=PUNE; set Phone:=2020; "
     "set Mobile :=98; set Pin Code :=411001; set C/B/S/O=C", "&Save", {"suppliermaster"}},
    {"open pm; set Company Code=CIP; set Product Sr. No=4; set Mfg Name=CIPLA LTD; set Product Name=NEW ITEM; "
     "set Product Short Name=NI; set Company Short Name=CIP; set Item Code=8999; set MRP=10; set Wholesale Rate=8; "
     "set Sales Rate=9; set Boxno=B9", "&Save", {"productmaster"}},
};

// The fields an operator can type into; not the text part of a date picker.
QList<QLineEdit *> typedFields(QWidget *screen)
{
    QList<QLineEdit *> fields;
    for (QLineEdit *f : screen->findChildren<QLineEdit *>())
        if (!f->accessibleName().isEmpty() && f->isVisibleTo(screen) && f->isEnabled() && !f->isReadOnly()
            && !qobject_cast<QAbstractSpinBox *>(f->parentWidget()))
            fields << f;
    return fields;
}

} // namespace

class TestBadInput : public QObject {
    Q_OBJECT

private slots:
    void everyBadInputOnEveryFieldGetsTheSystemsResponseAndNothingElse()
    {
        for (const EntryScreen &screen : Screens) {
            int fieldCount = 1, ended = 0;
            for (int f = 0; f < fieldCount; ++f) {
                for (const QString &input : BadInputs) {
                    test::StepDesk d;
                    const test::StepDesk::Snapshot before = d.snapshot();
                    d.run(screen.fill);
                    QLineEdit *target = typedFields(d.screen()).value(f);
                    fieldCount = int(typedFields(d.screen()).size());
                    QVERIFY(target);
                    const QString where = QStringLiteral("%1, field \"%2\", input \"%3\"").arg(screen.fill, target->accessibleName(), input.left(30));
                    QVERIFY2(!QTest::currentTestFailed(), qPrintable(where + ": the good filling failed"));
                    d.shop.dialogs.answers = {true, true, true};
                    target->setFocus();
                    target->setText(input);
                    QTest::keyClick(target, Qt::Key_End);
                    d.mayEnd = true;
                    if (d.shop.unhandledErrors.isEmpty())
                        d.run(QStringLiteral("click ") + screen.save);
                    ended += d.shop.unhandledErrors.isEmpty() ? 0 : 1;

                    for (const QString &error : d.shop.unhandledErrors)
                        QVERIFY2(!error.contains("std::") && !error.contains("basic_string") && !error.isEmpty(), qPrintable(where + ": " + error));
                    const test::StepDesk::Snapshot after = d.snapshot();
                    for (const QString &table : after.keys()) {
                        for (const qint64 rowid : before[table].keys())
                            QVERIFY2(after[table].contains(rowid), qPrintable(where + ": a row gone from " + table));
                        QVERIFY2(screen.writes.contains(table) || after[table] == before[table], qPrintable(where + ": wrote " + table));
                        for (const QStringList &row : after[table])
                            for (const QString &value : row)
                                QVERIFY2(!value.contains(QLatin1Char('\'')) && value != "inf" && value != "-inf",
                                         qPrintable(where + ": " + table + " holds " + value.left(40)));
                    }
                    const CheckReport report = checkShopFile(d.shop.file(), CheckDepth::Full);
                    QVERIFY2(report.damage.isEmpty(), qPrintable(where + ": " + report.text()));
                    for (const Finding &finding : report.traces)
                        QVERIFY2(finding.kind != QLatin1String("A number that is not a number"), qPrintable(where + ": " + report.text()));
                }
            }
            qInfo("%s: %d fields, %d cases, %d ended by the database's error", screen.fill, fieldCount, int(fieldCount * BadInputs.size()), ended);
            QVERIFY(fieldCount >= 3);
        }
    }
};

VANTREL_TEST_MAIN(TestBadInput)
#include "test_badinput.moc"
