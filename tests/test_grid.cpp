// The grid: its cells, their sides, lazy reading. (Choosing from a grid is in the screens' cases.)
#include "support/testshop.h"
#include "widgets/grid.h"

#include <QSignalSpy>

using namespace vantrel;

class GridTest : public QObject {
    Q_OBJECT

private slots:
    // Every cell reads as a recordset reads it, on the first screenful and past it.
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

    // Numbers (declared so or not, computed, 16-bit) on the right, texts on the left.
    void numbersLineUpOnTheRightAndTextsOnTheLeft()
    {
        test::TestShop shop(test::TestShop::Filled);
        Grid grid(QStringLiteral("party list"));
        const auto alignments = [&](const QString &sql, int row) {
            grid.bind(shop.db(), sql);
            QString found;
            for (int col = 0; col < grid.model()->columnCount(); ++col) {
                const auto side = grid.model()->data(grid.model()->index(row, col), Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignHorizontal_Mask;
                found += side == Qt::AlignLeft ? 'L' : side == Qt::AlignRight ? 'R' : '-';
            }
            return found;
        };
        shop.exec("insert into salesmain(invoice,party,netamt) values('7','ASHA','12.5'),('8','ASHA','100')");
        shop.exec("insert into ledger(refno,type) values(7,'receipt')");
        QCOMPARE(alignments("select suppname,ID,city from suppliermaster order by suppname", 2), QStringLiteral("LRL"));
        QCOMPARE(alignments("select party, sum(netamt) as total, count(*) from salesmain group by party", 0), QStringLiteral("LRR"));
        QCOMPARE(grid.text(1, 1), QStringLiteral("112.5"));
        QCOMPARE(alignments("select refno, type from ledger", 0), QStringLiteral("RL"));
        grid.setFixedFirstColumn(true);
        QCOMPARE(alignments("select refno, type from ledger", 0), QStringLiteral("-RL"));
    }

    // Idle time or a walk reads the rest; until then the grid shows the file as it was at its bind
    // while writes go to disk at once. A row that fails late is reported by walk and idle alike.
    void largeResultsReadLazilyAsTheFileWasWhenBound()
    {
        test::TestShop shop;
        shop.exec("with recursive n(i) as (select 1 union all select i+1 from n where i<5000) insert into salesmain(invoice,dat,trans) select i,'11/23/2026','C' from n");
        Grid before(QStringLiteral("lines grid")), idle(QStringLiteral("lines grid"));
        before.bind(shop.db(), "select invoice from salesmain order by invoice");
        QVERIFY(before.model()->rowCount() < 5000);
        QCOMPARE(before.text(1234, 0), QStringLiteral("1234"));
        shop.exec("insert into salesmain(invoice,dat) values(9999,'11/23/2026')");
        shop.exec("delete from salesmain where invoice=4000");
        // A total read alongside the rows still to fetch counts what they count.
        const QString total = "select count(*) as n, sum(invoice) as s from salesmain";
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2);
        Database second(buildConnectionString(shop.directory()));
        QCOMPARE(second.query("select count(*) as n from salesmain where invoice=9999").number("n"), 1.0);

        Grid after(QStringLiteral("lines grid"));
        after.bind(shop.db(), "select invoice from salesmain");
        QCOMPARE(QStringList({QString::number(after.rows()), after.text(4000, 0), after.text(5000, 0)}), QStringList({"5001", "4001", "9999"}));
        QCOMPARE(QStringList({QString::number(before.rows()), before.text(4000, 0), before.text(5000, 0)}), QStringList({"5001", "4000", "5000"}));
        // Read to its end, the grid has given its connection back: the file as it is now.
        QCOMPARE(before.queryAlongside(total).number("n"), 5000.0);
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2 - 4000 + 9999);
        idle.bind(shop.db(), "select invoice from salesmain");
        QTRY_COMPARE(idle.model()->rowCount(), 5000);

        shop.exec("update salesmain set dat='NOT A DATE' where invoice=2500");
        const QString failing = "select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY')>='01/01/2026'";
        Grid walked(QStringLiteral("register grid")), read(QStringLiteral("register grid"));
        walked.bind(shop.db(), failing);
        QCOMPARE(test::errorOf([&] { walked.rows(); }), QStringLiteral("Data type mismatch in criteria expression."));
        QSignalSpy readFailed(&read, &Grid::readFailed);
        read.bind(shop.db(), failing);
        QTRY_COMPARE(readFailed.size(), 1);
        QCOMPARE(readFailed.at(0).at(0).toString(), QStringLiteral("Data type mismatch in criteria expression."));
    }
};

VANTREL_TEST_MAIN(GridTest)
#include "test_grid.moc"
