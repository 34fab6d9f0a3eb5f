#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace vantrel {
class Grid;
}

namespace vantrel::test {

// The widget under ROOT whose accessible name (its on-screen label) is NAME, a field, a grid by
// its role, a button by its caption; each fails the test when there is none.
QWidget *named(QWidget *root, const QString &name);
QLineEdit *field(QWidget *root, const QString &label);
Grid *grid(QWidget *root, const QString &role);
QPushButton *button(QWidget *root, const QString &caption);

// Types into a field as the operator would: focus, then key by key.
void type(QWidget *root, const QString &label, const QString &text);
void click(QWidget *root, const QString &caption);
// Types TEXT into the search field LABEL, then takes the list's current row with Enter in the list.
void pickFromList(QWidget *root, const QString &label, const QString &text, const QString &list);
// Keys a line's item: its code and Enter in CODELABEL, the rate when one is given, the quantity.
void keyItem(QWidget *root, const QString &codeLabel, const QString &code, const QString &qty, const QString &rate = {});

} // namespace vantrel::test
