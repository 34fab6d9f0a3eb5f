// Number reading and writing, 16-bit conversion, the short date and numbering by max + 1.
#include "data/records.h"
#include "data/shortdate.h"
#include "data/unhandlederror.h"
#include "support/testmain.h"
#include "support/testshop.h"

#include <cmath>
#include <functional>
#include <limits>

using namespace vantrel;

class RecordsTest : public QObject {
    Q_OBJECT
private slots:
    void valReadsTheLeadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("digits then letters") << "12abc" << 12.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("negative decimal") << "-3.5x" << -3.5;
        QTest::newRow("leading blanks") << "  7.25" << 7.25;
        QTest::newRow("no number") << "abc" << 0.0;
        QTest::newRow("lone sign") << "-" << 0.0;
        QTest::newRow("point first") << ".5" << 0.5;
        QTest::newRow("exponent") << "1e3kg" << 1000.0;
        QTest::newRow("exponent without digits") << "2e" << 2.0;
        QTest::newRow("second point stops") << "1.2.3" << 1.2;
        QTest::newRow("comma stops") << "1,234" << 1.0;
    }
    void valReadsTheLeadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(val(text), value);
    }

    void singleTextHasAtMostSevenDigits_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("whole") << 250.0f << "250";
        QTest::newRow("half") << 12.5f << "12.5";
        QTest::newRow("cut to seven digits") << 123456.78f << "123456.8";
        QTest::newRow("a tenth") << 0.1f << "0.1";
        QTest::newRow("negative") << -4.75f << "-4.75";
        QTest::newRow("zero") << 0.0f << "0";
        QTest::newRow("large, no exponent") << 12345678.0f << "12345680";
        QTest::newRow("small, no exponent") << 0.00001f << "0.00001";
    }
    void singleTextHasAtMostSevenDigits()
    {
        QFETCH(float, value);
        QFETCH(QString, text);
        QCOMPARE(singleText(value), text);
    }

    void doubleTextIsTheShortestThatReadsBack_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("discount of 1234 at 7.5%") << 1234 * 7.5 / 100 << "92.55";
        QTest::newRow("999 at 3%") << 999 * 3.0 / 100 << "29.97";
        QTest::newRow("amount 3 x 12.5") << 3 * 12.5 << "37.5";
        QTest::newRow("whole") << 1000000.0 << "1000000";
        QTest::newRow("no grouping when large") << 123456789012.0 << "123456789012";
        QTest::newRow("float noise kept") << 0.1 + 0.2 << "0.30000000000000004";
        QTest::newRow("negative") << -0.5 << "-0.5";
    }
    void doubleTextIsTheShortestThatReadsBack()
    {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(doubleText(value), text);
        QCOMPARE(doubleText(value).toDouble(), value);
    }

    void toInt16RoundsHalfToEven()
    {
        QCOMPARE(toInt16(8.5), qint16(8));
        QCOMPARE(toInt16(9.5), qint16(10));
        QCOMPARE(toInt16(7.5), qint16(8));
        QCOMPARE(toInt16(-2.5), qint16(-2));
        QCOMPARE(toInt16(2.4), qint16(2));
        QCOMPARE(toInt16(32767), qint16(32767));
        QCOMPARE(toInt16(-32768), qint16(-32768));
        QCOMPARE(toInt16(32767.4), qint16(32767));
    }

    void toInt16OverflowIsAnError()
    {
        for (double beyond : {32767.5, 32768.0, -32768.6, 1e9}) {
            try {
                toInt16(beyond);
                QFAIL(qPrintable(QStringLiteral("no overflow for %1").arg(beyond)));
            } catch (const UnhandledError &error) {
                QCOMPARE(error.message(), QStringLiteral("Overflow"));
            }
        }
    }

    void aFigureBeyondItsRangeIsAnOverflow()
    {
        const QList<std::function<void()>> beyond = {
            [] { val(QStringLiteral("1e400")); },
            [] { val(QStringLiteral("-2e308abc")); },
            [] { toSingle(1e39); },
            [] { toSingle(-3.5e38); },
            [] { doubleText(std::numeric_limits<double>::infinity()); },
            [] { singleText(-std::numeric_limits<float>::infinity()); },
            [] { checkFinite(std::nan("")); },
        };
        for (int i = 0; i < beyond.size(); ++i) {
            try {
                beyond[i]();
                QFAIL(qPrintable(QStringLiteral("no overflow in case %1").arg(i)));
            } catch (const UnhandledError &error) {
                QCOMPARE(error.message(), QStringLiteral("Overflow"));
            }
        }
        QCOMPARE(val(QStringLiteral("1e308")), 1e308);
        QCOMPARE(toSingle(3.4e38), 3.4e38f);
        QCOMPARE(singleText(toSingle(123456.78)), QStringLiteral("123456.8"));
    }

    void shortDateWidensTheYear()
    {
        const QDate day(2026, 11, 23);
        QCOMPARE(ShortDate(QLocale(QLocale::English, QLocale::UnitedStates)).text(day), QStringLiteral("11/23/2026"));
        QCOMPARE(ShortDate(QLocale(QLocale::English, QLocale::India)).text(day), QStringLiteral("23/11/2026"));
        QCOMPARE(ShortDate(QLocale(QLocale::English, QLocale::UnitedStates)).text(QDate(2024, 1, 5)), QStringLiteral("1/5/2024"));
        QCOMPARE(ShortDate(QLocale::c()).text(day), QStringLiteral("11/23/2026"));
        const auto order = ShortDate(QLocale(QLocale::English, QLocale::India)).order();
        QCOMPARE(order[0], ShortDate::Day);
        QCOMPARE(order[1], ShortDate::Month);
        QCOMPARE(order[2], ShortDate::Year);
    }

    void everySeriesStartsAtOne()
    {
        test::TestShop shop;
        const QList<QPair<QString, QString>> series = {
            {"select max(ID) as ID from suppliermaster", "ID"},
            {"select max(psrno) as psrno from productmaster where cmpid='C1'", "psrno"},
            {"select max(invoice) as invoice from salesmain where trans='C'", "invoice"},
            {"select max(invoice) as invoice from salesmain where trans='D'", "invoice"},
            {"select max(pono) as pono from purchasemain where trans='C'", "pono"},
            {"select max(pono) as pono from purchasemain where trans='D'", "pono"},
            {"select max(refno) as refno from ledger where type='payment'", "refno"},
            {"select max(refno) as refno from ledger where type='receipt'", "refno"},
        };
        for (const auto &[query, column] : series)
            QCOMPARE(nextNumber(shop.db(), query, column), 1.0);
    }

    void numberingIsMaxPlusOnePerCondition()
    {
        test::TestShop shop;
        shop.exec("insert into salesmain(invoice,trans) values('1','C')");
        shop.exec("insert into salesmain(invoice,trans) values('7','C')");
        shop.exec("insert into salesmain(invoice,trans) values('3','D')");
        shop.exec("insert into suppliermaster(ID,suppname) values('2','A')");
        shop.exec("insert into suppliermaster(ID,suppname) values('9','B')");
        shop.exec("insert into ledger(refno,type) values(5,'receipt')");
        QCOMPARE(nextNumber(shop.db(), "select max(invoice) as invoice from salesmain where trans='C'", "invoice"), 8.0);
        QCOMPARE(nextNumber(shop.db(), "select max(invoice) as invoice from salesmain where trans='D'", "invoice"), 4.0);
        QCOMPARE(nextNumber(shop.db(), "select max(ID) as ID from suppliermaster", "ID"), 10.0);
        QCOMPARE(nextNumber(shop.db(), "select max(refno) as refno from ledger where type='payment'", "refno"), 1.0);
        QCOMPARE(nextNumber(shop.db(), "select max(refno) as refno from ledger where type='receipt'", "refno"), 6.0);
    }

    void aQueryWithNoRowNumbersOne()
    {
        test::TestShop shop;
        shop.exec("insert into salesmain(invoice,trans) values('4','C')");
        QCOMPARE(nextNumber(shop.db(), "select invoice from salesmain where trans='X'", "invoice"), 1.0);
    }
};

VANTREL_TEST_MAIN(RecordsTest)
#include "test_records.moc"
