#include "unreadabledates.h"

#include "data/records.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "sqlitefile.h"

#include <QStringList>

namespace vantrel {

QList<UnreadableDate> unreadableDates(BooksReader &file)
{
    // The distinct dates first (a handful per day of business), then the rows of the bad ones.
    const ShortDate form;
    QStringList bad;
    file.eachRow(QStringLiteral("select distinct dat from salesmain where dat is not null union select distinct dat from purchasemain "
                                "where dat is not null union select distinct dat from ledger where dat is not null"),
                 [&](const BookRow &row) {
                     if (!dateOfText(row.text(0), form).isValid())
                         bad << sqlLiteral(row.text(0));
                 });
    QList<UnreadableDate> found;
    if (bad.isEmpty())
        return found;
    const QString among = " where dat in (" + bad.join(QLatin1Char(',')) + ")";
    for (const auto &[table, number, noun] : {std::tuple{"salesmain", "invoice", "sales invoice"}, std::tuple{"purchasemain", "pono", "purchase voucher"}}) {
        file.eachRow(QStringLiteral("select %1, trans, dat from %2").arg(QLatin1String(number), QLatin1String(table)) + among, [&](const BookRow &row) {
            const QString key = QStringLiteral("%1 = %2 and trans = %3 and dat = %4")
                                    .arg(QLatin1String(number), doubleText(row.number(0)), sqlLiteral(row.text(1)), sqlLiteral(row.text(2)));
            found << UnreadableDate{QStringLiteral("%1 %2 (%3)").arg(QLatin1String(noun), doubleText(row.number(0)), row.text(1)), row.text(2),
                                    QLatin1String(table), key};
        });
    }
    file.eachRow("select type, refno, ac, dat from ledger" + among, [&](const BookRow &row) {
        const QString key = QStringLiteral("type = %1 and refno = %2 and dat = %3").arg(sqlLiteral(row.text(0)), doubleText(row.number(1)), sqlLiteral(row.text(3)));
        found << UnreadableDate{QStringLiteral("%1 %2 of %3").arg(row.text(0).toLower(), doubleText(row.number(1)), row.text(2)), row.text(3),
                                QStringLiteral("ledger"), key};
    });
    return found;
}

QList<UnreadableDate> unreadableDates(const QString &path)
{
    return unreadableDates(*openBooksReader(path));
}

} // namespace vantrel
