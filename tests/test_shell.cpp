// Start-up, the main window's menu and screens, activation, and what ends the start or a print.
#include "app/mainwindow.h"
#include "app/program.h"
#include "support/testshop.h"
#include "output/lineprinter.h"
#include "widgets/screen.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>

using namespace vantrel;

namespace {

// A screen that counts its activations.
struct ProbeScreen final : Screen {
    explicit ProbeScreen(Services &services) : Screen(services, QStringLiteral("Probe")) {}
    void activated() override { ++activations; }
    int activations = 0;
};

// The program started on a fresh shop directory.
struct RunningProgram {
    test::TestShop shop;
    Program program{shop.directory(), shop.dialogs, shop.clock, [this](const QString &m) { shop.unhandledErrors << m; }};
    MainWindow &window() { return program.window(); }
    QList<QMdiSubWindow *> screens() { return window().mdiArea()->subWindowList(); }
};

} // namespace

class ShellTest : public QObject {
    Q_OBJECT
private slots:
    // Sales alone at the start; the menu tree, the tools last; each entry opens its screen once.
    void theMenuTreeOpensEachScreenOnceAndEachControlIsNamed()
    {
        RunningProgram p;
        QVERIFY(p.window().isVisible());
        QCOMPARE(p.window().windowTitle(), QStringLiteral("Vantrel"));
        QCOMPARE(p.screens().size(), 1);
        QCOMPARE(p.window().mdiArea()->activeSubWindow()->widget()->windowTitle(), QStringLiteral("Sales"));
        QStringList tree;
        for (QAction *menuAction : p.window().menuBar()->actions()) {
            tree << menuAction->menu()->objectName() + "=" + menuAction->menu()->title();
            for (QAction *entry : menuAction->menu()->actions()) {
                const bool command = entry->objectName().contains(QRegularExpression("year|export"));
                if (!command)
                    entry->trigger();
                tree << "  " + entry->objectName() + "=" + entry->text() + (command ? "" : " > " + p.window().mdiArea()->activeSubWindow()->windowTitle());
            }
        }
        QCOMPARE(tree.join('|'), "bill=File|  rcpt=Receipt > Receipt|  led=Ledger > Ledger|trans=Transaction|  sale=Sales > Sales|"
                                 "  pur=Purchase > Purchase|  pm=Product master > Product Master|  sm=Party master > Suppliermaster|"
                                 "  cmpmst=Company Master > Company Master|srpt=Sales Report|  db=Day Book > Sales-Day Book|"
                                 "  dwsrpt=DateWise Sales Report > Sales Datewise Report|  prsale=Partywise sales Report > Partywise Sales Report|"
                                 "prpt=Purchase Report|  pdb=Day Book > Purchase Day Book|  dtprpt=DateWise Purchase Report > Purchase Datewise Report|"
                                 "  prpur=Partywise Purchase Report > Partywise Purchase Report|stk=Stock|  stksum=Stock Summary > Stock|tools=Tools|"
                                 "  closeyear=Close Year...|  pastyear=Past Year...|  editlog=Edit Log > Edit Log|  exportxlsx=Export to Excel|"
                                 "  exportcsv=Export to CSV|  lastprint=Last Printout > Last Printout|  settings=Settings... > Settings|"
                                 "  datefix=Correct a Date... > Correct a Date");
        // Each control of each screen that takes the keyboard has a name, a labelled one its label's text.
        for (QMdiSubWindow *window : p.screens()) {
            const QWidget *screen = window->widget();
            for (QWidget *control : screen->findChildren<QWidget *>()) {
                bool named = qobject_cast<QLineEdit *>(control) || qobject_cast<QAbstractItemView *>(control)
                             || qobject_cast<QAbstractSpinBox *>(control) || qobject_cast<QComboBox *>(control);
                for (QWidget *w = control->parentWidget(); w != screen; w = w->parentWidget()) // a date's or a drop-down's editor is its own
                    named = named && !qobject_cast<QAbstractSpinBox *>(w) && !qobject_cast<QComboBox *>(w);
                QVERIFY2(!named || control->focusPolicy() == Qt::NoFocus || !control->accessibleName().isEmpty(),
                         qPrintable(screen->windowTitle() + ": " + control->metaObject()->className()));
            }
            for (QLabel *label : screen->findChildren<QLabel *>())
                if (label->buddy())
                    QCOMPARE(label->buddy()->accessibleName(), label->text().remove(QLatin1Char('&')));
        }
        QPointer<Screen> sales = p.window().screen("sale");
        p.window().findChild<QAction *>("sale")->trigger();
        QCOMPARE(p.screens().size(), 18);
        QCOMPARE(p.window().screen("sale"), sales.data());
        QVERIFY(p.shop.unhandledErrors.isEmpty());
        // A closed screen is unloaded; the next choice makes it anew.
        QTest::mouseClick(sales->findChild<QPushButton *>("cmdclose"), Qt::LeftButton);
        QTRY_VERIFY(sales.isNull());
        QCOMPARE(p.screens().size(), 17);
        QVERIFY(p.window().openScreen("sale"));
    }

    // A box closing, or the window regaining focus, gives null and the same screen: no activation.
    void activationRunsOnlyWhenTheActiveScreenChanges()
    {
        RunningProgram p;
        auto *a = new ProbeScreen(p.shop.services()), *b = new ProbeScreen(p.shop.services());
        p.window().showScreen("a", a);
        p.window().showScreen("b", b);
        QMdiSubWindow *active = p.window().mdiArea()->activeSubWindow();
        emit p.window().mdiArea()->subWindowActivated(nullptr);
        emit p.window().mdiArea()->subWindowActivated(active);
        QCOMPARE(QList<int>({a->activations, b->activations}), QList<int>({1, 1}));
        p.window().mdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(a->parentWidget()));
        QCOMPARE(QList<int>({a->activations, b->activations}), QList<int>({2, 1}));
    }

    // No window without the database; a printer that cannot be opened or written ends the print.
    void aMissingDatabaseOrPrinterEndsWithAMessage()
    {
        test::TestShop shop;
        QVERIFY(QFile::remove(shop.file()) && QDir(shop.directory()).mkdir("LPT1"));
        const int windowsBefore = int(QApplication::topLevelWidgets().size());
        QCOMPARE(test::errorOf([&] { Program(shop.directory(), shop.dialogs, shop.clock, [](const QString &) {}); }),
                 QStringLiteral("Cannot open the database file %1/vantrel.accdb: unable to open database file").arg(shop.directory()));
        QCOMPARE(int(QApplication::topLevelWidgets().size()), windowsBefore);
        QVERIFY(test::errorOf([&] { LinePrinter(shop.directory()).print("LOST\r\n"); }).startsWith("Cannot open the printer " + shop.directory() + "/LPT1"));
        // A printer on a full disk: the print ends with the reason, not a file cut short in silence.
        QVERIFY(QDir(shop.directory()).rmdir("LPT1") && QFile::link("/dev/full", shop.directory() + "/LPT1"));
        QCOMPARE(test::errorOf([&] { LinePrinter(shop.directory()).print("LOST\r\n"); }),
                 "Cannot write to the printer " + shop.directory() + "/LPT1: No space left on device");
    }
};

VANTREL_TEST_MAIN(ShellTest)
#include "test_shell.moc"
