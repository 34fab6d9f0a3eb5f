#pragma once

#include "support/desk.h"

#include <QHash>

namespace vantrel {
class Grid;
}

namespace vantrel::test {

// A case written as steps, one a line, run on a desk with the shared shop: what the operator
// does on the screen opened last, then what the screen, the messages and the file must show.
// A step the runner does not know fails the case, as does the first check that fails; either
// names the line. TARGET is an on-screen label, a grid's role or a button's caption.
//
//   open ENTRY               the menu entry of that name ("sale", "pur", "rcpt", ...)
//   window TITLE             the steps after act in the program's window so titled
//   option N                 the operator's pick (N, from 0) in the next list to choose from
//   type TARGET=TEXT         key by key into the field      set TARGET=TEXT   its text at once
//   choose BOX=TEXT          a combo box's entry          date PICKER=MM/DD/YYYY
//   clear TARGET             key TARGET=KEY (Return, Escape, Down, Up, Left, Right, Tab, F9, Space, a letter)
//   focus TARGET             click CAPTION   tap TARGET (a mouse click)   cell GRID=ROW,COL
//   pick FIELD=TEXT>LIST     types TEXT, then Enter in the list
//   yes / no                 the answer to the next question
//   field TARGET=TEXT        the field's text               grid GRID=ROW,COL=TEXT
//   rows GRID=COUNT          with the heading row           focused TARGET
//   list GRID=a,b | c,d      every data row, in any order   line N=TEXT   the printout's line N
//   top GRID=a,b | c,d       the first data rows, in order; "*" stands for any cell
//   width GRID=HEADING=TWIPS the width of the column so headed
//   enabled CAPTION=yes|no   shown TARGET=yes|no
//   said M1 | M2             the messages since the last said (none when empty); "..." in a
//                            message stands for any text
//   sql QUERY => a,b | c,d   the rows of a query (empty cells as nothing)
//   check F1 | F2            the full check's findings, then what it notes ("..." as for said)
//   printed LINE | LINE      the printer file's lines
//   changed TABLE +N -N ~N, ...   rows inserted, deleted, updated since the last changed (or the
//                            start); every table not named is unchanged
//   exec SQL                 a statement of the case's own    force CAPTION   enables a button
//   fails SQL => MESSAGE     the statement fails with the database's message
//   shell SQL => OUTPUT      the sqlite3 shell on the file: what it prints, lines joined by " | "
//   status TEXT              what the status line says was printed
//   ended MESSAGE            the program ended with the database's message (and goes on here)
//   setting KEY=VALUE        the program's setting (each case starts from none)
//   pdftext FILE             the text of exports/FILE (a PDF) is the printout's, line by line
//   saved FILE               exports/FILE holds the printer file's bytes
//   cups QUEUE               a print system of the test's own with a queue QUEUE (a file)
//   queued                   what reached that queue is the printer file's bytes, sent raw
//   exports GRID=K,K...      the list to a workbook and a CSV file by the Tools keys, read back by
//                            spreadsheet readers: every cell as shown, each data column of kind
//                            K (n number, d date, s text)
struct StepDesk : Desk {
    StepDesk() : Desk(TestShop::Filled) {}
    void run(const QString &steps);
    // The screen opened last.
    QWidget *screen() const { return m_screen; }

private:
    using Snapshot = QHash<QString, QHash<qint64, QString>>;
    Snapshot snapshot();
    void step(const QString &verb, const QString &argument);
    QWidget *target(const QString &name);
    // The printer file's text.
    QString printout() const;
    QString exported(Grid *grid, const QStringList &kinds);
    QString m_queueOutput;

    QWidget *m_screen = nullptr;
    int m_said = 0;
    Snapshot m_before;
    MainWindow *m_window = &window; // the window the steps act in
    bool m_marked = false;
};

} // namespace vantrel::test
