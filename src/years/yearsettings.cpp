#include "yearsettings.h"

#include <QSettings>

namespace vantrel {

FinancialYear financialYearSetting()
{
    const QString start = QSettings().value(QStringLiteral("years/financialYearStart"), QStringLiteral("04-01")).toString();
    const QDate day = QDate::fromString(QStringLiteral("2000-") + start, QStringLiteral("yyyy-MM-dd"));
    return day.isValid() ? FinancialYear{day.month(), day.day()} : FinancialYear{};
}

} // namespace vantrel
