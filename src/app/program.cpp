#include "program.h"

#include "data/connectionstring.h"
#include "data/database.h"
#include "data/programsettings.h"
#include "mainwindow.h"

namespace vantrel {

Program::Program(const QString &programDirectory, Dialogs &dialogs, const Clock &clock,
                 std::function<void(const QString &)> unhandledError)
    : m_db(std::make_unique<Database>(ProgramSettings::read().booksIn(programDirectory))),
      m_services{*m_db, dialogs, clock, programDirectory, std::move(unhandledError), {}, {}, {}},
      m_window(std::make_unique<MainWindow>(m_services))
{
    m_window->showMaximized();
    m_window->openScreen(QStringLiteral("sale"));
}

Program::~Program() = default;

} // namespace vantrel
