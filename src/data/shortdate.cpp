#include "shortdate.h"

#include <QRegularExpression>

namespace vantrel {

namespace {

// The locale's short pattern with a four-digit year. A locale whose short form spells the month
// out (the bare "C" locale of a machine without one set) writes month-first digits instead.
QString numericPattern(const QLocale &locale)
{
    static const QRegularExpression shortYear(QStringLiteral("(?<!y)yy(?!y)"));
    QString pattern = locale.dateFormat(QLocale::ShortFormat);
    if (pattern.contains(QLatin1String("MMM")))
        return QStringLiteral("M/d/yyyy");
    return pattern.replace(shortYear, QStringLiteral("yyyy"));
}

} // namespace

ShortDate::ShortDate(const QLocale &locale)
    : m_locale(locale), m_pattern(numericPattern(locale))
{
    int found = 0;
    QChar previous;
    for (const QChar c : m_pattern) {
        if (c != previous && found < 3) {
            if (c == QLatin1Char('d'))
                m_order[found++] = Day;
            else if (c == QLatin1Char('M'))
                m_order[found++] = Month;
            else if (c == QLatin1Char('y'))
                m_order[found++] = Year;
        }
        previous = c;
    }
}

QString ShortDate::text(const QDate &date) const
{
    return m_locale.toString(date, m_pattern);
}

} // namespace vantrel
