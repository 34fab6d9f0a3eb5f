#include "pastyearcommand.h"

#include "app/mainwindow.h"
#include "data/database.h"
#include "data/unhandlederror.h"
#include "widgets/dialogs.h"
#include "widgets/services.h"
#include "yearclose.h"

#include <memory>

namespace vantrel {

namespace {

// A closed year open for reading: its own read-only connection and services, and its window (a
// window of its own, owned by the program's), which takes them along when it is closed.
class PastYear final : public QObject {
public:
    PastYear(const QString &name, const QString &file, Services &current, MainWindow &owner)
        : m_db(QStringLiteral("Data Source=%1;").arg(file), Database::Access::ReadOnly),
          m_services{m_db, current.dialogs, current.clock, current.programDirectory, current.unhandledError, {}, {}, {}},
          m_window(new MainWindow(m_services, name, &owner))
    {
        m_window->setWindowFlag(Qt::Window);
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        setParent(m_window);
        m_window->showMaximized();
    }
    MainWindow *window() const { return m_window; }

private:
    Database m_db;
    Services m_services;
    MainWindow *m_window;
};

} // namespace

void pastYearCommand(MainWindow &window, Services &services)
{
    const QList<QPair<QString, QString>> years = closedYears(services.db.fileName());
    if (years.isEmpty()) {
        services.dialogs.inform(QStringLiteral("No year has been closed yet."));
        return;
    }
    QStringList names;
    for (const auto &year : years)
        names << year.first;
    const int chosen = services.dialogs.choose(QStringLiteral("Which closed year's books?"), names);
    if (chosen < 0)
        return;
    try {
        auto *year = new PastYear(years[chosen].first, years[chosen].second, services, window);
        year->window()->openScreen(QStringLiteral("dwsrpt"));
    } catch (const UnhandledError &error) {
        services.dialogs.inform(error.message());
    }
}

} // namespace vantrel
