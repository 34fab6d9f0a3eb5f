#include "shopcheck.h"

#include "care/editlogcheck.h"
#include "data/records.h"
#include "data/serverschema.h"
#include "sqlitefile.h"
#include "unreadabledates.h"

#include <QSet>

namespace vantrel {

namespace {

// The two kinds of document: lines in one table, their header in another, joined on the number
// (text in the lines, a number in the header) and the mode.
struct Document {
    const char *lines;
    const char *headers;
    const char *number;
    const char *noun;
};

const Document Sales = {"sales", "salesmain", "invoice", "sales invoice"};
const Document Purchase = {"purchase", "purchasemain", "pono", "purchase voucher"};

// A header's total is its lines' sum, kept in single or double precision; a trace differs by a
// whole line.
const char *TotalsDiffer = "abs(%1 - l.amount) > 0.005 + 1e-5 * abs(l.amount)";

// What the check's statements write each engine's way: a Number column's value as arithmetic
// reads it, the sum of one (0 for none), a join the planner is not to reorder.
struct CheckForms {
    bool server;
    QString figure(const QString &column) const { return server ? column + QStringLiteral("__n") : column; }
    QString total(const QString &column) const { return server ? QStringLiteral("coalesce(sum(%1__n), 0)").arg(column) : "total(" + column + ")"; }
    QString leading(const QString &column) const { return server ? "vleading(" + column + ")" : column + " + 0"; }
    QString crossJoin() const { return server ? QStringLiteral("join") : QStringLiteral("cross join"); }
};

// A value as the report shows it: a long one (a whole paragraph typed into a field) is cut.
QString shown(const QString &value)
{
    const int most = 60;
    return value.size() <= most ? value : value.left(most) + QStringLiteral("... (%1 characters)").arg(value.size());
}

QString naming(const Document &doc, const QString &number, const QString &mode)
{
    return QStringLiteral("%1 %2 (%3)").arg(QLatin1String(doc.noun), shown(number), shown(mode));
}

QString figure(double value)
{
    return doubleText(value);
}

class Checker {
public:
    Checker(BooksReader &books, CheckDepth depth, CheckReport &report) : m_file(books), m_forms{books.onServer()}, m_depth(depth), m_report(report) {}

    // The server keeps its own pages; the file's are read here.
    void pages()
    {
        if (m_forms.server) { // the server keeps its pages; how its texts compare is the books'
            if (const QString unfit = unfitCharacterType(m_file.firstColumn(serverCharacterTypeStatement()).value(0)); !unfit.isEmpty())
                trace(QStringLiteral("The books' database compares texts unlike the file"), unfit);
            return;
        }
        if (m_depth == CheckDepth::Quick)
            return;
        const QStringList lines = m_file.firstColumn(QStringLiteral("pragma integrity_check"));
        m_report.pagesChecked = true;
        if (lines != QStringList{QStringLiteral("ok")})
            m_report.damage = lines;
    }

    // Lines grouped by document and joined to their header: a group without one, a header
    // whose total is not its lines' sum, a number and mode held by two headers; then headers
    // that no group reached, which have no lines at all.
    void documents(const Document &doc)
    {
        const QString lines = QLatin1String(doc.lines), headers = QLatin1String(doc.headers), number = QLatin1String(doc.number);
        // Every line of the documents looked at, grouped by document.
        QString headerFilter;
        QString groups = QStringLiteral("select %1 as number, trans, %3 as amount, count(*) as lines, max(rowid) as lastrow "
                                        "from %2 group by %1, trans")
                             .arg(number, lines, m_forms.total(QStringLiteral("amount")));
        if (m_depth == CheckDepth::Quick) {
            headerFilter = QStringLiteral(" where rowid > (select max(rowid) from %1) - %2").arg(headers).arg(QuickTailRows / 10);
            QStringList recent;
            m_file.eachRow("select " + number + ", trans from " + headers + headerFilter, [&](const BookRow &row) {
                recent << QStringLiteral("(%1, %2)").arg(sqlLiteral(figure(row.number(0))), sqlLiteral(row.text(1)));
            });
            groups = QStringLiteral("select s.%1 as number, s.trans, %5 as amount, count(*) as lines, max(s.rowid) as lastrow "
                                    "from (select %1, trans from %2 where rowid > (select max(rowid) from %2) - %3%4) k "
                                    "%6 %2 s on s.%1 = k.%1 and s.trans = k.trans group by s.%1, s.trans")
                         .arg(number, lines)
                         .arg(QuickTailRows)
                         .arg(recent.isEmpty() ? QString() : " union values " + recent.join(QLatin1Char(',')),
                              m_forms.total(QStringLiteral("s.amount")), m_forms.crossJoin());
        }

        QSet<qint64> reached;
        QString previous;
        const QString netamt = m_forms.figure(QStringLiteral("m.netamt"));
        m_file.eachRow(QStringLiteral("select l.number, l.trans, l.amount, l.lines, l.lastrow, m.rowid, %5, m.party, %1 "
                                      "from (%2) l left join %3 m on m.%4 = l.number and m.trans = l.trans")
                           .arg(QString::fromLatin1(TotalsDiffer).arg(netamt), groups, headers, number, netamt),
                       [&](const BookRow &row) {
                           const QString name = naming(doc, row.text(0), row.text(1));
                           const QString lineCount = QStringLiteral("%1 line(s) adding up to %2, the last in row %3")
                                                         .arg(row.integer(3))
                                                         .arg(figure(row.number(2)))
                                                         .arg(row.integer(4));
                           if (row.isNull(5)) {
                               trace(QStringLiteral("Lines without their %1").arg(QLatin1String(doc.noun)), name + ": " + lineCount);
                               return;
                           }
                           reached.insert(row.integer(5));
                           if (name == previous)
                               trace(QStringLiteral("A %1 number used twice").arg(QLatin1String(doc.noun)),
                                     QStringLiteral("%1: another header in row %2").arg(name).arg(row.integer(5)));
                           previous = name;
                           if (row.integer(8))
                               trace(QStringLiteral("A %1 whose total differs from its lines").arg(QLatin1String(doc.noun)),
                                     QStringLiteral("%1 of %2: total %3 in row %4; %5")
                                         .arg(name, shown(row.text(7)), figure(row.number(6)))
                                         .arg(row.integer(5))
                                         .arg(lineCount));
                       });

        m_file.eachRow("select rowid, " + number + ", trans, party, " + m_forms.figure(QStringLiteral("netamt")) + " from " + headers + headerFilter,
                       [&](const BookRow &row) {
            if (reached.contains(row.integer(0)) || hasLines(doc, row.number(1), row.text(2)))
                return;
            trace(QStringLiteral("A %1 without lines").arg(QLatin1String(doc.noun)),
                  QStringLiteral("%1 of %2: total %3 in row %4")
                      .arg(naming(doc, figure(row.number(1)), row.text(2)), shown(row.text(3)), figure(row.number(4)))
                      .arg(row.integer(0)));
        });
    }

    // A receipt or payment is inserted, then given its balance.
    void ledger()
    {
        m_file.eachRow(QStringLiteral("select rowid, type, refno, dat, ac, %1, %2 from ledger where balance is null")
                           .arg(m_forms.figure(QStringLiteral("debit")), m_forms.figure(QStringLiteral("credit"))),
                       [&](const BookRow &row) {
                           const bool payment = row.text(1).compare(QLatin1String("payment"), Qt::CaseInsensitive) == 0;
                           trace(QStringLiteral("A ledger entry without its balance"),
                                 QStringLiteral("%1 %2 of %3, %4, %5 %6, in row %7")
                                     .arg(shown(row.text(1)), shown(row.text(2)), shown(row.text(3)), shown(row.text(4)), payment ? "debit" : "credit",
                                          figure(row.number(payment ? 5 : 6)))
                                     .arg(row.integer(0)));
                       });
    }

    // A product's first purchase inserts its stock row, then gives it its stock. Every other
    // write sets a row's figures in one statement. Bought less sold is no rule: a cancel writes
    // its two figures as whole numbers, so a fractional quantity leaves them apart.
    void stock()
    {
        m_file.eachRow(QStringLiteral("select rowid, prodname, %1, %2 from stock where stk is null")
                           .arg(m_forms.figure(QStringLiteral("totqty")), m_forms.figure(QStringLiteral("usedqty"))),
                       [&](const BookRow &row) {
            trace(QStringLiteral("A stock row without its stock"),
                  QStringLiteral("%1: bought %2, sold %3, in row %4")
                      .arg(shown(row.text(1)), figure(row.number(2)), figure(row.number(3)))
                      .arg(row.integer(0)));
        });
    }

    // Files made before the numbering guards can hold a text where a number belongs; the
    // server's numbering columns hold numbers alone.
    void numbering()
    {
        if (m_forms.server)
            return;
        static const char *const columns[][2] = {{"salesmain", "invoice"}, {"purchasemain", "pono"}, {"ledger", "refno"},
                                                 {"suppliermaster", "ID"}, {"productmaster", "psrno"}};
        for (const auto &column : columns) {
            const QString table = QLatin1String(column[0]), name = QLatin1String(column[1]);
            m_file.eachRow("select rowid, " + name + " from " + table + " where typeof(" + name + ") not in ('integer', 'real')",
                           [&](const BookRow &row) {
                               trace(QStringLiteral("A number that is not a number"),
                                     QStringLiteral("%1.%2 in row %3 holds %4")
                                         .arg(table, name)
                                         .arg(row.integer(0))
                                         .arg(row.isNull(1) ? QStringLiteral("nothing") : "'" + shown(row.text(1)) + "'"));
                           });
        }
    }

    // A date kept as it was typed, which no date-wise register can read.
    void dates()
    {
        for (const UnreadableDate &row : unreadableDates(m_file))
            trace(QStringLiteral("A date no register can read"),
                  QStringLiteral("%1: date '%2' cannot be read; every date-wise register fails on it").arg(row.document, shown(row.date)));
    }

private:

    // Whether any line carries the header's number; compared as numbers, as the join does.
    bool hasLines(const Document &doc, double number, const QString &mode)
    {
        const QString sql = QStringLiteral("select count(*) from %1 where trans = %2 and %3 = %4")
                                .arg(QLatin1String(doc.lines), sqlLiteral(mode), QLatin1String(doc.number), sqlLiteral(figure(number)));
        if (m_file.number(sql) > 0)
            return true;
        return m_file.number(QStringLiteral("select count(*) from %1 where trans = %2 and %3 = %4")
                                 .arg(QLatin1String(doc.lines), sqlLiteral(mode), m_forms.leading(QLatin1String(doc.number)), figure(number)))
            > 0;
    }

    void trace(const QString &kind, const QString &rows) { m_report.traces << Finding{kind, rows}; }

    BooksReader &m_file;
    CheckForms m_forms;
    CheckDepth m_depth;
    CheckReport &m_report;
};

} // namespace

QString CheckReport::text() const
{
    QString text;
    if (!pagesChecked && !server) // the server looks after its own pages
        text += QStringLiteral("The pages of the file were not read (the full check reads them).\n");
    else if (!server && damage.isEmpty())
        text += QStringLiteral("The file's pages are sound.\n");
    for (const QString &line : damage)
        text += "The file is damaged: " + line + "\n";
    for (const Finding &finding : traces)
        text += finding.kind + ": " + finding.rows + "\n";
    for (const Finding &finding : notices)
        text += "Noted: " + finding.kind + ": " + finding.rows + "\n";
    if (clean())
        text += QStringLiteral("No trace of an interrupted action.\n");
    else
        text += QStringLiteral("Found %1 thing(s) to look at. Nothing was changed; a repair is the operator's decision.\n")
                    .arg(damage.size() + traces.size());
    return text;
}

CheckReport checkShopFile(const QString &path, CheckDepth depth)
{
    const std::unique_ptr<BooksReader> books = openBooksReader(path);
    if (auto *file = dynamic_cast<SqliteFile *>(books.get())) {
        file->execute(QStringLiteral("pragma query_only = 1"));
        // The join from the newest lines to all lines of their documents goes through the line
        // table's index; an automatic one would read the whole table to build.
        file->execute(QStringLiteral("pragma automatic_index = 0"));
    }
    CheckReport report;
    report.server = books->onServer();
    BooksReader &file = *books;
    Checker checker(file, depth, report);
    checker.pages();
    checker.documents(Sales);
    checker.documents(Purchase);
    checker.ledger();
    checker.stock();
    checker.numbering();
    checker.dates();
    checkEditLog(file, depth, report);
    return report;
}

} // namespace vantrel
