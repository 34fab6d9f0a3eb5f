#pragma once

#include <QList>
#include <QString>

namespace vantrel {

class BooksReader;

// A document or ledger entry whose date no register can read: a date kept as it was typed
// ("31/02/26"). Every date-wise register, the ledger and the year close fail on it.
struct UnreadableDate {
    QString document; // "sales invoice 4 (C)", "receipt 3 of RAM"
    QString date;     // as it stands
    QString table;    // where it is: salesmain, purchasemain or ledger
    QString where;    // the condition that names its row (its number, mode or type, and the date)
};

// Every such row of the invoices, vouchers and ledger entries: sales invoices first, then
// purchase vouchers, then ledger entries, each in the order the file holds them. Throws
// UnhandledError when the file cannot be read.
QList<UnreadableDate> unreadableDates(BooksReader &books);
QList<UnreadableDate> unreadableDates(const QString &path);

} // namespace vantrel
