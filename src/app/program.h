#pragma once

#include "widgets/services.h"

#include <memory>

namespace vantrel {

class MainWindow;

// The running program: the shop's database, opened once, and the main window with the Sales
// screen open inside it. The connection lives as long as the program.
class Program {
public:
    // Opens the books (vantrel.accdb in the program's directory, or the server the settings name)
    // and shows the main window with the Sales screen. Throws UnhandledError with the database's
    // message when they cannot be opened; no window is made then.
    Program(const QString &programDirectory, Dialogs &dialogs, const Clock &clock,
            std::function<void(const QString &)> unhandledError);
    ~Program();

    MainWindow &window() const { return *m_window; }
    Database &db() const { return *m_db; }
    Services &services() { return m_services; }

private:
    std::unique_ptr<Database> m_db;
    Services m_services;
    std::unique_ptr<MainWindow> m_window;
};

} // namespace vantrel
