#pragma once

#include <QString>

namespace vantrel {

// The form in which a statement of the system is sent to the engine. Each rewrite gives the same
// rows in the same order, with the same column names and types, and fails where the statement
// would fail with the same message; any other statement is sent as it stands. What stands
// between quotes is a value and is never rewritten.
//
// - "a x right join b y on" runs as the equivalent "b y left join a x on", which the engine plans
//   far better (the system's joins name their columns).
// - A date span over a whole table, "select LIST from T where format(cdate(dat),'MM/DD/YYYY')
//   between 'A' and 'B'", converts each distinct date once instead of every row's: the table's
//   distinct dates are walked on its date index, and the rows of those whose text lies in the
//   span are read in the table's own order.
// - The invoice screens' product search, when many products match, walks the index that holds
//   its groups in order, so that the first screenful comes without sorting every match.
QString engineForm(const QString &sql);

// SQL with each stretch outside quotes passed through REWRITE; the values stand as they are.
QString outsideValues(const QString &sql, QString (*rewrite)(QString outside));

// When this many products or more match the invoice screens' product search, its first screenful
// comes quicker by walking the index that holds its groups in order than by finding every match
// through the name's index and sorting them.
constexpr int ManyMatchingProducts = 400;

// The invoice screens' product search, in its parts: the select up to "where", the pattern in
// quotes, the grouping, and a statement counting the products it matches; all empty for any
// other statement.
struct ProductSearch {
    QString select, pattern, grouping, matches;
};
ProductSearch productSearchOf(const QString &sql);

// A register's date span over a whole table (the second rewrite above) in its parts; all empty for
// any other statement.
struct DateSpan {
    QString list, table, date, from, to;
    bool isEmpty() const { return table.isEmpty(); }
};
// SERVER: the statement in the server's form, whose format is vformat.
enum class SpanFormat { File, Server };
DateSpan dateSpanOf(const QString &sql, SpanFormat format = SpanFormat::File);
// The statement that walks the table's distinct dates and gives those whose text lies in the span.
QString spanDaysStatement(const DateSpan &span);
// The span's rows, their dates in DAYS: that statement as a subquery, or a list of the dates' values.
QString spanRowsStatement(const DateSpan &span, const QString &days);

// The statement with its right joins written as the equivalent left joins (the first rewrite
// above), which every engine plans better.
QString leftJoinForm(const QString &sql);

} // namespace vantrel
