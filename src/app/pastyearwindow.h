#pragma once

#include "data/database.h"
#include "widgets/services.h"

#include <QObject>

namespace vantrel {

class MainWindow;

// A closed year open for reading: its own read-only connection and services, and its window (a
// window of its own, owned by the program's), which takes them along when it is closed.
class PastYear final : public QObject {
public:
    // Throws UnhandledError when the file cannot be opened.
    PastYear(const QString &name, const QString &file, Services &current, MainWindow &owner);
    MainWindow *window() const { return m_window; }

private:
    Database m_db;
    Services m_services;
    MainWindow *m_window;
};

} // namespace vantrel
