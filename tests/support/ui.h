#pragma once

#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QString>
#include <QTest>
#include <QWidget>

namespace vantrel {
class Grid;
}

namespace vantrel::test {

// What the main window's status line says was printed last.
QString lastPrinted(const QMainWindow &window);

// The widget under ROOT whose accessible name (its on-screen label) is NAME; fails the test
// when there is none.
QWidget *named(QWidget *root, const QString &name);
QLineEdit *field(QWidget *root, const QString &label);
Grid *grid(QWidget *root, const QString &role);
QPushButton *button(QWidget *root, const QString &caption);

// Types into a field as the operator would: focus, then key by key.
void type(QWidget *root, const QString &label, const QString &text);
void press(QWidget *root, const QString &label, Qt::Key key);
void click(QWidget *root, const QString &caption);
// Types TEXT into the search field LABEL, then takes the list's current row with Enter in the list.
void pickFromList(QWidget *root, const QString &label, const QString &text, const QString &list);
// Keys a line's item: its code and Enter in CODELABEL, the rate when one is given, the quantity.
void keyItem(QWidget *root, const QString &codeLabel, const QString &code, const QString &qty, const QString &rate = {});
// A mouse click on a cell; row 0 clicks the heading of the column.
void clickCell(Grid *grid, int row, int col);

} // namespace vantrel::test
