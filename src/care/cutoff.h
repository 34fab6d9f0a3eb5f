#pragma once

#include "sqlitefile.h"

#include <QDate>
#include <QString>

namespace vantrel {

// Which rows stay in the shop's books at a close up to a cut-off: the documents dated after it.
// A line stays with a header of its own that stays; a line without one, and a row without a
// date, close with the year. The conditions need cdate (on the file, registerSqlFunctions);
// SERVER writes them as the books on a server read them.
struct CutOff {
    explicit CutOff(const QDate &day, bool server = false) : iso(day.toString(Qt::ISODate)), server(server) {}
    QString iso;
    bool server;
    // Whether the date in COLUMN lies after the cut-off.
    QString after(const QString &column = QStringLiteral("dat")) const
    {
        return "coalesce(cdate(" + column + ") > '" + iso + (server ? "', false)" : "', 0)");
    }
    QString salesLine() const
    {
        return "exists (select 1 from salesmain m where m.invoice = sales.invoice and m.trans = sales.trans and " + after(QStringLiteral("m.dat")) + ")";
    }
    QString purchaseLine() const
    {
        return "exists (select 1 from purchasemain m where m.pono = purchase.pono and m.trans = purchase.trans and " + after(QStringLiteral("m.dat")) + ")";
    }
    // A Number column's value as sums read it.
    QString figure(const QString &column) const { return server ? column + QStringLiteral("__n") : column; }
    // Deletes from FILE what closes (STAYING true: the shop file's new contents are what stays)
    // or what stays (false: the closed year's file).
    void keepOnly(SqliteFile &file, bool staying) const
    {
        const QString no = staying ? QStringLiteral("not ") : QString();
        file.execute("delete from sales where " + no + salesLine() + "; delete from salesmain where " + no + after()
                     + "; delete from purchase where " + no + purchaseLine() + "; delete from purchasemain where " + no + after()
                     + "; delete from ledger where " + no + after());
    }
};

} // namespace vantrel
