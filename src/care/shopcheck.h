#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace vantrel {

// What an interrupted action leaves behind, one finding per trace, with the rows named.
struct Finding {
    QString kind; // "A sales line without its invoice", ...
    QString rows; // which rows, in the shop's own words and numbers
};

struct CheckReport {
    bool server = false; // the books on a server, which keeps its own pages
    bool pagesChecked = false;
    QStringList damage; // the engine's integrity check, when it found anything
    QList<Finding> traces;
    QList<Finding> notices; // worth knowing, not wrong: changes the edit log shows another hand made

    bool clean() const { return damage.isEmpty() && traces.isEmpty(); }
    // The report in plain words, one line per finding, ending in a line that sums it up.
    QString text() const;
};

// How far the check reads. The full check reads every page (the engine's integrity check) and
// every row. The quick one, run before each start, skips the page check and reads the newest
// rows of the line and header tables (an interrupted action's rows are the newest, except for
// an old document that was re-opened or cancelled) and all of the ledger and stock rows.
enum class CheckDepth { Quick, Full };

// How many of the newest line and header rows the quick check reads.
constexpr int QuickTailRows = 5000;

// Looks at a shop file without changing it: the engine's integrity check, sales and purchase
// lines without their document, documents whose total differs from their lines or whose
// number is used twice, ledger rows without a balance, stock rows whose stock is not bought
// less sold, numbering columns holding anything but a number, and dates no register can read. Throws UnhandledError when
// the file cannot be opened or read.
// PATH may name the books on a server (see serverconnection.h): the same findings, read in one
// snapshot of the books, without the file's pages.
CheckReport checkShopFile(const QString &path, CheckDepth depth);

} // namespace vantrel
