#include "mainwindow.h"

#include "menutable.h"
#include "widgets/messageboxdialogs.h"
#include "widgets/screen.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QShortcut>

namespace vantrel {

MainWindow::MainWindow(Services &services, QWidget *parent)
    : QMainWindow(parent), m_services(services), m_mdiArea(new QMdiArea(this))
{
    setWindowTitle(QString::fromLatin1(ProgramTitle));
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &MainWindow::subWindowActivated);
    buildMenus();
    m_services.openScreen = [this](const QString &entryName) { return screen(entryName); };
    resize(1280, 720);
}

// The screens' windows close while the main window is being destroyed; their activations must
// not reach it then.
MainWindow::~MainWindow()
{
    disconnect(m_mdiArea, nullptr, this, nullptr);
    m_services.openScreen = nullptr;
}

void MainWindow::buildMenus()
{
    for (const Menu &menu : menuTable()) {
        QMenu *qmenu = menuBar()->addMenu(QString::fromLatin1(menu.caption));
        qmenu->setObjectName(QString::fromLatin1(menu.name));
        for (const MenuEntry &entry : menu.entries) {
            QAction *action = qmenu->addAction(QString::fromLatin1(entry.caption));
            const QString name = QString::fromLatin1(entry.name);
            action->setObjectName(name);
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
    const QSize wanted = screen->size();
    window->show();
    // A window as large as the screen asks to be, as far as the main window has room, each new
    // one a step down and right of the last, and always wholly inside.
    const QSize frame = window->size() - screen->size();
    const QSize area = m_mdiArea->viewport()->size();
    window->resize((wanted + frame).boundedTo(area));
    const int step = 24 * int(m_mdiArea->subWindowList().size() - 1);
    window->move(qMax(0, qMin(step, area.width() - window->width())), qMax(0, qMin(step, area.height() - window->height())));
    m_mdiArea->setActiveSubWindow(window);
}

void MainWindow::subWindowActivated(QMdiSubWindow *window)
{
    if (!window || window == m_lastActive)
        return;
    m_lastActive = window;
    auto *screen = static_cast<Screen *>(window->widget());
    screen->guard([screen] { screen->activated(); });
}

} // namespace vantrel
