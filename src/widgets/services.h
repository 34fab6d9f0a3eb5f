#pragma once

#include <QString>
#include <functional>

namespace vantrel {

class Clock;
class Database;
class Dialogs;
class Screen;

// What every screen is given: the shop's database, the message boxes, today's date, the
// program's own directory (where the printer file lies) and the handler of unhandled errors.
// The program owns all of them for its whole life; screens only borrow them.
struct Services {
    Database &db;
    Dialogs &dialogs;
    const Clock &clock;
    QString programDirectory;
    // Shows the message of an error that ended an action. In the program it does not return: the
    // program ends. In tests it records the message and the action is over.
    std::function<void(const QString &)> unhandledError;
    // The open screen of a menu entry ("sale"), or null; set by the main window while it lives.
    // The one direct hand-off between screens (a register's click) goes through it.
    std::function<Screen *(const QString &entryName)> openScreen;
    // Tells the operator what went to the printer (the status line); set by the main window.
    std::function<void(const QString &text)> showPrinted;
    // Why this copy cannot be sure it is alone with the shop's file now (another copy has it open,
    // or the file that tells cannot be made); empty, or unset, when it is alone.
    std::function<QString()> whyTheShopIsShared;
};

} // namespace vantrel
