#include "ui.h"

#include "widgets/grid.h"

namespace vantrel::test {

namespace {

template <typename W>
W *find(QWidget *root, const QString &name, const char *what, bool (*bears)(W *, const QString &))
{
    for (W *w : root->findChildren<W *>())
        if (bears(w, name))
            return w;
    QTest::qFail(qPrintable(QStringLiteral("no %1 \"%2\"").arg(QLatin1String(what), name)), __FILE__, __LINE__);
    return nullptr;
}

} // namespace

QWidget *named(QWidget *root, const QString &name)
{
    return find<QWidget>(root, name, "widget named", [](QWidget *w, const QString &n) { return w->accessibleName() == n; });
}

QLineEdit *field(QWidget *root, const QString &label) { return qobject_cast<QLineEdit *>(named(root, label)); }
Grid *grid(QWidget *root, const QString &role) { return qobject_cast<Grid *>(named(root, role)); }

QPushButton *button(QWidget *root, const QString &caption)
{
    return find<QPushButton>(root, caption, "button", [](QPushButton *b, const QString &c) { return b->text() == c; });
}

void type(QWidget *root, const QString &label, const QString &text)
{
    field(root, label)->setFocus();
    QTest::keyClicks(field(root, label), text);
}

void click(QWidget *root, const QString &caption) { QTest::mouseClick(button(root, caption), Qt::LeftButton); }

void pickFromList(QWidget *root, const QString &label, const QString &text, const QString &list)
{
    type(root, label, text);
    grid(root, list)->setFocus();
    QTest::keyClick(grid(root, list), Qt::Key_Return);
}

void keyItem(QWidget *root, const QString &codeLabel, const QString &code, const QString &qty, const QString &rate)
{
    type(root, codeLabel, code);
    QTest::keyClick(field(root, codeLabel), Qt::Key_Return);
    if (!rate.isEmpty())
        field(root, QStringLiteral("Rate"))->setText(rate);
    type(root, QStringLiteral("Qty"), qty);
}

} // namespace vantrel::test
