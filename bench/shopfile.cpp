#include "shopfile.h"

#include "data/editlog.h"

#include "care/sqlitefile.h"
#include "data/schema.h"
#include "data/shortdate.h"

#include "data/serverconnection.h"
#include "data/unhandlederror.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVector>
#include <algorithm>
#include <cmath>
#include <sqlite3.h>

namespace vantrel::bench {

namespace {

// splitmix64: the same numbers on every machine.
class Numbers {
public:
    explicit Numbers(quint64 seed) : m_state(seed) {}
    quint64 next()
    {
        quint64 z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    int below(int n) { return int(next() % quint64(n)); }
    int between(int low, int high) { return low + below(high - low + 1); }

private:
    quint64 m_state;
};

// A pronounceable word of six letters that begins with INITIAL, the same for the same SEED.
QString word(QChar initial, int seed)
{
    static const char consonants[] = "BDGKLMNPRSTV";
    static const char vowels[] = "AEIOU";
    Numbers n(quint64(seed) * 7919 + 17);
    QString w(initial);
    for (int i = 1; i < 6; ++i)
        w += QLatin1Char(i % 2 ? vowels[n.below(5)] : consonants[n.below(12)]);
    return w;
}

// Twelve initials with six brands each: one letter matches a twelfth of the products, three
// letters about a seventy-second.
QString brand(int b) { return word(QLatin1Char("ABCDGHKLMNPS"[b / 6]), b); }

const char *const Kinds[] = {"FAN",   "MIXER", "IRON",   "BULB",   "TUBE",  "SWITCH", "CABLE", "HEATER",
                             "KETTLE", "TORCH", "CELL",   "PLUG",   "LAMP",  "GEYSER", "COOLER", "PUMP",
                             "MOTOR", "WIRE",  "HOLDER", "SOCKET", "BOARD", "CHOKE",  "DRILL", "TOASTER"};
const char *const Trades[] = {"TRADERS", "STORES", "AGENCIES", "ENTERPRISES", "MART", "BROTHERS"};

struct Statement {
    sqlite3_stmt *handle = nullptr;
    ~Statement() { sqlite3_finalize(handle); }
};

// Bulk inserts into the new file in one transaction, each statement prepared once and bound.
class Writer {
public:
    explicit Writer(const QString &path) : m_file(path, SqliteFile::Access::ReadWrite)
    {
        m_file.execute(QStringLiteral("pragma synchronous=off"));
        m_file.execute(QStringLiteral("begin"));
        // The years of work the file stands for were keyed through the program: its log too.
        if (!attachEditLog(m_file.handle()).isEmpty())
            m_file.fail(QStringLiteral("keep the edit log"));
    }

    // Prepares an insert whose values are all bound by insert().
    void prepare(Statement &s, const char *sql)
    {
        if (sqlite3_prepare_v2(m_file.handle(), sql, -1, &s.handle, nullptr) != SQLITE_OK)
            m_file.fail(QString::fromUtf8(sql));
    }

    // Binds VALUES in order (a QString as text, a double as a number, a null QVariant as null) and runs it.
    void insert(Statement &s, std::initializer_list<QVariant> values)
    {
        int i = 0;
        for (const QVariant &v : values) {
            ++i;
            if (v.isNull())
                sqlite3_bind_null(s.handle, i);
            else if (v.typeId() == QMetaType::QString) {
                const QByteArray text = v.toString().toUtf8();
                sqlite3_bind_text(s.handle, i, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            } else
                sqlite3_bind_double(s.handle, i, v.toDouble());
        }
        if (sqlite3_step(s.handle) != SQLITE_DONE)
            m_file.fail(QString::fromUtf8(sqlite3_sql(s.handle)));
        sqlite3_reset(s.handle);
    }

    void finish()
    {
        m_file.execute(QStringLiteral("commit"));
        m_file.execute(QStringLiteral("pragma wal_checkpoint(truncate)"));
    }

private:
    SqliteFile m_file;
};

// A figure as the screens write it: single precision, shortest text.
double single(double v) { return double(float(v)); }

struct Product {
    QString cmpid, model;
    double psrno = 0, rate = 0;
    double bought = 0, sold = 0;
    QString firstVoucher, firstParty;
    double firstRate = 0, firstQty = 0;
    bool stocked = false;
};

} // namespace

const ShopSize &shopSize()
{
    static const ShopSize size{"shop", 40, 5000, 1000, 100000, 20000, 6000, 1};
    return size;
}

const ShopSize &decadeSize()
{
    static const ShopSize size{"decade", 500, 100000, 20000, 2000000, 400000, 64000, 10};
    return size;
}

const ShopSize &yearSize()
{
    static const ShopSize size{"year", 500, 100000, 20000, 200000, 40000, 22000, 1};
    return size;
}

QDate lastDay() { return QDate(2026, 11, 22); }

QString productName(int n)
{
    return brand((n * 7919) % 72) + ' ' + QLatin1String(Kinds[(n / 72) % 24]) + ' ' + QString::number(n).rightJustified(6, '0');
}

QString partyName(int n)
{
    const QString surname = word(QLatin1Char("ABDGHJKMNPRS"[n % 12]), 1000 + (n / 12) % 40);
    return surname + ' ' + QLatin1String(Trades[(n / 480) % 6]) + ' ' + QString::number(n);
}

void makeShopFile(const QString &path, const ShopSize &size)
{
    createDatabaseFile(path);
    Writer w(path);
    Numbers random(20261123);
    const ShortDate shortDate;
    const QDate first = lastDay().addYears(-size.years).addDays(1);
    const qint64 days = first.daysTo(lastDay()) + 1;

    Statement company;
    w.prepare(company, "insert into companymaster(companyname,cmpid,shortname,address,pin) values(?,?,?,?,?)");
    for (int c = 0; c < size.companies; ++c) {
        const QString id = QStringLiteral("C%1").arg(c + 1, 3, 10, QLatin1Char('0'));
        w.insert(company, {brand(c % 72) + QStringLiteral(" INDUSTRIES ") + QString::number(c + 1), id, id,
                           QStringLiteral("%1 MAIN ROAD").arg(c + 1), QStringLiteral("4000%1").arg(c % 100, 2, 10, QLatin1Char('0'))});
    }

    QVector<Product> products(size.products);
    Statement product;
    w.prepare(product, "insert into productmaster(cmpid,mfgname,psrno,prodname,shortname,model,mrp,wr,rate,boxno) values(?,?,?,?,?,?,?,?,?,?)");
    for (int p = 0; p < size.products; ++p) {
        Product &it = products[p];
        it.cmpid = QStringLiteral("C%1").arg(p % size.companies + 1, 3, 10, QLatin1Char('0'));
        it.psrno = p / size.companies + 1;
        it.model = QStringLiteral("M%1").arg(p + 1);
        it.rate = random.between(10, 5000) + random.below(4) * 0.25;
        w.insert(product, {it.cmpid, brand(p % 72), it.psrno, productName(p), QString(), it.model, it.rate * 1.2, it.rate * 0.9,
                           it.rate, QStringLiteral("B%1").arg(p % 60)});
    }

    QStringList parties;
    Statement party;
    w.prepare(party, "insert into suppliermaster(ID,suppname,shortname,address,city,phone,mobile,pin,cbso,acctype) values(?,?,?,?,?,?,?,?,?,?)");
    for (int n = 0; n < size.parties; ++n) {
        parties << partyName(n);
        w.insert(party, {double(n + 1), parties.last(), QString(), QStringLiteral("%1 STATION ROAD").arg(n % 400 + 1),
                         QStringLiteral("CITY %1").arg(n % 30), QStringLiteral("22%1").arg(n, 6, 10, QLatin1Char('0')),
                         QStringLiteral("98%1").arg(n, 8, 10, QLatin1Char('0')), QStringLiteral("4000%1").arg(n % 100, 2, 10, QLatin1Char('0')),
                         n % 3 ? QStringLiteral("C") : QStringLiteral("S"), n % 2 ? QStringLiteral("DEBTOR") : QStringLiteral("CREDITOR")});
    }

    // Vouchers first: most products are bought before they are sold, a few never.
    Statement voucherLine, voucher;
    w.prepare(voucherLine, "insert into purchase(cmpid,psrno,pono,prodname,party,model,qty,rate,amount,trans,status) values(?,?,?,?,?,?,?,?,?,?,?)");
    w.prepare(voucher, "insert into purchasemain(pono,dat,party,trans,netamt) values(?,?,?,?,?)");
    const int vouchers = size.purchaseLines / 5;
    int linesLeft = size.purchaseLines;
    const int sellable = size.products - size.products / 20;
    for (int v = 0; v < vouchers; ++v) {
        const QString mode = v % 3 ? QStringLiteral("D") : QStringLiteral("C");
        const double number = v % 3 ? v - v / 3 : v / 3 + 1;
        const QString supplier = parties[random.below(size.parties)];
        const int lines = v == vouchers - 1 ? linesLeft : std::min(linesLeft, random.between(1, 9));
        linesLeft -= lines;
        double total = 0;
        for (int l = 0; l < lines; ++l) {
            const int p = (v * 5 + l) < sellable ? (v * 5 + l) : random.below(sellable);
            Product &it = products[p];
            const double qty = random.between(10, 60);
            const double amount = qty * it.rate;
            if (!it.stocked) {
                it.stocked = true;
                it.firstVoucher = QString::number(number);
                it.firstParty = supplier;
                it.firstRate = it.rate;
                it.firstQty = qty;
            }
            it.bought += qty;
            total = single(total + amount);
            w.insert(voucherLine, {it.cmpid, it.psrno, QString::number(number), productName(p), supplier, it.model, qty, it.rate, amount,
                                   mode, v < vouchers - vouchers / 100 ? QStringLiteral("p") : QStringLiteral("u")});
        }
        w.insert(voucher, {number, shortDate.text(first.addDays(v * days / vouchers)), supplier, mode, total});
    }

    Statement saleLine, sale;
    w.prepare(saleLine, "insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) values(?,?,?,?,?,?,?,?,?,?,?)");
    w.prepare(sale, "insert into salesmain(invoice,dat,party,trans,netamt,dis,disamt,gd) values(?,?,?,?,?,?,?,?)");
    const int invoices = size.salesLines / 5;
    linesLeft = size.salesLines;
    for (int i = 0; i < invoices; ++i) {
        const QString mode = i % 2 ? QStringLiteral("D") : QStringLiteral("C");
        const double number = i / 2 + 1;
        const QString customer = parties[random.below(size.parties)];
        const int lines = i == invoices - 1 ? linesLeft : std::min(linesLeft, random.between(1, 9));
        linesLeft -= lines;
        double total = 0;
        for (int l = 0; l < lines; ++l) {
            const int p = random.below(sellable);
            Product &it = products[p];
            const double qty = random.between(1, 4);
            const double amount = qty * it.rate;
            it.sold += qty;
            total = single(total + amount);
            w.insert(saleLine, {it.cmpid, it.psrno, QString::number(number), productName(p), customer, it.model, qty, it.rate, amount,
                                mode, i < invoices - invoices / 100 ? QStringLiteral("p") : QStringLiteral("u")});
        }
        const double discount = i % 7 == 0 ? 5 : 0;
        const double discountAmount = total * discount / 100;
        w.insert(sale, {number, shortDate.text(first.addDays(i * days / invoices)), customer, mode, total, discount, discountAmount,
                        total - discountAmount});
    }

    // One lot per product name: the first purchase's figures, the quantities of all of them.
    Statement lot;
    w.prepare(lot, "insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) values(?,?,?,?,?,?,?,?,?,?,?)");
    for (int p = 0; p < size.products; ++p) {
        const Product &it = products[p];
        if (it.stocked)
            w.insert(lot, {it.cmpid, it.firstVoucher, it.psrno, productName(p), it.model, it.firstParty, it.bought, it.firstRate,
                           it.firstRate * it.firstQty, it.sold, it.bought - it.sold});
    }

    // The newest credit sales' payments and the receipts against them, numbered per type.
    Statement entry;
    w.prepare(entry, "insert into ledger(refno,dat,ac,debit,credit,accnm,type,balance) values(?,?,?,?,?,?,?,?)");
    const int perType = std::min(size.ledgerRows / 2, 32000);
    double debits = 0, credits = 0;
    for (int n = 0; n < perType; ++n) {
        const QString day = shortDate.text(lastDay().addDays(-(perType - n) * 365 / perType));
        const QString account = parties[random.below(size.parties)];
        const double debit = random.between(100, 20000);
        debits += debit;
        w.insert(entry, {double(n + 1), day, account, debit, QVariant(), QVariant(), QStringLiteral("payment"),
                         single(std::fabs(credits - debits))});
        const double credit = random.between(100, 15000);
        credits += credit;
        w.insert(entry, {double(n + 1), day, account, QVariant(), credit, QStringLiteral("CASH"), QStringLiteral("receipt"),
                         single(std::fabs(credits - debits))});
    }
    w.finish();
}

double percentile(QVector<double> times, double p)
{
    if (times.isEmpty())
        return 0;
    std::sort(times.begin(), times.end());
    return times[std::min<int>(int(times.size()) - 1, int(p * double(times.size() - 1) + 0.5))];
}

void onServer(const QString &server, const QString &sql)
{
    QSqlDatabase admin = QSqlDatabase::database(QStringLiteral("bench-server"), false);
    if (!admin.isValid()) {
        admin = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("bench-server"));
        admin.setConnectOptions(serverConnectOptions(server));
    }
    QSqlQuery query(admin);
    if (!admin.open() || !query.exec(sql))
        throw UnhandledError(QStringLiteral("the server refused %1: %2").arg(sql, query.lastError().text() + admin.lastError().text()));
}

} // namespace vantrel::bench
