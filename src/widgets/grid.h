#pragma once

#include "data/recordset.h"

#include <QTableView>

namespace vantrel {

class Database;
class GridModel;

// The list grid of every screen. Row 0 is the heading row and counts in rows(); data rows are
// 1..rows()-1. The current cell is the one a click or the keyboard made current; a click on a
// heading makes row 0 current. A click on a cell or heading, and Enter pressed in the grid, are
// the two ways to choose (chosen()); every other key pressed in it is reported (keyPressed()).
// A key is reported before the grid acts on it, so a handler sees the cell that was current
// when the key went down; typed letters never move the current row (no search by typing).
// Numbers show as the system writes them, on the right of columns of numbers. Widths are in
// twips, 15 to a pixel at 96 dpi.
class Grid final : public QTableView {
    Q_OBJECT
public:
    // The accessible name is the grid's role ("lines grid", "party list").
    explicit Grid(const QString &accessibleName, QWidget *parent = nullptr);

    // A register's grid: column 0 is fixed and empty, the query's columns are 1..n.
    void setFixedFirstColumn(bool fixed);
    bool hasFixedFirstColumn() const { return m_fixedFirstColumn; }

    // Shows the query's rows; the current cell becomes (1, 0) when there is a data row, else
    // (0, 0). Throws UnhandledError when the query fails, leaving the grid as it was.
    void bind(Database &db, const QString &sql);
    // Binds only when the query returns a row; otherwise the grid keeps what it showed.
    // Returns whether it bound.
    bool bindIfAny(Database &db, const QString &sql);
    // A query that belongs with the rows shown (their total), read on the grid's own connection
    // while it still has rows to fetch: the same file, and the pages already at hand. The grid
    // must have been bound.
    Recordset queryAlongside(const QString &sql);
    // Runs the query the grid is bound to again; nothing when it is detached.
    void refresh();
    // The query whose rows the grid shows; empty when it is detached.
    QString statement() const;
    // Detaches the grid from its data: no columns, no rows.
    void clear();

    // Row count with the heading row; reads every row of the result first.
    int rows();
    int cols() const;
    // The text of a cell: row 0 gives the headings; outside the grid, an empty text.
    QString text(int row, int col);
    // A data cell's text (ROW 1 and on) as UTF-8 bytes, valid until the grid reads more rows or
    // is bound again: a long printout is made of them without a text per cell.
    QByteArrayView utf8(int row, int col);
    // Whether a data cell stands on the right as a number does.
    bool holdsNumber(int row, int col);

    int row() const;
    int col() const;
    void setCurrentCell(int row, int col);

    void setColumnWidthTwips(int col, int twips);
    // The width of the column headed HEADING (compared without regard to case), whichever
    // position it has in the query bound now or later; nothing while no column is so headed.
    void setColumnWidthTwips(const QString &heading, int twips);

signals:
    // A mouse click on a cell or a heading.
    void clicked();
    // A click, or Enter pressed in the grid.
    void chosen();
    // Every key pressed in the grid, Enter included.
    void keyPressed(int key);
    // Rows read while the program was idle could not be read: the database's message.
    void readFailed(const QString &message);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyboardSearch(const QString &) override {}
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    // A column fits the widest text of the rows the view measures (from its top row, as many as
    // the rows' heading allows, 1,000 unless set), each distinct text measured by the delegate
    // once: the same dates, parties and figures come back at every activation.
    int sizeHintForColumn(int column) const override;
    void changeEvent(QEvent *event) override;

private:
    void showWhereTheKeyboardIs();
    void headingClicked(int section);
    void afterBind();
    void applyWidths();

    GridModel *m_model;
    bool m_headingCurrent = true;
    bool m_fixedFirstColumn = false;
    int m_headingColumn = 0;
    QHash<int, int> m_widthsTwips;
    QHash<QString, int> m_headingWidthsTwips; // lower-cased heading -> twips
    mutable QHash<QString, int> m_textWidths; // a cell's text -> its width in the grid's font; a font or style change forgets them
};

} // namespace vantrel
