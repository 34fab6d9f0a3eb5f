#include "engineforms.h"

#include <QRegularExpression>

namespace vantrel {

namespace {

// From this many matching products on, the product search walks the key index.

} // namespace

QString outsideValues(const QString &sql, QString (*rewrite)(QString outside))
{
    QString text;
    text.reserve(sql.size() + 16);
    qsizetype from = 0;
    while (from < sql.size()) {
        const qsizetype quote = sql.indexOf(QLatin1Char('\''), from);
        text += rewrite(sql.mid(from, quote < 0 ? -1 : quote - from));
        if (quote < 0)
            break;
        // A doubled quote inside a value ends and restarts it, which reads the same here.
        const qsizetype closing = sql.indexOf(QLatin1Char('\''), quote + 1);
        const qsizetype end = closing < 0 ? sql.size() : closing + 1;
        text += QStringView(sql).mid(quote, end - quote);
        from = end;
    }
    return text;
}

QString leftJoinForm(const QString &sql)
{
    if (!sql.contains(QLatin1String("right"), Qt::CaseInsensitive))
        return sql;
    return outsideValues(sql, [](QString outside) {
        static const QRegularExpression rightJoin(QStringLiteral("\\b(\\w+)\\s+(\\w+)\\s+right\\s+join\\s+(\\w+)\\s+(\\w+)\\s+on\\b"),
                                                  QRegularExpression::CaseInsensitiveOption);
        return outside.replace(rightJoin, QStringLiteral("\\3 \\4 left join \\1 \\2 on"));
    });
}

namespace {

// The whole statement must be the span: a further condition could spare a row's date from
// being converted, and so spare the statement an error that the distinct walk would raise.
//
// Why the rows are the same: the condition depends on the date text alone, so a row is in the
// span exactly when its distinct date is. The walk compares dates as their column does (without
// regard to case), and texts that differ only in case convert alike (a letter can only be a
// separator). A date that cannot be converted fails the walk as it fails the scan, with the
// same message. The rows come in rowid order, the order of the plain table scan, and an
// aggregate adds them up in that order too ("limit -1" keeps the inner order in force). The
// span's rowids are found on the date index alone and read back in their order, which needs no
// sort and no walk of the whole table.
QString dateSpan(const QString &sql)
{
    const DateSpan span = dateSpanOf(sql);
    return span.isEmpty() ? sql : spanRowsStatement(span, spanDaysStatement(span));
}

// The product search of the invoice screens. Its groups come out in the order of their key,
// which the table's key index holds. When a good share of the products match (the first letter
// or two), walking that index and skipping the others shows the first screenful at once; the
// name index would find every match, join and sort them all first. When few match, the name
// index is the quicker, as the statement stands. One uncorrelated count picks the branch (it is
// computed once); the other branch's constant condition is false before it reads a row. Both
// branches group the same rows on the same key, and the compound takes its column names and
// types from the first.
QString productSearch(const QString &sql)
{
    const ProductSearch search = productSearchOf(sql);
    if (search.pattern.isEmpty())
        return sql;
    return QStringLiteral("%1 where +p.prodname like %2 and %3 > %5 %4 union all %1 where p.prodname like %2 and %3 <= %5 %4")
        .arg(search.select, search.pattern, search.matches, search.grouping, QString::number(ManyMatchingProducts));
}

} // namespace

DateSpan dateSpanOf(const QString &sql, SpanFormat format)
{
    static const auto pattern = [](const char *function) {
        return QRegularExpression(QStringLiteral("^select\\s+(.+?)\\s+from\\s+(\\w+)\\s+where\\s+%1\\(cdate\\((\\w+)\\),\\s*'MM/DD/YYYY'\\)\\s+"
                                                 "between\\s+('[^']*')\\s+and\\s+('[^']*')\\s*$")
                                      .arg(QLatin1String(function)),
                                  QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    };
    static const QRegularExpression file = pattern("format"), server = pattern("vformat");
    const QRegularExpressionMatch m = (format == SpanFormat::Server ? server : file).match(sql);
    if (!m.hasMatch() || m.captured(1).contains(QLatin1Char('\'')))
        return {};
    return {m.captured(1), m.captured(2), m.captured(3), m.captured(4), m.captured(5)};
}

QString spanDaysStatement(const DateSpan &span)
{
    return QStringLiteral("with recursive d(v) as (select min(%2) from %1 union all select (select min(%2) from %1 where %2 > d.v) "
                          "from d where d.v is not null) select v from d where format(cdate(v),'MM/DD/YYYY') between %3 and %4")
        .arg(span.table, span.date, span.from, span.to);
}

QString spanRowsStatement(const DateSpan &span, const QString &days)
{
    return QStringLiteral("select %1 from (select * from %2 where rowid in (select rowid from %2 where %3 in (%4)) order by rowid limit -1) %2")
        .arg(span.list, span.table, span.date, days);
}

ProductSearch productSearchOf(const QString &sql)
{
    static const QRegularExpression search(
        QStringLiteral(R"(^(select p\.prodname,sum\(s\.stk\) as stk,p\.boxno,p\.cmpid,p\.psrno from productmaster p left join stock s )"
                       R"(on p\.cmpid=s\.cmpid and p\.psrno=s\.psrno) where p\.prodname like ('[^']*') )"
                       R"((group by p\.cmpid,p\.psrno,p\.prodname,p\.boxno)$)"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = search.match(leftJoinForm(sql));
    if (!m.hasMatch())
        return {};
    return {m.captured(1), m.captured(2), m.captured(3),
            QStringLiteral("(select count(*) from productmaster where prodname like %1)").arg(m.captured(2))};
}

QString engineForm(const QString &sql)
{
    return productSearch(dateSpan(leftJoinForm(sql)));
}

} // namespace vantrel
