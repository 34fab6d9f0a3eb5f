#include "listexport.h"

#include "widgets/grid.h"

namespace vantrel {

ExportResult exportGrid(Grid &grid, const QString &folder, const QString &name, ExportFormat format)
{
    const int rows = grid.rows(), cols = grid.cols();
    const int first = grid.hasFixedFirstColumn() ? 1 : 0;
    ListCells cells;
    cells.reserve(rows);
    for (int row = 0; row < rows; ++row) {
        QVector<ListCell> line;
        for (int col = first; col < cols; ++col)
            line << (row == 0 ? ListCell{ListCell::Text, grid.text(row, col), 0, {}} : ListCell::of(grid.text(row, col), grid.holdsNumber(row, col)));
        cells << line;
    }
    return writeList(cells, folder, name, format);
}

} // namespace vantrel
