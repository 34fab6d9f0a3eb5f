#include "exportcommand.h"

#include "data/programsettings.h"
#include "listexport.h"
#include "widgets/grid.h"
#include "widgets/services.h"
#include "widgets/workspace.h"

#include <QApplication>
#include <QDateEdit>
#include <QDir>

namespace vantrel {

namespace {

// The list to export on SCREEN: the grid the keyboard is in, else the first one showing rows.
Grid *listOf(QWidget *screen)
{
    for (QWidget *focus = QApplication::focusWidget(); focus; focus = focus->parentWidget())
        if (auto *grid = qobject_cast<Grid *>(focus); grid && screen->isAncestorOf(grid))
            return grid;
    const QList<Grid *> grids = screen->findChildren<Grid *>();
    for (Grid *grid : grids)
        if (grid->isVisible() && grid->rows() > 1)
            return grid;
    return nullptr;
}

// "Sales Datewise Report 2026-11-01 to 2026-11-30": the screen, the list when the screen has
// more than one, and the dates the screen shows.
QString nameOf(QWidget *screen, Grid *grid)
{
    QString name = screen->windowTitle();
    int visibleGrids = 0;
    for (Grid *other : screen->findChildren<Grid *>())
        visibleGrids += other->isVisible() ? 1 : 0;
    if (visibleGrids > 1)
        name += QStringLiteral(" - ") + grid->accessibleName();
    QStringList dates;
    for (QDateEdit *date : screen->findChildren<QDateEdit *>())
        if (date->isVisible())
            dates << date->date().toString(Qt::ISODate);
    if (!dates.isEmpty())
        name += QLatin1Char(' ') + dates.join(QStringLiteral(" to "));
    return name;
}

void exportActiveList(Workspace &workspace, const Services &services, ExportFormat format)
{
    QWidget *active = workspace.activeScreen();
    Grid *grid = active ? listOf(active) : nullptr;
    if (!grid) {
        workspace.showNotice(QStringLiteral("Nothing was exported: this screen shows no list with rows."));
        return;
    }
    const ExportResult result = exportGrid(*grid, ProgramSettings::read().exportFolderIn(services.programDirectory), nameOf(active, grid), format);
    workspace.showNotice(result.failure.isEmpty()
                          ? QStringLiteral("Exported %1 row(s) to %2").arg(result.rows).arg(QDir::toNativeSeparators(result.path))
                          : QStringLiteral("Nothing was exported: %1").arg(result.failure));
}

} // namespace

void exportToWorkbookCommand(Workspace &workspace, Services &services)
{
    exportActiveList(workspace, services, ExportFormat::Workbook);
}

void exportToCsvCommand(Workspace &workspace, Services &services)
{
    exportActiveList(workspace, services, ExportFormat::Csv);
}

} // namespace vantrel
