#pragma once

#include "app/mainwindow.h"
#include "support/testshop.h"

#include <QHash>
#include <QRandomGenerator>

namespace vantrel {
class Grid;
}

namespace vantrel::test {

using Rows = QList<QStringList>;

// A case written as steps, one a line or joined by "; ", run on a desk with the shared shop: what the
// operator does on the screen opened last, then what the screen, the messages and the file must show. A
// step the runner does not know fails the case, as does the first failing check; either names the line.
// TARGET is an on-screen label, a grid's role or a button's caption.
//   either: file STEP / server STEP (on that engine alone: what the other has not, or writes
//     another way)
//   acting: open ENTRY (the menu entry's name) | window TITLE | start ENTRY MODE [PARTY] | reopen ENTRY
//     MODE NUMBER | today MM/DD/YYYY (the clock's) | day MM/DD/YYYY (the next date asked; "-" drops it)
//     | add CODE QTY [RATE] | type/set TARGET=TEXT (key by key, at once) | clear TARGET |
//     key TARGET=KEY | focus TARGET | click TARGET (a mouse click) | cell GRID=ROW,COL | pick
//     FIELD=TEXT>LIST | choose BOX=TEXT | date PICKER=MM/DD/YYYY | yes | no | option N (the next list's
//     pick, from 0) | force CAPTION (enables it) | exec SQL | setting KEY=VALUE | cups QUEUE (a print
//     system of the test's own whose queue is a file) | cut N (the write after the next N fails before
//     it reaches the file, as if the program died there) | lose N (the server's connections end
//     before the write after the next N) | lost (they end now) | lock / unlock (another program holds the file's write
//     lock, lets it go)
//   seeing: field TARGET=TEXT | grid GRID=ROW,COL=TEXT | rows GRID=COUNT (with the heading) | list
//     GRID=a,b | c,d (every data row, any order) | top GRID=a,b (the first rows, "*" any cell) | width
//     GRID=HEADING=TWIPS | focused TARGET | enabled/shown TARGET=yes|no | buttons B1,B2 (the screen's
//     enabled buttons, all of them) | said M1 | M2 (the messages
//     since the last said; "..." any text) | sql QUERY => a,b | c,d | fails SQL => MESSAGE | same FAST
//     => STATED (a faster form gives what the statement as it stands gives) | shell SQL => OUTPUT (the
//     engine's shell: sqlite3, or psql's messages alone) | check F1 | F2 (the full check's findings, then its notes; quick: the quick
//     check's; checks: both) | printed L1 | L2 | line N=TEXT (of the printout) | status TEXT | warning
//     TEXT (the start's, of a series near its end) | ended MESSAGE (the program ended so, and goes on
//     here) | pdftext FILE / saved FILE (exports/FILE is the printout) | queued (the printout reached
//     the queue raw) | exports GRID=K,K (to a workbook and a CSV file by the Tools keys, read back cell
//     by cell; K: n number, d date, s text) | changed TABLE +N -N ~N, ... (rows inserted, deleted,
//     updated since the last changed or the start; every table not named is unchanged)
struct StepDesk {
    // The operator's desk: the shared shop and the main window, shown and active, no screen open.
    StepDesk() : shop(TestShop::Filled) { show(); }
    explicit StepDesk(const QString &directory, const QString &books = {}) : shop(directory, books) { show(); }
    TestShop shop;
    MainWindow window{shop.services()};

    void run(const QString &steps);
    // Whether an action may end the program: the rest of the steps are then not taken, and the
    // case goes on. Otherwise an end must be the next step's "ended".
    bool mayEnd = false;
    // Whether the rest of the steps (and of a step's own, such as "start") are left once the
    // program has said the books' server stopped answering, as an operator looks at the screen
    // again before keying on.
    bool stopsWhenServerStops = false;
    // Whether the program has said the books' server stopped answering since the last run()
    // began, and the steps are to stop for it.
    bool stoppedForServer() const;
    // The screen opened last.
    QWidget *screen() const { return m_screen; }
    // An action of the operator's picked at random, as steps: a sale (cash or credit) of two
    // lines or a purchase of one, of CODES for one of PARTIES, a receipt, or a document of the
    // file settled or cancelled.
    QString randomAction(QRandomGenerator &random, const QStringList &parties, const QStringList &codes,
                         const QStringList &quantities = {"1", "2.5", "0.75", "3", "1.5"});

    // Every row of the shop's tables, its fields by table and rowid.
    using Snapshot = QHash<QString, QHash<qint64, QStringList>>;
    Snapshot snapshot();

private:
    void show();
    qsizetype m_runStart = 0; // the boxes shown before this run
    void step(const QString &verb, const QString &argument);
    // The widget of the screen opened last (or of the window): a button by its caption, any
    // other by its accessible name. None ends the case.
    QWidget *target(const QString &name);
    template <typename W> W *as(const QString &name) { return qobject_cast<W *>(target(name)); }
    // The printer file's text.
    QString printout() const;
    QString exported(Grid *grid, const QStringList &kinds);
    QString described(const QString &sql);
    QString m_queueOutput;

    QWidget *m_screen = nullptr;
    int m_said = 0;
    int m_cut = -1; // writes still to go before the cut, or none
    int m_lose = -1; // writes still to go before the server's connections are ended, or none
    std::unique_ptr<SqliteFile> m_lock; // another program's hold on the file
    Snapshot m_before;
    MainWindow *m_window = &window; // the window the steps act in
};

} // namespace vantrel::test
