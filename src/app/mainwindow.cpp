#include "mainwindow.h"

#include "closedmenukeys.h"
#include "menutable.h"
#include "pastyearwindow.h"
#include "data/unhandlederror.h"
#include "messageboxdialogs.h"
#include "widgets/screen.h"
#include "widgets/untakenaltkeys.h"

#include <QEvent>
#include <algorithm>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QShortcut>
#include <QStatusBar>

namespace vantrel {

MainWindow::MainWindow(Services &services, QWidget *parent) : MainWindow(services, QString(), parent) {}

MainWindow::MainWindow(Services &services, const QString &closedYear, QWidget *parent)
    : QMainWindow(parent), m_services(services), m_closedYear(closedYear), m_mdiArea(new QMdiArea(this))
{
    setWindowTitle(closedYear.isEmpty() ? QString::fromLatin1(ProgramTitle)
                                        : QStringLiteral("%1 - the year %2 (closed: read only)").arg(QLatin1String(ProgramTitle), closedYear));
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdiArea);
    // The area changes size when the window manager maximises the main window, after the
    // start-up screen is already open: every window is fitted again then.
    m_mdiArea->viewport()->installEventFilter(this);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &MainWindow::subWindowActivated);
    buildMenus(!closedYear.isEmpty());
    new ClosedMenuKeys(this);
    new UntakenAltKeys(this);
    buildStatusLine();
    if (!closedYear.isEmpty())
        showNotice(QStringLiteral("The year %1 is closed: its books can be read and printed, not written.").arg(closedYear));
    m_services.openScreen = [this](const QString &entryName) { return screen(entryName); };
    m_services.showPrinted = [this](const QString &text) { m_printed->setText(text); };
    resize(1280, 720);
}

// The screens' windows close while the main window is being destroyed; their activations must
// not reach it then.
MainWindow::~MainWindow()
{
    disconnect(m_mdiArea, nullptr, this, nullptr);
    m_mdiArea->viewport()->removeEventFilter(this);
    m_services.openScreen = nullptr;
    m_services.showPrinted = nullptr;
}

// The status line only shows: what the start found, what went to the printer last, and the keys
// of the active screen. Labels take no focus, so the keyboard never lands there.
void MainWindow::buildStatusLine()
{
    m_notice = new QLabel(this);
    m_notice->setObjectName(QStringLiteral("notice"));
    m_notice->hide();
    statusBar()->addWidget(m_notice, 1);
    m_printed = new QLabel(this);
    m_printed->setObjectName(QStringLiteral("lastPrinted"));
    m_keys = new QLabel(this);
    m_keys->setText(Screen::menuKeys());
    m_printed->setContentsMargins(4, 0, 12, 0);
    statusBar()->addWidget(m_printed, 1);
    statusBar()->addPermanentWidget(m_keys);
    statusBar()->setSizeGripEnabled(false);
}

void MainWindow::buildMenus(bool readOnly)
{
    for (const Menu &menu : menuTable()) {
        if (readOnly && std::none_of(menu.entries.begin(), menu.entries.end(), [](const MenuEntry &e) { return e.readsOnly; }))
            continue;
        QMenu *qmenu = menuBar()->addMenu(QString::fromLatin1(menu.caption));
        qmenu->setObjectName(QString::fromLatin1(menu.name));
        for (const MenuEntry &entry : menu.entries) {
            if (readOnly && !entry.readsOnly)
                continue;
            QAction *action = qmenu->addAction(QString::fromLatin1(entry.caption));
            const QString name = QString::fromLatin1(entry.name);
            action->setObjectName(name);
            if (entry.shortcut) {
                action->setShortcut(QKeySequence(QLatin1String(entry.shortcut)));
                addAction(action); // its key works wherever the keyboard is in the window, menu closed
            }
            if (entry.run)
                connect(action, &QAction::triggered, this, [this, run = entry.run] { run(*this, m_services); });
            else
                connect(action, &QAction::triggered, this, [this, name] { openScreen(name); });
        }
    }
    // F10 opens the first menu with its first entry selected, as Right and Left open the others,
    // so that every screen is reachable from the keyboard; the captions keep no accelerator
    // letters of their own.
    auto *menuKey = new QShortcut(QKeySequence(Qt::Key_F10), this);
    connect(menuKey, &QShortcut::activated, this, [this] {
        QAction *first = menuBar()->actions().constFirst();
        menuBar()->setActiveAction(first);
        first->menu()->setActiveAction(first->menu()->actions().constFirst());
    });
}

void MainWindow::closeAllScreens()
{
    m_open.clear();
    for (QMdiSubWindow *window : m_mdiArea->subWindowList()) {
        m_mdiArea->removeSubWindow(window);
        delete window;
    }
}

QWidget *MainWindow::activeScreen() const
{
    QMdiSubWindow *active = m_mdiArea->activeSubWindow();
    return active ? active->widget() : nullptr;
}

void MainWindow::openPastYear(const QString &name, const QString &file)
{
    try {
        auto *year = new PastYear(name, file, m_services, *this);
        year->window()->openScreen(QStringLiteral("dwsrpt"));
    } catch (const UnhandledError &error) {
        m_services.dialogs.inform(error.message());
    }
}

void MainWindow::showNotice(const QString &text)
{
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
}

Screen *MainWindow::screen(const QString &entryName) const
{
    const QMdiSubWindow *window = m_open.value(entryName);
    return window ? static_cast<Screen *>(window->widget()) : nullptr;
}

Screen *MainWindow::openScreen(const QString &entryName)
{
    if (QMdiSubWindow *window = m_open.value(entryName)) {
        m_mdiArea->setActiveSubWindow(window);
        return static_cast<Screen *>(window->widget());
    }
    ScreenFactory make = nullptr;
    for (const Menu &menu : menuTable())
        for (const MenuEntry &entry : menu.entries)
            if (entryName == QLatin1String(entry.name))
                make = entry.make;
    if (!make)
        return nullptr;
    Screen *screen = make(m_services);
    if (!m_closedYear.isEmpty())
        screen->makeReadOnly();
    showScreen(entryName, screen);
    return screen;
}

void MainWindow::showScreen(const QString &entryName, Screen *screen)
{
    screen->setObjectName(entryName);
    QMdiSubWindow *window = m_mdiArea->addSubWindow(screen);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(screen->windowTitle());
    m_open.insert(entryName, window);
    window->show();
    fitWindow(window, 24 * int(m_mdiArea->subWindowList().size() - 1));
    m_mdiArea->setActiveSubWindow(window);
}

// A screen of lists takes the whole area; a short form keeps the size it asks for, STEP pixels
// down and right, as far as there is room. Either way the window lies wholly inside the area.
void MainWindow::fitWindow(QMdiSubWindow *window, int step)
{
    const auto *screen = static_cast<Screen *>(window->widget());
    const QSize area = m_mdiArea->viewport()->size();
    if (screen->fillsArea()) {
        window->setGeometry(QRect(QPoint(0, 0), area));
        return;
    }
    const QSize frame = window->size() - screen->size();
    window->resize((screen->sizeHint() + frame).boundedTo(area));
    window->move(qMax(0, qMin(step, area.width() - window->width())), qMax(0, qMin(step, area.height() - window->height())));
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_mdiArea->viewport() && event->type() == QEvent::Resize) {
        for (QMdiSubWindow *window : m_mdiArea->subWindowList())
            if (!window->isMaximized() && !window->isMinimized())
                fitWindow(window, window->x());
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::subWindowActivated(QMdiSubWindow *window)
{
    if (!window && m_mdiArea->subWindowList().isEmpty())
        m_keys->setText(Screen::menuKeys());
    if (!window || window == m_lastActive)
        return;
    m_lastActive = window;
    auto *screen = static_cast<Screen *>(window->widget());
    m_keys->setText(screen->keysHint());
    screen->guard([screen] { screen->activated(); });
}

} // namespace vantrel
