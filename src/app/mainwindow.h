#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include "widgets/workspace.h"

class QLabel;
class QMdiArea;
class QMdiSubWindow;

namespace vantrel {

class Screen;
struct Services;

// The main window: the menu tree and the screens inside it, each kind at most once.
class MainWindow final : public QMainWindow, public Workspace {
    Q_OBJECT
public:
    explicit MainWindow(Services &services, QWidget *parent = nullptr);
    // The window of a closed year (CLOSEDYEAR names it): the year in the title, and only the
    // screens that read, with whatever of theirs would write disabled.
    MainWindow(Services &services, const QString &closedYear, QWidget *parent);
    ~MainWindow() override;

    // Brings the screen of a menu entry to the front, making it first if it is not open.
    // Returns null for an entry whose screen the program does not have.
    Screen *openScreen(const QString &entryName) override;
    // Puts a new screen into its own window under a menu entry's name and makes it active; the
    // window takes ownership and deletes it when closed.
    void showScreen(const QString &entryName, Screen *screen);
    // Closes every screen at once (their windows are gone when it returns).
    void closeAllScreens() override;
    // The open screen of a menu entry, or null.
    Screen *screen(const QString &entryName) const;
    QMdiArea *mdiArea() const { return m_mdiArea; }
    QWidget *activeScreen() const override;
    // Puts what the start found (an upgrade, a series near its end) or a command's word on the
    // status line.
    void showNotice(const QString &text) override;
    QWidget *widget() override { return this; }
    // The year's window shows its date-wise sales register first; a file that cannot be opened
    // is said in a message box.
    void openPastYear(const QString &name, const QString &file) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildMenus(bool readOnly);
    void buildStatusLine();
    void fitWindow(QMdiSubWindow *window, int step);
    void subWindowActivated(QMdiSubWindow *window);

    Services &m_services;
    QString m_closedYear;
    QMdiArea *m_mdiArea;
    QLabel *m_notice = nullptr;
    QLabel *m_printed = nullptr;
    QLabel *m_keys = nullptr;
    QHash<QString, QPointer<QMdiSubWindow>> m_open;
    // The screen whose activation ran last. A message box closing, or the program's window
    // regaining focus, re-activates the same child: that is not a new activation.
    QPointer<QMdiSubWindow> m_lastActive;
};

} // namespace vantrel
