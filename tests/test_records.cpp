// Number reading and writing, 16-bit conversion and the short date.
#include "data/records.h"
#include "data/shortdate.h"
#include "support/testmain.h"
#include "support/testshop.h"

#include <cmath>
#include <limits>

using namespace vantrel;

static const QLocale UnitedStates(QLocale::English, QLocale::UnitedStates), India(QLocale::English, QLocale::India);

class RecordsTest : public QObject {
    Q_OBJECT
private slots:
    // The leading number of a text, as typed into a field.
    void valReadsTheLeadingNumber()
    {
        const QList<QPair<QString, double>> cases = {{"12abc", 12}, {"", 0},     {"-3.5x", -3.5}, {"  7.25", 7.25}, {"abc", 0},   {"-", 0},
                                                     {".5", 0.5},   {"1e3kg", 1000}, {"2e", 2},   {"1.2.3", 1.2},   {"1,234", 1}};
        for (const auto &[text, value] : cases)
            QVERIFY2(val(text) == value, qPrintable(text));
    }

    // Single-precision figures have at most seven digits and no exponent; doubles the shortest
    // text that reads back.
    void figuresAreWrittenToTheirPrecision()
    {
        const QList<QPair<float, QString>> singles = {{250.0f, "250"},    {12.5f, "12.5"}, {123456.78f, "123456.8"}, {0.1f, "0.1"},
                                                      {-4.75f, "-4.75"}, {0.0f, "0"},     {12345678.0f, "12345680"}, {0.00001f, "0.00001"}};
        for (const auto &[value, text] : singles)
            QCOMPARE(singleText(value), text);
        const QList<QPair<double, QString>> doubles = {{1234 * 7.5 / 100, "92.55"}, {999 * 3.0 / 100, "29.97"}, {1000000.0, "1000000"},
                                                       {123456789012.0, "123456789012"}, {0.1 + 0.2, "0.30000000000000004"}, {-0.5, "-0.5"}};
        for (const auto &[value, text] : doubles)
            QCOMPARE(doubleText(value), text);
    }

    // 16 bits round half to even; beyond them, and beyond a figure's range, is "Overflow".
    void sixteenBitsRoundHalfToEvenAndRangesOverflow()
    {
        const QList<QPair<double, int>> rounded = {{8.5, 8}, {9.5, 10}, {7.5, 8}, {-2.5, -2}, {2.4, 2}, {32767, 32767}, {-32768, -32768}, {32767.4, 32767}};
        for (const auto &[value, whole] : rounded)
            QCOMPARE(int(toInt16(value)), whole);
        const QList<std::function<void()>> beyond = {
            [] { toInt16(32767.5); },        [] { toInt16(-32768.6); },         [] { toInt16(1e9); },
            [] { val(QStringLiteral("1e400")); }, [] { val(QStringLiteral("-2e308abc")); }, [] { toSingle(1e39); },
            [] { toSingle(-3.5e38); },       [] { doubleText(std::numeric_limits<double>::infinity()); },
            [] { singleText(-std::numeric_limits<float>::infinity()); }, [] { checkFinite(std::nan("")); },
        };
        for (int i = 0; i < beyond.size(); ++i)
            QVERIFY2(test::errorOf(beyond[i]) == QLatin1String("Overflow"), qPrintable(QString::number(i)));
        QCOMPARE(val(QStringLiteral("1e308")), 1e308);
        QCOMPARE(toSingle(3.4e38), 3.4e38f);
    }

    void shortDateWidensTheYear()
    {
        const QDate day(2026, 11, 23);
        QCOMPARE(QStringList({ShortDate(UnitedStates).text(day), ShortDate(UnitedStates).text(QDate(2024, 1, 5)), ShortDate(India).text(day),
                              ShortDate(QLocale::c()).text(day)}),
                 QStringList({"11/23/2026", "1/5/2024", "23/11/2026", "11/23/2026"}));
        const auto order = ShortDate(India).order();
        QCOMPARE(QList<int>({order[0], order[1], order[2]}), QList<int>({ShortDate::Day, ShortDate::Month, ShortDate::Year}));
    }
};

VANTREL_TEST_MAIN(RecordsTest)
#include "test_records.moc"
