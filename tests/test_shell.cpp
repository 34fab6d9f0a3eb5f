// Start-up, the main window's menu and screens, activation, the unhandled-error path and the
// line printer.
#include "app/mainwindow.h"
#include "app/program.h"
#include "data/schema.h"
#include "data/unhandlederror.h"
#include "support/testmain.h"
#include "support/testshop.h"
#include "support/ui.h"
#include "widgets/lineprinter.h"
#include "widgets/screen.h"

#include <QAbstractItemView>
#include <QRegularExpression>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QTemporaryDir>

using namespace vantrel;

namespace {

// A screen that counts its activations.
class ProbeScreen final : public Screen {
public:
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
    void startUpShowsOnlyTheSalesScreen()
    {
        RunningProgram p;
        QVERIFY(p.window().isVisible());
        QCOMPARE(p.window().windowTitle(), QStringLiteral("Vantrel"));
        QCOMPARE(p.screens().size(), 1);
        QCOMPARE(p.screens().first()->widget()->windowTitle(), QStringLiteral("Sales"));
        QCOMPARE(p.window().mdiArea()->activeSubWindow(), p.screens().first());
    }

    void startUpWithoutADatabaseShowsNoWindow()
    {
        QTemporaryDir dir;
        test::ScriptedDialogs dialogs;
        test::FixedClock clock;
        const int windowsBefore = int(QApplication::topLevelWidgets().size());
        QString message;
        try {
            Program program(dir.path(), dialogs, clock, [](const QString &) {});
        } catch (const UnhandledError &error) {
            message = error.message();
        }
        QCOMPARE(message, QStringLiteral("Cannot open the database file %1/vantrel.accdb: unable to open database file").arg(dir.path()));
        QCOMPARE(int(QApplication::topLevelWidgets().size()), windowsBefore);
    }

    // The menu tree with the system's names and captions; each entry opens its own screen. The
    // added tools come last.
    void theMenuTreeHasTheSystemsNamesAndCaptionsAndEachEntryItsScreen()
    {
        RunningProgram p;
        QStringList tree;
        for (QAction *menuAction : p.window().menuBar()->actions()) {
            QMenu *menu = menuAction->menu();
            tree << menu->objectName() + "=" + menu->title();
            for (QAction *entry : menu->actions()) {
                if (entry->objectName().contains(QRegularExpression("year|export"))) { // commands, not screens
                    tree << "  " + entry->objectName() + "=" + entry->text();
                    continue;
                }
                entry->trigger();
                tree << "  " + entry->objectName() + "=" + entry->text() + " > " + p.window().mdiArea()->activeSubWindow()->windowTitle();
            }
        }
        QCOMPARE(tree, (QStringList{
                           "bill=File", "  rcpt=Receipt > Receipt", "  led=Ledger > Ledger",
                           "trans=Transaction", "  sale=Sales > Sales", "  pur=Purchase > Purchase", "  pm=Product master > Product Master",
                           "  sm=Party master > Suppliermaster", "  cmpmst=Company Master > Company Master",
                           "srpt=Sales Report", "  db=Day Book > Sales-Day Book", "  dwsrpt=DateWise Sales Report > Sales Datewise Report",
                           "  prsale=Partywise sales Report > Partywise Sales Report",
                           "prpt=Purchase Report", "  pdb=Day Book > Purchase Day Book", "  dtprpt=DateWise Purchase Report > Purchase Datewise Report",
                           "  prpur=Partywise Purchase Report > Partywise Purchase Report",
                           "stk=Stock", "  stksum=Stock Summary > Stock", "tools=Tools", "  closeyear=Close Year...", "  pastyear=Past Year...", "  editlog=Edit Log > Edit Log", "  exportxlsx=Export to Excel", "  exportcsv=Export to CSV",
                           "  lastprint=Last Printout > Last Printout", "  settings=Settings... > Settings"}));
        QCOMPARE(p.screens().size(), 17);
        QVERIFY(p.shop.unhandledErrors.isEmpty());
    }

    // A screen reader names every field, list and date by what the operator sees: each control
    // that takes the keyboard has a name, and a labelled one bears its label's text.
    void everyControlOfEveryScreenIsNamed()
    {
        RunningProgram p;
        for (QAction *entry : p.window().menuBar()->findChildren<QAction *>())
            if (!entry->objectName().isEmpty() && !entry->menu() && entry->parent()->objectName() != QLatin1String("tools"))
                entry->trigger();
        QCOMPARE(p.screens().size(), 14);
        for (QMdiSubWindow *window : p.screens()) {
            const QWidget *screen = window->widget();
            for (QWidget *control : screen->findChildren<QWidget *>()) {
                const bool named = qobject_cast<QLineEdit *>(control) || qobject_cast<QAbstractItemView *>(control)
                                   || qobject_cast<QAbstractSpinBox *>(control) || qobject_cast<QComboBox *>(control);
                bool part = false; // the editor inside a date or a drop-down list is its own
                for (QWidget *w = control->parentWidget(); w != screen; w = w->parentWidget())
                    part = part || qobject_cast<QAbstractSpinBox *>(w) || qobject_cast<QComboBox *>(w);
                if (named && !part && control->focusPolicy() != Qt::NoFocus)
                    QVERIFY2(!control->accessibleName().isEmpty(), qPrintable(screen->windowTitle() + ": " + control->metaObject()->className()));
            }
            for (QLabel *label : screen->findChildren<QLabel *>())
                if (label->buddy())
                    QCOMPARE(label->buddy()->accessibleName(), label->text().remove(QLatin1Char('&')));
        }
    }

    // A second choice brings the same screen back; a closed one is unloaded.
    void aScreenIsOpenedOnceAndUnloadedWhenClosed()
    {
        RunningProgram p;
        QPointer<Screen> sales = p.window().screen("sale");
        p.window().findChild<QAction *>("sale")->trigger();
        QCOMPARE(p.screens().size(), 1);
        QCOMPARE(p.window().screen("sale"), sales.data());
        QTest::mouseClick(sales->findChild<QPushButton *>("cmdclose"), Qt::LeftButton);
        QTRY_VERIFY(sales.isNull());
        QVERIFY(p.screens().isEmpty());
        Screen *fresh = p.window().openScreen("sale");
        QVERIFY(fresh);
        QCOMPARE(p.screens().size(), 1);
    }

    void activationRunsOnlyWhenTheActiveScreenChanges()
    {
        RunningProgram p;
        auto *a = new ProbeScreen(p.shop.services());
        p.window().showScreen("a", a);
        QCOMPARE(a->activations, 1);
        auto *b = new ProbeScreen(p.shop.services());
        p.window().showScreen("b", b);
        QCOMPARE(b->activations, 1);
        // A message box closing, or the window regaining focus: null, then the same child again.
        QMdiSubWindow *active = p.window().mdiArea()->activeSubWindow();
        emit p.window().mdiArea()->subWindowActivated(nullptr);
        emit p.window().mdiArea()->subWindowActivated(active);
        QCOMPARE(b->activations, 1);
        p.window().mdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(a->parentWidget()));
        QCOMPARE(a->activations, 2);
        QCOMPARE(b->activations, 1);
    }

    void aPrinterThatCannotBeOpenedIsAnError()
    {
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir("LPT1"));
        QString message;
        try {
            LinePrinter(dir.path()).print({"LOST"});
        } catch (const UnhandledError &error) {
            message = error.message();
        }
        QVERIFY2(message.startsWith(QStringLiteral("Cannot open the printer %1/LPT1").arg(dir.path())), qPrintable(message));
    }
};

VANTREL_TEST_MAIN(ShellTest)
#include "test_shell.moc"
