#include "pastyearwindow.h"

#include "care/closedyears.h"
#include "mainwindow.h"

namespace vantrel {

PastYear::PastYear(const QString &name, const QString &file, Services &current, MainWindow &owner)
    : m_db(yearBooks(current.db.fileName(), file), Database::Access::ReadOnly),
      m_services{m_db, current.dialogs, current.clock, current.programDirectory, current.unhandledError, {}, {}, {}},
      m_window(new MainWindow(m_services, name, &owner))
{
    m_window->setWindowFlag(Qt::Window);
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    setParent(m_window);
    m_window->showMaximized();
}

} // namespace vantrel
