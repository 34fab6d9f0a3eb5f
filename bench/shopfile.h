#pragma once

#include <QDate>
#include <QString>
#include <QVector>

namespace vantrel::bench {

// The size of a synthetic shop. Every figure is a row count of the table it names.
struct ShopSize {
    const char *name;
    int companies;
    int products;
    int parties;
    int salesLines;    // about five lines an invoice
    int purchaseLines; // about five lines a voucher
    int ledgerRows;    // half payments, half receipts; at most 32,767 of each (16-bit numbers)
    int years;         // the invoices spread evenly over this many years up to lastDay()
};

// A year of a small shop, and ten years of a busy one.
const ShopSize &shopSize();
const ShopSize &decadeSize();
// One year of the decade's shop, with a full year of receipts and payments (thirty a day).
const ShopSize &yearSize();

// The day of the newest documents: the day book of this day has rows.
QDate lastDay();

// The product and party names are made of words; the benchmark types their beginnings.
// The name of product N (0-based) and of party N, as the generator writes them.
QString productName(int n);
QString partyName(int n);

// Writes a new shop file at PATH through the program's own schema: the same tables, indexes and
// guards as vantrel-initdb writes, filled with deterministic data (the same file every time).
// Dates are written in the short date form of the current locale. Throws UnhandledError on a
// failed statement; an existing file is refused.
void makeShopFile(const QString &path, const ShopSize &size);

// The value below which the share P of TIMES lies (0.5: the median); 0 for none.
double percentile(QVector<double> times, double p);

// Runs a statement on the server's own database (SERVER is its connection to "postgres"),
// outside any shop's books. Throws UnhandledError when the server refuses it.
void onServer(const QString &server, const QString &sql);

} // namespace vantrel::bench
