// Measures the data store on a synthetic shop: the cost of a durable statement under each
// journal setting, the product search, the all-products grid and a date-range register.
// Usage: bench_store [PRODUCTS] [INVOICES]   (defaults 100000 and 200000)
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "widgets/grid.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstdio>

using namespace vantrel;

namespace {

double millis(const QElapsedTimer &t) { return double(t.nsecsElapsed()) / 1e6; }

void statementCost(const char *journal, const char *sync)
{
    QTemporaryDir dir(QDir::currentPath() + "/bench-XXXXXX");
    createDatabaseFile(dir.path() + "/vantrel.accdb");
    Database db(buildConnectionString(dir.path()));
    db.query(QStringLiteral("pragma journal_mode=%1").arg(QLatin1String(journal)));
    db.execute(QStringLiteral("pragma synchronous=%1").arg(QLatin1String(sync)));
    const int n = 300;
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < n; ++i)
        db.execute(QStringLiteral("insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) "
                                  "values('C1','1','%1', 'PRODUCT %1','PARTY','M1','3','12.5','37.5','D','u')").arg(i));
    std::printf("  %-6s synchronous=%-6s %7.3f ms per insert\n", journal, sync, millis(t) / n);
}

// What the guards of the Number columns add to an insert: the same inserts into ledger (a
// numbering column in 16 bits and three figures) with and without its triggers, without the
// sync at each commit so that the engine's own work shows.
void guardCost()
{
    QTemporaryDir dir(QDir::currentPath() + "/bench-XXXXXX");
    createDatabaseFile(dir.path() + "/vantrel.accdb");
    Database db(buildConnectionString(dir.path()));
    db.execute(QStringLiteral("pragma synchronous=off"));
    const int n = 20000;
    for (const bool guarded : {true, false}) {
        if (!guarded) {
            db.execute(QStringLiteral("drop trigger ledger_numbers_insert"));
            db.execute(QStringLiteral("delete from ledger"));
        }
        QElapsedTimer t;
        t.start();
        for (int i = 0; i < n; ++i)
            db.execute(QStringLiteral("insert into ledger(refno,dat,ac,credit,accnm,type)values('%1','11/23/2026','PARTY %1','%2','CASH','Receipt')")
                           .arg(i % 30000)
                           .arg(i * 0.5));
        std::printf("  %-9s %7.4f ms per insert (%d inserts, no sync)\n", guarded ? "guarded" : "unguarded", millis(t) / n, n);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); // the synthetic dates are month first
    const int products = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int invoices = argc > 2 ? std::atoi(argv[2]) : 200000;

    std::printf("durable single statements (300 inserts, file in the current directory):\n");
    statementCost("wal", "full");
    statementCost("wal", "normal");
    statementCost("delete", "full");
    std::printf("the guards of the Number columns:\n");
    guardCost();

    QTemporaryDir dir(QDir::currentPath() + "/bench-XXXXXX");
    createDatabaseFile(dir.path() + "/vantrel.accdb");
    Database db(buildConnectionString(dir.path()));
    QElapsedTimer t;
    t.start();
    db.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i+1 from n where i<%1) "
                              "insert into productmaster(cmpid,psrno,prodname,model,rate,boxno) "
                              "select 'C'||(i%500),i/500+1,'PRODUCT '||i,'M'||i,i%97+0.5,'B'||(i%40) from n").arg(products));
    db.execute("insert into stock(cmpid,psrno,prodname,totqty,usedqty,stk) select cmpid,psrno,prodname,10,2,8 from productmaster");
    db.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i+1 from n where i<%1) "
                              "insert into salesmain(invoice,dat,party,trans,netamt) "
                              "select i,(i%12+1)||'/'||(i%28+1)||'/'||(2020+i%7),'PARTY '||(i%300),'C',i%1000 from n").arg(invoices));
    std::printf("synthetic shop: %d products with one lot each, %d invoice headers (%.0f ms to make)\n", products, invoices, millis(t));

    const QString search = "select p.prodname,sum(s.stk) as stk,p.boxno,p.cmpid,p.psrno from stock s right join productmaster p "
                           "on p.cmpid=s.cmpid and p.psrno=s.psrno where p.prodname like 'PRODUCT 9999%' group by p.cmpid,p.psrno,p.prodname,p.boxno";
    t.restart();
    const int found = db.query(search).rowCount();
    std::printf("product search, %d rows:             %8.2f ms\n", found, millis(t));

    Grid grid(QStringLiteral("product/stock grid"));
    t.restart();
    grid.bind(db, "select p.prodname,sum(s.stk) as stk,p.cmpid,p.psrno from stock s right join productmaster p "
                  "on p.cmpid=s.cmpid and p.psrno=s.psrno group by p.cmpid,p.psrno,p.prodname");
    std::printf("all-products grid, first screenful:   %8.2f ms\n", millis(t));
    t.restart();
    const int rows = grid.rows();
    std::printf("all-products grid, all %d rows:   %8.2f ms\n", rows - 1, millis(t));

    t.restart();
    const Recordset span = db.query("select invoice,dat,party,netamt from salesmain where format(cdate(dat),'MM/DD/YYYY')>='01/01/2024' "
                                    "and format(cdate(dat),'MM/DD/YYYY')<='03/31/2024'");
    std::printf("date-wise register over all headers: %8.2f ms (%d rows)\n", millis(t), span.rowCount());
    return 0;
}
