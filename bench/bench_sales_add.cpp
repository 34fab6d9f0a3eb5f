// Times "&Add" of a credit line on the real Sales screen in a grown shop: 100,000 products
// with a lot each, 2,000,000 sales lines and 600,000 ledger rows.
// Usage: bench_sales_add [LINES] [LEDGER]   (defaults 2000000 and 600000)
#include "app/mainwindow.h"
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/screen.h"
#include "widgets/services.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>

using namespace vantrel;

namespace {

class SilentDialogs final : public Dialogs {
public:
    void inform(const QString &) override {}
    bool ask(const QString &) override { return true; }
};

QLineEdit *field(QWidget *screen, const QString &name)
{
    for (QLineEdit *f : screen->findChildren<QLineEdit *>())
        if (f->accessibleName() == name)
            return f;
    return nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const int lines = argc > 1 ? std::atoi(argv[1]) : 2000000;
    const int ledger = argc > 2 ? std::atoi(argv[2]) : 600000;

    QTemporaryDir dir(QDir::currentPath() + "/bench-XXXXXX");
    createDatabaseFile(dir.path() + "/vantrel.accdb");
    Database db(buildConnectionString(dir.path()));
    QElapsedTimer t;
    t.start();
    db.execute("with recursive n(i) as (select 1 union all select i+1 from n where i<100000) "
               "insert into productmaster(cmpid,psrno,prodname,model,rate,boxno) select 'C'||(i%500),i/500+1,'PRODUCT '||i,'M'||i,10.5,'B' from n");
    db.execute("insert into stock(cmpid,psrno,prodname,model,totqty,usedqty,stk) select cmpid,psrno,prodname,model,1000,0,1000 from productmaster");
    db.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i+1 from n where i<%1) "
                              "insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) "
                              "select 'C1',1,i/10,'PRODUCT '||(i%100000),'PARTY '||(i%300),'M1',1,10.5,10.5,'D','p' from n").arg(lines));
    db.execute(QStringLiteral("insert into salesmain(invoice,dat,party,trans,netamt) select distinct invoice,'11/1/2026','PARTY','D',105 from sales"));
    db.execute(QStringLiteral("with recursive n(i) as (select 1 union all select i+1 from n where i<%1) "
                              "insert into ledger(refno,dat,ac,debit,credit,type) "
                              "select (i/2)%30000+1,'11/1/2026','PARTY',case i%2 when 0 then 10 end,case i%2 when 1 then 12 end,"
                              "case i%2 when 0 then 'payment' else 'receipt' end from n").arg(ledger));
    std::printf("shop: 100000 products, %d sales lines, %d ledger rows (%.0f ms to make)\n", lines, ledger, t.nsecsElapsed() / 1e6);

    SilentDialogs dialogs;
    SystemClock clock;
    Services services{db, dialogs, clock, dir.path(), [](const QString &m) { std::printf("error: %s\n", qPrintable(m)); }, {}, {}};
    MainWindow window(services);
    window.show();
    QWidget *sales = window.openScreen("sale");
    QTest::keyClicks(field(sales, "C/D"), "D");
    field(sales, "Party:")->setText("PARTY 7");

    const int adds = 40;
    std::vector<double> times;
    for (int i = 0; i < adds; ++i) {
        field(sales, "item code")->setText(QStringLiteral("M%1").arg(1000 + i));
        QTest::keyClick(field(sales, "item code"), Qt::Key_Return);
        field(sales, "Qty")->setText("2");
        QTest::qWait(600); // the operator's pause: the lists finish reading while the program is idle
        t.restart();
        sales->findChild<QPushButton *>("cmdadd")->click();
        times.push_back(t.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("credit \"&Add\" on the Sales screen, %d lines: median %.1f ms, slowest %.1f ms\n", adds, times[adds / 2], times.back());

    t.restart();
    db.query("select sum(credit) as credit from ledger where type='receipt'");
    std::printf("  of which one overall ledger sum: %.1f ms\n", t.nsecsElapsed() / 1e6);
    return 0;
}
