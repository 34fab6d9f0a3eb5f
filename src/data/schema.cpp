#include "schema.h"

#include "editlog.h"
#include "transaction.h"
#include "unhandlederror.h"

#include <QFile>
#include <QStringList>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace vantrel {

// Text columns compare without regard to case, as the shop's queries expect, and let prefix
// likes use an index. Numbers are doubles; ledger.refno is the one 16-bit column. There are no
// unique constraints: the screens check uniqueness themselves where they do.
const char *schemaText()
{
    return R"sql(
create table companymaster(
    companyname text collate nocase, cmpid text collate nocase, shortname text collate nocase,
    address text collate nocase, pin text collate nocase);
create table productmaster(
    cmpid text collate nocase, mfgname text collate nocase, psrno double, prodname text collate nocase,
    shortname text collate nocase, model text collate nocase, mrp double, wr double, rate double,
    boxno text collate nocase);
create table suppliermaster(
    ID double, suppname text collate nocase, shortname text collate nocase, address text collate nocase,
    city text collate nocase, phone text collate nocase, mobile text collate nocase, pin text collate nocase,
    cbso text collate nocase, acctype text collate nocase);
create table salesmain(
    invoice double, dat text collate nocase, party text collate nocase, trans text collate nocase,
    netamt double, dis double, disamt double, gd double);
create table sales(
    cmpid text collate nocase, psrno double, invoice text collate nocase, prodname text collate nocase,
    party text collate nocase, model text collate nocase, qty double, rate double, amount double,
    trans text collate nocase, status text collate nocase);
create table purchasemain(
    pono double, dat text collate nocase, party text collate nocase, trans text collate nocase, netamt double);
create table purchase(
    cmpid text collate nocase, psrno double, pono text collate nocase, prodname text collate nocase,
    party text collate nocase, model text collate nocase, qty double, rate double, amount double,
    trans text collate nocase, status text collate nocase);
create table stock(
    cmpid text collate nocase, pono text collate nocase, psrno double, prodname text collate nocase,
    model text collate nocase, party text collate nocase, totqty double, rate double, amt double,
    usedqty double, stk double);
create table ledger(
    refno smallint, dat text collate nocase, ac text collate nocase, debit double, credit double,
    accnm text collate nocase, type text collate nocase, balance double);

create view receipt as
    select refno, dat, ac, credit as amt, accnm from ledger where type = 'receipt';

create index companymaster_cmpid on companymaster(cmpid);
create index companymaster_name on companymaster(companyname);
create index productmaster_key on productmaster(cmpid, psrno, prodname, boxno);
create index productmaster_name on productmaster(prodname);
create index productmaster_model on productmaster(model);
create index suppliermaster_id on suppliermaster(ID);
create index suppliermaster_name on suppliermaster(suppname);
create index salesmain_key on salesmain(invoice, trans);
create index salesmain_dat on salesmain(dat);
create index sales_invoice on sales(invoice, trans);
create index sales_party on sales(party, trans, status);
create index purchasemain_key on purchasemain(pono, trans);
create index purchasemain_dat on purchasemain(dat);
create index purchase_pono on purchase(pono, trans);
create index purchase_party on purchase(party, trans, status);
create index stock_name on stock(prodname);
create index stock_product on stock(cmpid, psrno);
create index ledger_type on ledger(type, refno);
create index ledger_account on ledger(ac, dat);
create index ledger_accnm on ledger(accnm);

)sql";
}

const char *ledgerSumIndexesText()
{
    return R"sql(
create index if not exists ledger_credit on ledger(type, credit);
create index if not exists ledger_debit on ledger(type, debit);
)sql";
}

const char *closedYearsText()
{
    return "create table if not exists closedyears(name text collate nocase, closed text collate nocase, file text collate nocase);\n";
}

const char *statisticsText()
{
    return R"sql(
-- The planner's picture of a grown shop, so that it picks the same plans on the first day as on
-- the thousandth: names and codes nearly unique, a few hundred companies, two modes.
analyze sqlite_schema;
delete from sqlite_stat1;
insert into sqlite_stat1(tbl, idx, stat) values
    ('companymaster', 'companymaster_cmpid', '1000 1'),
    ('companymaster', 'companymaster_name', '1000 1'),
    ('productmaster', 'productmaster_key', '100000 200 1 1 1'),
    ('productmaster', 'productmaster_name', '100000 1'),
    ('productmaster', 'productmaster_model', '100000 1'),
    ('suppliermaster', 'suppliermaster_id', '2000 1'),
    ('suppliermaster', 'suppliermaster_name', '2000 1'),
    ('salesmain', 'salesmain_key', '200000 2 1'),
    ('salesmain', 'salesmain_dat', '200000 100'),
    ('sales', 'sales_invoice', '2000000 20 10'),
    ('sales', 'sales_party', '2000000 1000 500 250'),
    ('purchasemain', 'purchasemain_key', '50000 2 1'),
    ('purchasemain', 'purchasemain_dat', '50000 30'),
    ('purchase', 'purchase_pono', '500000 20 10'),
    ('purchase', 'purchase_party', '500000 1000 500 250'),
    ('stock', 'stock_name', '100000 1'),
    ('stock', 'stock_product', '100000 200 1'),
    ('ledger', 'ledger_type', '600000 300000 1'),
    ('ledger', 'ledger_credit', '600000 300000 10'),
    ('ledger', 'ledger_debit', '600000 300000 10'),
    ('ledger', 'ledger_account', '600000 300 5'),
    ('ledger', 'ledger_accnm', '600000 300');

)sql";
}

namespace {

// A table's Number columns and, where it has one, the numbering column among them.
struct NumberColumns {
    const char *table;
    const char *numbering;
    QStringList columns;
};

// The guard of one table: a numbering column holds numbers only (a text, the empty one too, is
// a type mismatch, and the 16-bit reference number stays in its range), and no Number column
// takes an infinite value (the engine reads "1e999" as one). The other Number columns keep a
// text as typed. Plain SQL: the stock sqlite3 shell runs the same checks.
QString guardText(const NumberColumns &table)
{
    QStringList overflow;
    for (const QString &column : table.columns)
        overflow << "new." + column + " in (9e999, -9e999)";
    QString numbering = QString::fromLatin1(table.numbering);
    if (numbering == QLatin1String("refno"))
        overflow << QStringLiteral("new.refno not between -32768 and 32767");
    QString checks;
    if (!numbering.isEmpty())
        checks += "    select raise(abort, 'Data type mismatch in criteria expression.') where typeof(new." + numbering
            + ") not in ('integer', 'real', 'null');\n";
    checks += "    select raise(abort, 'Overflow') where " + overflow.join(QStringLiteral(" or ")) + ";\n";

    const QString name = QString::fromLatin1(table.table);
    return "create trigger " + name + "_numbers_insert before insert on " + name + " begin\n" + checks + "end;\n"
        + "create trigger " + name + "_numbers_update before update of " + table.columns.join(QStringLiteral(", ")) + " on " + name
        + " begin\n" + checks + "end;\n";
}

} // namespace

QString guardsText()
{
    static const NumberColumns tables[] = {
        {"productmaster", "psrno", {"psrno", "mrp", "wr", "rate"}},
        {"suppliermaster", "ID", {"ID"}},
        {"salesmain", "invoice", {"invoice", "netamt", "dis", "disamt", "gd"}},
        {"sales", "", {"psrno", "qty", "rate", "amount"}},
        {"purchasemain", "pono", {"pono", "netamt"}},
        {"purchase", "", {"psrno", "qty", "rate", "amount"}},
        {"stock", "", {"psrno", "totqty", "rate", "amt", "usedqty", "stk"}},
        {"ledger", "refno", {"refno", "debit", "credit", "balance"}},
    };
    QString text;
    for (const NumberColumns &table : tables)
        text += guardText(table);
    return text;
}

void createDatabaseFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        throw UnhandledError(QStringLiteral("Cannot create %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno))));
    ::close(fd);

    sqlite3 *db = nullptr;
    try {
        if (sqlite3_open_v2(name.constData(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            throw UnhandledError(QString::fromUtf8(sqlite3_errmsg(db)));
        {
            Transaction transaction(db); // the whole schema in one transaction, one sync
            const QByteArray rest = QByteArray(ledgerSumIndexesText()) + statisticsText() + guardsText().toUtf8() + closedYearsText()
                + editLogStatements().join(QStringLiteral(";\n")).toUtf8() + ";";
            transaction.execute(schemaText());
            transaction.execute(rest.constData());
            writeEditLogNote(db, QStringLiteral("start"), QStringLiteral("A new shop file: the edit log starts with it."));
            transaction.execute((QByteArrayLiteral("pragma user_version = ") + QByteArray::number(CurrentSchemaVersion)).constData());
            transaction.commit();
        }
        if (sqlite3_exec(db, "pragma journal_mode = wal", nullptr, nullptr, nullptr) != SQLITE_OK)
            throw UnhandledError(QString::fromUtf8(sqlite3_errmsg(db)));
    } catch (const UnhandledError &failure) {
        sqlite3_close(db);
        QFile::remove(path);
        throw UnhandledError(QStringLiteral("Cannot write the tables into %1: %2").arg(path, failure.message()));
    }
    sqlite3_close(db);
}

QString newerSchemaReason(int version)
{
    return QStringLiteral("written by a newer Vantrel (schema version %1; this program knows up to %2). Nothing was changed; start the newer program.")
        .arg(version)
        .arg(CurrentSchemaVersion);
}

} // namespace vantrel
