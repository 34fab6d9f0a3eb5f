#include "serieswarning.h"

#include "data/database.h"

#include <QStringList>

namespace vantrel {

QString seriesWarning(Database &db)
{
    QStringList full;
    for (const char *type : {"receipt", "payment"}) {
        const int last = int(db.query(QStringLiteral("select max(refno) as n from ledger where type='%1'").arg(QLatin1String(type))).number(QStringLiteral("n")));
        if (last > WarnAbove)
            full << QStringLiteral("the %1 numbers are at %2, %3 left").arg(QLatin1String(type), QString::number(last)).arg(32767 - last);
    }
    if (full.isEmpty())
        return QString();
    return QStringLiteral("Close the year soon: %1 (the last is 32767).").arg(full.join(QStringLiteral("; ")));
}

} // namespace vantrel
