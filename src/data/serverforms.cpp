#include "serverforms.h"

#include "engineforms.h"
#include "serverconnection.h"
#include "serverschema.h"

#include <QRegularExpression>
#include <functional>

namespace vantrel {

namespace {

// The statement with its values blanked, to look at its shape.
QString withoutValues(const QString &sql)
{
    static const QRegularExpression value(QStringLiteral("'[^']*'"));
    return QString(sql).replace(value, QStringLiteral("''"));
}

// The names that are a figure in every table that has them (psrno is a number in the product
// master), as an alternation for a pattern.
const QString &figureNames()
{
    static const QString names = [] {
        QStringList figures, numbers;
        for (const ServerTable &table : serverTables())
            for (const ServerTable::Column &column : table.columns)
                (column.kind == ServerTable::Figure ? figures : numbers) << column.name.toLower();
        figures.removeDuplicates();
        figures.removeIf([&](const QString &name) { return numbers.contains(name); });
        return figures.join(QLatin1Char('|'));
    }();
    return names;
}

bool isFigure(const QString &name)
{
    static const QRegularExpression figure(QStringLiteral("^(%1)$").arg(figureNames()), QRegularExpression::CaseInsensitiveOption);
    return figure.match(name).hasMatch();
}

QString names(QString outside)
{
    static const QRegularExpression bracketed(QStringLiteral("\\[(\\w+)\\]"));
    static const QRegularExpression format(QStringLiteral("(?<![\\w.])format\\s*\\("), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression sum(QStringLiteral("\\bsum\\(\\s*((?:\\w+\\.)?)(%1)\\s*\\)").arg(figureNames()),
                                        QRegularExpression::CaseInsensitiveOption);
    return outside.replace(bracketed, QStringLiteral("\"\\1\"")).replace(format, QStringLiteral("vformat(")).replace(sum, QStringLiteral("sum(\\1\\2__n)"));
}

// The range a prefix search's column lies in: from the prefix up to the prefix with its last
// character raised (texts compare with A-Z in lower case, code point by code point); empty when the
// pattern is not a plain prefix ("abc%", no other wildcard).
QString prefixRange(const QString &column, const QString &pattern)
{
    if (pattern.size() < 2 || !pattern.endsWith(QLatin1Char('%')) || pattern.chopped(1).contains(QLatin1Char('%'))
        || pattern.contains(QLatin1Char('_')) || pattern.contains(QLatin1Char('\'')) || pattern.at(pattern.size() - 2).isSurrogate())
        return {};
    QString prefix = pattern.chopped(1);
    for (QChar &c : prefix) // the server folds A-Z alone, as the file does
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            c = c.toLower();
    QString above = prefix;
    above.back() = QChar(char16_t(above.back().unicode() + 1));
    return QStringLiteral(" and %1 >= '%2' and %1 < '%3'").arg(column, prefix, above);
}

// A value after "like" is a pattern with no escape character; a plain prefix also bounds its
// column, so that the column's index finds the rows (a like on these columns cannot use it).
QString likeEscapes(const QString &sql)
{
    static const QRegularExpression like(QStringLiteral("\\b(\\w+(?:\\.\\w+)?)\\s+like\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression anyLike(QStringLiteral("\\blike\\s*$"), QRegularExpression::CaseInsensitiveOption);
    QString text, after;
    qsizetype from = 0;
    while (from < sql.size()) {
        const qsizetype quote = sql.indexOf(QLatin1Char('\''), from);
        const QString outside = sql.mid(from, quote < 0 ? -1 : quote - from);
        text += after + outside;
        after.clear();
        if (quote < 0)
            return text;
        const qsizetype closing = sql.indexOf(QLatin1Char('\''), quote + 1);
        const qsizetype end = closing < 0 ? sql.size() : closing + 1;
        const QString value = sql.mid(quote, end - quote);
        text += value;
        static const QRegularExpression escaped(QStringLiteral("^\\s*escape\\b"), QRegularExpression::CaseInsensitiveOption);
        if (anyLike.match(outside).hasMatch() && !escaped.match(QStringView(sql).mid(end)).hasMatch()) {
            after = QStringLiteral(" escape '' ");
            const QRegularExpressionMatch column = like.match(outside);
            if (column.hasMatch() && column.captured(1).compare(QLatin1String("not"), Qt::CaseInsensitive) != 0 && value.size() >= 2)
                after = QStringLiteral(" escape ''") + prefixRange(column.captured(1), value.mid(1, value.size() - 2)) + QLatin1Char(' ');
        }
        from = end;
    }
    return text + after;
}

QStringList starColumns(const QString &table)
{
    if (table.compare(QLatin1String("receipt"), Qt::CaseInsensitive) == 0)
        return receiptColumns();
    const ServerTable *known = serverTable(table);
    return known ? known->names() : QStringList();
}

// A select from one table, with no order, grouping or aggregate of its own: T's own columns for
// a star, in the order the file reads them. The file reads a table in the order its rows came in,
// and the rows its index finds for equal keys in that order too; a prefix search on an indexed
// name walks that index, so its rows come by the name.
QString tableOrder(const QString &sql)
{
    static const QRegularExpression single(QStringLiteral("^\\s*select\\s+(.+?)\\s+from\\s+(\\w+)(\\s+where\\s.*)?$"),
                                           QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression shaped(QStringLiteral("\\b(order|group|join|union|limit|max|min|sum|count|avg|distinct)\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression prefix(QStringLiteral("^\\s+where\\s+(prodname|suppname|companyname|model|cmpid|ac|accnm)\\s+like\\s+'[^'%_]"),
                                           QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = single.match(sql);
    if (!m.hasMatch() || shaped.match(withoutValues(sql)).hasMatch() || m.captured(2).compare(QLatin1String("select"), Qt::CaseInsensitive) == 0)
        return sql;
    const QStringList columns = starColumns(m.captured(2));
    if (columns.isEmpty())
        return sql;
    const QString list = m.captured(1).trimmed() == QLatin1String("*") ? columns.join(QLatin1Char(',')) : m.captured(1);
    const QRegularExpressionMatch byName = prefix.match(m.captured(3));
    const QString order = byName.hasMatch() ? byName.captured(1) + QStringLiteral(" nulls first, rowid") : QStringLiteral("rowid");
    return QStringLiteral("select %1 from %2%3 order by %4").arg(list, m.captured(2), m.captured(3), order);
}

// A register's date span over a whole table, "select LIST from T where format(cdate(dat),
// 'MM/DD/YYYY') between 'A' and 'B'" (format already the server's vformat here): the rows whose
// date key (the same text, for the session's order of day, month and year) lies in the span,
// which the key's index finds, read in the order they came in, as the file reads them (an
// aggregate adds them up in that order too). A date that cannot be converted fails the
// statement with the scan's message before any row comes: the key is null for it alone, and
// the index finds such rows too.
QString dateSpan(const QString &sql)
{
    const DateSpan span = dateSpanOf(sql, SpanFormat::Server);
    if (span.isEmpty())
        return sql;
    const QString &list = span.list, &table = span.table, &date = span.date;
    const QString key = QStringLiteral("(vdatekey(%1, '%2') collate \"C\")").arg(date, serverDateOrder());
    const QString rows = QStringLiteral("from %1 where %2 between %4 and %5 and (select cdate(%3) from %1 where %2 is null and %3 is not null "
                                        "limit 1) is null order by rowid")
                             .arg(table, key, date, span.from, span.to);
    static const QRegularExpression aggregate(QStringLiteral("\\b(sum|count|min|max|avg)\\s*\\("), QRegularExpression::CaseInsensitiveOption);
    if (aggregate.match(list).hasMatch())
        return QStringLiteral("select %1 from (select * %2) %3").arg(list, rows, table);
    return QStringLiteral("select %1 %2").arg(list, rows);
}

// A grouped statement with no order of its own: its groups in the order of the grouping, a null
// key first, as the file sorts it.
QString groupOrder(const QString &sql)
{
    static const QRegularExpression grouped(QStringLiteral("\\bgroup\\s+by\\s+([\\w.,\\s]+?)\\s*$"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ordered(QStringLiteral("\\b(order\\s+by|union|having|limit)\\b"), QRegularExpression::CaseInsensitiveOption);
    const QString shape = withoutValues(sql);
    const QRegularExpressionMatch m = grouped.match(shape);
    if (!m.hasMatch() || ordered.match(shape).hasMatch())
        return sql;
    QStringList order;
    for (const QString &item : m.captured(1).split(QLatin1Char(','))) {
        const QString column = item.trimmed();
        if (isFigure(column.section(QLatin1Char('.'), -1)))
            order << QStringLiteral("vfigure_is_text(%1) nulls first, vleading(%1), %1").arg(column);
        else
            order << column + QStringLiteral(" nulls first");
    }
    return sql + QStringLiteral(" order by ") + order.join(QStringLiteral(", "));
}

// The items of a list split at its top-level commas.
// Walks TEXT from FROM, calling AT(i) on each character outside quotes and brackets until it
// returns true; returns where it stopped, or the text's end.
qsizetype walkTopLevel(const QString &text, qsizetype from, const std::function<bool(qsizetype)> &at)
{
    int depth = 0;
    bool quoted = false;
    for (qsizetype i = from; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\''))
            quoted = !quoted;
        else if (!quoted && c == QLatin1Char('('))
            ++depth;
        else if (!quoted && c == QLatin1Char(')'))
            --depth;
        else if (!quoted && depth == 0 && at(i))
            return i;
    }
    return text.size();
}

QStringList topLevelItems(const QString &list)
{
    QStringList items;
    qsizetype start = 0;
    walkTopLevel(list, 0, [&](qsizetype i) {
        if (list[i] == QLatin1Char(',')) {
            items << list.mid(start, i - start).trimmed();
            start = i + 1;
        }
        return false;
    });
    items << list.mid(start).trimmed();
    return items;
}

} // namespace

QString serverForm(const QString &sql)
{
    return likeEscapes(groupOrder(tableOrder(dateSpan(outsideValues(leftJoinForm(sql), names)))));
}

bool hasSecondStatement(const QString &sql)
{
    const QString shape = withoutValues(sql);
    const qsizetype end = shape.indexOf(QLatin1Char(';'));
    return end >= 0 && !QStringView(shape).mid(end + 1).trimmed().isEmpty();
}

QStringList fileColumnNames(const QString &sql)
{
    static const QRegularExpression select(QStringLiteral("^\\s*select\\s+(?:distinct\\s+)?"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression from(QStringLiteral("^\\s+from\\s+(\\w+)\\b"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression alias(QStringLiteral("^.*\\s+as\\s+\\[?(\\w+)\\]?$"),
                                          QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression column(QStringLiteral("^(?:\\w+\\.)?(\\w+)$"));
    const QRegularExpressionMatch head = select.match(sql);
    if (!head.hasMatch())
        return {};
    // The list runs to the first "from" outside quotes and brackets; an expression's name is its text.
    QRegularExpressionMatch table;
    const qsizetype end = walkTopLevel(sql, head.capturedEnd(), [&](qsizetype i) {
        return sql[i].isSpace() && (table = from.match(QStringView(sql).mid(i))).hasMatch();
    });
    if (!table.hasMatch())
        return {};
    const QString list = sql.mid(head.capturedEnd(), end - head.capturedEnd());
    QStringList names;
    for (const QString &item : topLevelItems(list)) {
        if (item == QLatin1String("*")) {
            const QStringList columns = starColumns(table.captured(1));
            if (columns.isEmpty())
                return {};
            names << columns;
        } else if (const auto a = alias.match(item); a.hasMatch()) {
            names << a.captured(1);
        } else if (const auto c = column.match(item); c.hasMatch()) {
            names << c.captured(1);
        } else {
            names << item;
        }
    }
    return names;
}

} // namespace vantrel
