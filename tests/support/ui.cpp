#include "ui.h"

#include "widgets/grid.h"

#include <QHeaderView>
#include <QLabel>

namespace vantrel::test {

QWidget *named(QWidget *root, const QString &name)
{
    const auto widgets = root->findChildren<QWidget *>();
    for (QWidget *w : widgets)
        if (w->accessibleName() == name)
            return w;
    QTest::qFail(qPrintable(QStringLiteral("no widget named \"%1\"").arg(name)), __FILE__, __LINE__);
    return nullptr;
}

QLineEdit *field(QWidget *root, const QString &label)
{
    return qobject_cast<QLineEdit *>(named(root, label));
}

Grid *grid(QWidget *root, const QString &role)
{
    return qobject_cast<Grid *>(named(root, role));
}

QPushButton *button(QWidget *root, const QString &caption)
{
    const auto buttons = root->findChildren<QPushButton *>();
    for (QPushButton *b : buttons)
        if (b->text() == caption)
            return b;
    QTest::qFail(qPrintable(QStringLiteral("no button \"%1\"").arg(caption)), __FILE__, __LINE__);
    return nullptr;
}

void type(QWidget *root, const QString &label, const QString &text)
{
    QLineEdit *target = field(root, label);
    target->setFocus();
    QTest::keyClicks(target, text);
}

void press(QWidget *root, const QString &label, Qt::Key key)
{
    QWidget *target = named(root, label);
    target->setFocus();
    QTest::keyClick(target, key);
}

void click(QWidget *root, const QString &caption)
{
    QTest::mouseClick(button(root, caption), Qt::LeftButton);
}

void pickFromList(QWidget *root, const QString &label, const QString &text, const QString &list)
{
    type(root, label, text);
    grid(root, list)->setFocus();
    QTest::keyClick(grid(root, list), Qt::Key_Return);
}

void keyItem(QWidget *root, const QString &codeLabel, const QString &code, const QString &qty, const QString &rate)
{
    type(root, codeLabel, code);
    press(root, codeLabel, Qt::Key_Return);
    if (!rate.isEmpty())
        field(root, QStringLiteral("Rate"))->setText(rate);
    type(root, QStringLiteral("Qty"), qty);
}

void clickCell(Grid *grid, int row, int col)
{
    if (row == 0) {
        QHeaderView *header = grid->horizontalHeader();
        const QPoint at(header->sectionViewportPosition(col) + header->sectionSize(col) / 2, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
        return;
    }
    const QRect cell = grid->visualRect(grid->model()->index(row - 1, col));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
}

QString lastPrinted(const QMainWindow &window)
{
    return window.findChild<QLabel *>(QStringLiteral("lastPrinted"))->text();
}

} // namespace vantrel::test
