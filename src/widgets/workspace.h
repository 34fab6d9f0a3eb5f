#pragma once

#include <QString>

class QWidget;

namespace vantrel {

class Screen;

// What a menu command may ask of the window it runs in; the main window is one. The commands
// live with their screens and never see the window itself.
class Workspace {
public:
    virtual ~Workspace() = default;
    // Brings the screen of a menu entry ("sale") to the front, making it first if it is not open;
    // null for an entry that has no screen.
    virtual Screen *openScreen(const QString &entryName) = 0;
    // Closes every screen at once (their windows are gone when it returns).
    virtual void closeAllScreens() = 0;
    // The screen the operator works in now, or null.
    virtual QWidget *activeScreen() const = 0;
    // Says TEXT on the status line.
    virtual void showNotice(const QString &text) = 0;
    // The window, as the parent of a command's own windows (a progress window).
    virtual QWidget *widget() = 0;
    // Opens a closed year's books (its NAME, its FILE), read only, in a window of its own.
    virtual void openPastYear(const QString &name, const QString &file) = 0;
};

} // namespace vantrel
