#pragma once

#include <QVector>

namespace vantrel {

class Screen;
struct Services;

// Makes a screen of one kind; null for a menu entry whose screen the program does not have yet.
using ScreenFactory = Screen *(*)(Services &services);

class Workspace;
// Does what a menu entry does when it opens no screen (closing the year).
using MenuCommand = void (*)(Workspace &workspace, Services &services);

struct MenuEntry {
    const char *name;    // the command's name, the action's objectName ("rcpt")
    const char *caption; // exactly as the menu shows it ("Receipt")
    ScreenFactory make = nullptr;
    MenuCommand run = nullptr;      // instead of a screen
    bool readsOnly = false;         // offered for a closed year too
    const char *shortcut = nullptr; // a key of its own ("F12"); the system's entries have none

    // The entry offered in a closed year's window too: what it does only reads.
    MenuEntry readingOnly() const
    {
        MenuEntry entry = *this;
        entry.readsOnly = true;
        return entry;
    }
    // The entry with a key of its own.
    MenuEntry withKey(const char *key) const
    {
        MenuEntry entry = *this;
        entry.shortcut = key;
        return entry;
    }
};

struct Menu {
    const char *name;
    const char *caption;
    QVector<MenuEntry> entries;
};

// The main window's menu tree, in order.
const QVector<Menu> &menuTable();

} // namespace vantrel
