#include "shortdate.h"

#include <QRegularExpression>

namespace vantrel {

namespace {

QString widenYear(QString pattern)
{
    static const QRegularExpression shortYear(QStringLiteral("(?<!y)yy(?!y)"));
    return pattern.replace(shortYear, QStringLiteral("yyyy"));
}

} // namespace

ShortDate::ShortDate(const QLocale &locale)
    : m_locale(locale), m_pattern(widenYear(locale.dateFormat(QLocale::ShortFormat)))
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
