#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <array>

namespace vantrel {

// The system's short date form: the locale's short date pattern with the year widened to four
// digits (en_US "M/d/yyyy" gives 11/23/2026, en_IN "dd/MM/yyyy" gives 23/11/2026); a locale
// without a numeric short form gets "M/d/yyyy". Dates are written in this form and stored as
// text; they are never reformatted.
class ShortDate {
public:
    enum Part { Day, Month, Year };

    explicit ShortDate(const QLocale &locale = QLocale());

    QString pattern() const { return m_pattern; }
    QString text(const QDate &date) const;

    // The order in which day, month and year stand in the pattern (en_US: Month, Day, Year).
    const std::array<Part, 3> &order() const { return m_order; }

private:
    QLocale m_locale;
    QString m_pattern;
    std::array<Part, 3> m_order{Month, Day, Year};
};

} // namespace vantrel
