// The grid: heading row and current cell, the two ways to choose, other keys, the registers'
// fixed column, lazy reading, and writes while a grid is still reading.
#include "data/connectionstring.h"
#include "data/unhandlederror.h"
#include "support/testmain.h"
#include "support/testshop.h"
#include "support/ui.h"
#include "widgets/grid.h"

#include <QHeaderView>
#include <QSignalSpy>

using namespace vantrel;

class GridTest : public QObject {
    Q_OBJECT

    // A shown grid bound to three suppliers, ordered by name.
    struct BoundGrid {
        test::TestShop shop;
        Grid grid{QStringLiteral("party list")};
        BoundGrid()
        {
            shop.exec("insert into suppliermaster(ID,suppname,city) values('1','ASHA','PUNE')");
            shop.exec("insert into suppliermaster(ID,suppname,city) values('2','BIMAL','GOA')");
            shop.exec("insert into suppliermaster(ID,suppname,city) values('1234567','CHAND','AGRA')");
            grid.resize(500, 300);
            grid.show();
            grid.bind(shop.db(), "select suppname,ID,city from suppliermaster order by suppname");
        }
    };

    void fillNumbers(test::TestShop &shop, int count)
    {
        shop.exec(QStringLiteral("with recursive n(i) as (select 1 union all select i+1 from n where i<%1) "
                                 "insert into salesmain(invoice,dat,trans) select i,'11/23/2026','C' from n").arg(count));
    }

private slots:
    void headingRowCountsAndCellsReadAsShown()
    {
        BoundGrid g;
        QCOMPARE(g.grid.rows(), 4);
        QCOMPARE(g.grid.cols(), 3);
        QCOMPARE(g.grid.text(0, 0), QStringLiteral("suppname"));
        QCOMPARE(g.grid.text(0, 1), QStringLiteral("ID"));
        QCOMPARE(g.grid.text(1, 0), QStringLiteral("ASHA"));
        QCOMPARE(g.grid.text(3, 1), QStringLiteral("1234567"));
        QCOMPARE(g.grid.text(4, 0), QString());
        QCOMPARE(g.grid.model()->data(g.grid.model()->index(2, 1)).toString(), QStringLiteral("1234567"));
        QCOMPARE(g.grid.accessibleName(), QStringLiteral("party list"));
    }

    // Every cell reads as the screens read the same value through a recordset: nothing for a
    // null, whole numbers, reals in their shortest text, texts in any script, on the first
    // screenful and past it.
    void cellsReadAsARecordsetReadsThem()
    {
        test::TestShop shop;
        shop.exec("create table kinds(a, b text, c double)");
        shop.exec("with recursive n(i) as (select 1 union all select i + 1 from n where i < 240) "
                  "insert into kinds select case i % 6 when 0 then null when 1 then i when 2 then i * 1000000000000000 "
                  "when 3 then 0.1 * i + 0.2 when 4 then x'00ff41' else '\u0926\u0935\u093e \u20b9' || i end, "
                  "'RAM''S ' || i, case when i % 2 = 0 then i / 7.0 else i end from n");
        Grid grid(QStringLiteral("lines grid"));
        grid.bind(shop.db(), "select a, b, c from kinds");
        const QList<QStringList> expected = shop.rows("select a, b, c from kinds");
        QCOMPARE(grid.rows() - 1, int(expected.size()));
        for (int row = 0; row < expected.size(); ++row)
            for (int col = 0; col < 3; ++col)
                QCOMPARE(grid.text(row + 1, col), expected[row][col]);
        QCOMPARE(grid.text(3, 0), QStringLiteral("0.5"));
        QCOMPARE(grid.text(2, 2), QStringLiteral("0.2857142857142857")); // 2 / 7 in its shortest exact text
        QCOMPARE(grid.text(6, 0), QString());
    }

    void afterABindRowOneColumnZeroIsCurrent()
    {
        BoundGrid g;
        QCOMPARE(g.grid.row(), 1);
        QCOMPARE(g.grid.col(), 0);
        g.grid.bind(g.shop.db(), "select suppname from suppliermaster where suppname like 'Z%'");
        QCOMPARE(g.grid.rows(), 1);
        QCOMPARE(g.grid.row(), 0);
        QCOMPARE(g.grid.text(0, 0), QStringLiteral("suppname"));
    }

    void aClickChoosesTheClickedCell()
    {
        BoundGrid g;
        QSignalSpy chosen(&g.grid, &Grid::chosen);
        QSignalSpy clicked(&g.grid, &Grid::clicked);
        test::clickCell(&g.grid, 3, 2);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(clicked.size(), 1);
        QCOMPARE(g.grid.row(), 3);
        QCOMPARE(g.grid.col(), 2);
        QCOMPARE(g.grid.text(g.grid.row(), g.grid.col()), QStringLiteral("AGRA"));
    }

    void aClickOnAHeadingMakesRowZeroCurrent()
    {
        BoundGrid g;
        QSignalSpy chosen(&g.grid, &Grid::chosen);
        test::clickCell(&g.grid, 0, 1);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(g.grid.row(), 0);
        QCOMPARE(g.grid.col(), 1);
        // The same data cell as before the heading click is a data row again.
        test::clickCell(&g.grid, 1, 0);
        QCOMPARE(g.grid.row(), 1);
        QCOMPARE(chosen.size(), 2);
    }

    void enterChoosesAndEveryKeyIsReported()
    {
        BoundGrid g;
        QSignalSpy chosen(&g.grid, &Grid::chosen);
        QSignalSpy keys(&g.grid, &Grid::keyPressed);
        g.grid.setFocus();
        QTest::keyClick(&g.grid, Qt::Key_Down);
        QCOMPARE(g.grid.row(), 2);
        QSignalSpy clicked(&g.grid, &Grid::clicked);
        QTest::keyClick(&g.grid, Qt::Key_Return);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(clicked.size(), 0);
        QTest::keyClick(&g.grid, Qt::Key_X);
        QCOMPARE(keys.size(), 3);
        QCOMPARE(keys.at(0).at(0).toInt(), int(Qt::Key_Down));
        QCOMPARE(keys.at(1).at(0).toInt(), int(Qt::Key_Return));
        QCOMPARE(keys.at(2).at(0).toInt(), int(Qt::Key_X));
    }

    void clearLeavesOnlyTheHeadingRow()
    {
        BoundGrid g;
        g.grid.clear();
        QCOMPARE(g.grid.rows(), 1);
        QCOMPARE(g.grid.cols(), 0);
        QCOMPARE(g.grid.row(), 0);
        QCOMPARE(g.grid.text(1, 0), QString());
    }

    void aFailedBindKeepsWhatTheGridShowed()
    {
        BoundGrid g;
        bool failed = false;
        try {
            g.grid.bind(g.shop.db(), "select suppname from suppliermaster where suppname like 'O'N%'");
        } catch (const UnhandledError &) {
            failed = true;
        }
        QVERIFY(failed);
        QCOMPARE(g.grid.rows(), 4);
        QCOMPARE(g.grid.text(2, 0), QStringLiteral("BIMAL"));
    }

    void aRegisterGridHasAFixedEmptyFirstColumn()
    {
        BoundGrid g;
        g.grid.setFixedFirstColumn(true);
        g.grid.bind(g.shop.db(), "select suppname,city from suppliermaster order by suppname");
        QCOMPARE(g.grid.cols(), 3);
        QCOMPARE(g.grid.text(0, 0), QString());
        QCOMPARE(g.grid.text(0, 1), QStringLiteral("suppname"));
        QCOMPARE(g.grid.text(1, 0), QString());
        QCOMPARE(g.grid.text(1, 2), QStringLiteral("PUNE"));
    }

    // Alignment follows what each cell holds: numbers (declared so or not, computed, 16-bit)
    // on the right, texts on the left.
    void numbersLineUpOnTheRightAndTextsOnTheLeft()
    {
        BoundGrid g;
        g.shop.exec("insert into salesmain(invoice,party,netamt) values('7','ASHA','12.5'),('8','ASHA','100')");
        const auto alignment = [&g](int row, int column) {
            return g.grid.model()->data(g.grid.model()->index(row, column), Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignHorizontal_Mask;
        };
        QCOMPARE(alignment(0, 0), Qt::AlignLeft);  // suppname
        QCOMPARE(alignment(0, 1), Qt::AlignRight); // ID
        QCOMPARE(alignment(2, 2), Qt::AlignLeft);  // city
        g.grid.bind(g.shop.db(), "select party, sum(netamt) as total, count(*) from salesmain group by party");
        QCOMPARE(g.grid.text(1, 1), QStringLiteral("112.5"));
        QCOMPARE(alignment(0, 0), Qt::AlignLeft);
        QCOMPARE(alignment(0, 1), Qt::AlignRight);
        QCOMPARE(alignment(0, 2), Qt::AlignRight);
        g.shop.exec("insert into ledger(refno,type) values(7,'receipt')");
        g.grid.bind(g.shop.db(), "select refno, type from ledger");
        QCOMPARE(alignment(0, 0), Qt::AlignRight);
        QCOMPARE(alignment(0, 1), Qt::AlignLeft);
        g.grid.setFixedFirstColumn(true);
        QCOMPARE(alignment(0, 0), Qt::Alignment());
        QCOMPARE(alignment(0, 1), Qt::AlignRight);
    }

    void widthsAreInTwipsAndSurviveARebind()
    {
        BoundGrid g;
        g.grid.setColumnWidthTwips(2, 3000);
        QCOMPARE(g.grid.columnWidth(2), 3000 * g.grid.logicalDpiX() / 1440);
        g.grid.bind(g.shop.db(), "select suppname,ID,city from suppliermaster");
        QCOMPARE(g.grid.columnWidth(2), 3000 * g.grid.logicalDpiX() / 1440);
    }

    void largeResultsLoadLazilyButWalksSeeEveryRow()
    {
        test::TestShop shop;
        fillNumbers(shop, 5000);
        Grid grid(QStringLiteral("lines grid"));
        grid.bind(shop.db(), "select invoice from salesmain order by invoice");
        QVERIFY(grid.model()->rowCount() < 5000);
        QCOMPARE(grid.text(4321, 0), QStringLiteral("4321"));
        QCOMPARE(grid.rows(), 5001);
        QCOMPARE(grid.text(5000, 0), QStringLiteral("5000"));
        QCOMPARE(grid.model()->rowCount(), 5000);
    }

    void theRestIsReadWhileIdle()
    {
        test::TestShop shop;
        fillNumbers(shop, 5000);
        Grid grid(QStringLiteral("lines grid"));
        grid.bind(shop.db(), "select invoice from salesmain");
        QTRY_COMPARE(grid.model()->rowCount(), 5000);
    }

    // A grid still reading shows the file as it was at its bind, however much is written
    // meanwhile; the writes are on disk at once, and a grid bound after them shows them.
    void aGridShowsTheFileAsItWasWhenBound()
    {
        test::TestShop shop;
        fillNumbers(shop, 5000);
        Grid before(QStringLiteral("lines grid"));
        before.bind(shop.db(), "select invoice from salesmain");
        QVERIFY(before.model()->rowCount() < 5000);
        shop.exec("insert into salesmain(invoice,dat) values(9999,'11/23/2026')");
        shop.exec("delete from salesmain where invoice=4000");
        // A total read alongside the rows still to fetch counts what they count.
        const QString total = "select count(*) as n, sum(invoice) as s from salesmain";
        QCOMPARE(before.queryAlongside(total).number("n"), 5000.0);
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2);
        Database second(buildConnectionString(shop.directory()));
        QCOMPARE(second.query("select count(*) as n from salesmain where invoice=9999").number("n"), 1.0);

        Grid after(QStringLiteral("lines grid"));
        after.bind(shop.db(), "select invoice from salesmain");
        QCOMPARE(after.rows(), 5001);
        QCOMPARE(after.text(4000, 0), QStringLiteral("4001"));
        QCOMPARE(after.text(5000, 0), QStringLiteral("9999"));

        QCOMPARE(before.rows(), 5001);
        QCOMPARE(before.text(4000, 0), QStringLiteral("4000"));
        QCOMPARE(before.text(5000, 0), QStringLiteral("5000"));
        // Read to its end, the grid has given its connection back: the file as it is now.
        QCOMPARE(before.queryAlongside(total).number("n"), 5000.0);
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2 - 4000 + 9999);
    }

    void aRowThatFailsLaterIsReported()
    {
        test::TestShop shop;
        fillNumbers(shop, 3000);
        shop.exec("update salesmain set dat='NOT A DATE' where invoice=2500");
        const QString query = "select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY')>='01/01/2026'";
        Grid walked(QStringLiteral("register grid"));
        walked.bind(shop.db(), query);
        bool failed = false;
        try {
            walked.rows();
        } catch (const UnhandledError &error) {
            failed = error.message() == QStringLiteral("Data type mismatch in criteria expression.");
        }
        QVERIFY(failed);

        Grid idle(QStringLiteral("register grid"));
        QSignalSpy readFailed(&idle, &Grid::readFailed);
        idle.bind(shop.db(), query);
        QTRY_COMPARE(readFailed.size(), 1);
        QCOMPARE(readFailed.at(0).at(0).toString(), QStringLiteral("Data type mismatch in criteria expression."));
    }
};

VANTREL_TEST_MAIN(GridTest)
#include "test_grid.moc"
