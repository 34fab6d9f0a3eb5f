#include "grid.h"

#include "currentcelldelegate.h"
#include "gridmodel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPointer>

namespace vantrel {

Grid::Grid(const QString &accessibleName, QWidget *parent) : QTableView(parent), m_model(new GridModel(this))
{
    setAccessibleName(accessibleName);
    setModel(m_model);
    setItemDelegate(new CurrentCellDelegate(this));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    showWhereTheKeyboardIs();
    setTabKeyNavigation(false);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionsClickable(true);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &Grid::headingClicked);
    connect(this, &QAbstractItemView::pressed, this, [this] { m_headingCurrent = false; });
    connect(this, &QAbstractItemView::clicked, this, [this] {
        emit clicked();
        emit chosen();
    });
    connect(m_model, &GridModel::readFailed, this, &Grid::readFailed);
}

// The operator must see where Enter will go: a grid with the keyboard has a frame in the
// highlight colour and its current row in the highlight; without the keyboard the frame is plain
// and the current row a pale grey. Inside the row the current cell has a frame of its own.
void Grid::showWhereTheKeyboardIs()
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    QPalette colours = palette();
    colours.setColor(QPalette::Inactive, QPalette::Highlight, colours.color(QPalette::Active, QPalette::Midlight));
    colours.setColor(QPalette::Inactive, QPalette::HighlightedText, colours.color(QPalette::Active, QPalette::Text));
    setPalette(colours);
    setStyleSheet(QStringLiteral("QTableView { border: 1px solid palette(mid); }"
                                 "QTableView:focus { border: 2px solid palette(highlight); }"));
}

void Grid::setFixedFirstColumn(bool fixed)
{
    m_fixedFirstColumn = fixed;
    m_model->setLeadingColumn(fixed);
}

void Grid::bind(Database &db, const QString &sql)
{
    m_model->bind(db, sql, GridModel::Always);
    afterBind();
}

bool Grid::bindIfAny(Database &db, const QString &sql)
{
    if (!m_model->bind(db, sql, GridModel::OnlyWithRows))
        return false;
    afterBind();
    return true;
}

Recordset Grid::queryAlongside(const QString &sql)
{
    return m_model->queryAlongside(sql);
}

QString Grid::statement() const
{
    return m_model->statement();
}

void Grid::refresh()
{
    if (m_model->refresh())
        afterBind();
}

int Grid::sizeHintForColumn(int column) const
{
    if (column < 0 || column >= m_model->columnCount())
        return -1;
    ensurePolished();
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QHeaderView *rows = verticalHeader();
    const int count = rows->count(), top = qMax(0, rows->visualIndexAt(0));
    const int most = rows->resizeContentsPrecision() < 0 ? count : rows->resizeContentsPrecision();
    if (m_textWidths.size() > 50000) // a long register's distinct numbers: the cache stays small
        m_textWidths.clear();
    int widest = 0, measured = 0;
    const auto measure = [&](int visual) {
        const int row = rows->logicalIndex(visual);
        if (rows->isSectionHidden(row))
            return;
        const QModelIndex index = m_model->index(row, column);
        const QString text = index.data().toString();
        auto width = m_textWidths.constFind(text);
        if (width == m_textWidths.cend())
            width = m_textWidths.insert(text, itemDelegateForIndex(index)->sizeHint(option, index).width());
        widest = qMax(widest, *width);
        ++measured;
    };
    for (int visual = top; visual < count && measured < most; ++visual)
        measure(visual);
    for (int visual = top - 1; visual >= 0 && measured < most; --visual)
        measure(visual);
    return widest + (showGrid() ? 1 : 0);
}

void Grid::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_textWidths.clear();
    QTableView::changeEvent(event);
}

void Grid::afterBind()
{
    resizeColumnsToContents();
    applyWidths();
    if (m_model->loadedRows() > 0) {
        setCurrentIndex(m_model->index(0, 0));
    } else {
        m_headingCurrent = true;
        m_headingColumn = 0;
    }
}

void Grid::clear()
{
    m_model->clear();
    m_headingCurrent = true;
    m_headingColumn = 0;
}

int Grid::rows()
{
    m_model->readToEnd();
    return m_model->loadedRows() + 1;
}

int Grid::cols() const
{
    return m_model->columns();
}

bool Grid::holdsNumber(int row, int col)
{
    text(row, col); // the row loaded
    const QVariant alignment = m_model->data(m_model->index(row - 1, col), Qt::TextAlignmentRole);
    return row > 0 && (alignment.value<Qt::Alignment>() & Qt::AlignRight);
}

QString Grid::text(int row, int col)
{
    if (row == 0)
        return m_model->heading(col);
    return m_model->cell(row - 1, col);
}

QByteArrayView Grid::utf8(int row, int col)
{
    return row == 0 ? QByteArrayView() : m_model->cellUtf8(row - 1, col);
}

int Grid::row() const
{
    return m_headingCurrent || !currentIndex().isValid() ? 0 : currentIndex().row() + 1;
}

int Grid::col() const
{
    if (m_headingCurrent || !currentIndex().isValid())
        return m_headingColumn;
    return currentIndex().column();
}

void Grid::setCurrentCell(int row, int col)
{
    if (row <= 0) {
        m_headingCurrent = true;
        m_headingColumn = col;
        return;
    }
    m_model->cell(row - 1, col); // loads the rows up to it
    setCurrentIndex(m_model->index(row - 1, col));
}

void Grid::setColumnWidthTwips(int col, int twips)
{
    m_widthsTwips.insert(col, twips);
    applyWidths();
}

void Grid::setColumnWidthTwips(const QString &heading, int twips)
{
    m_headingWidthsTwips.insert(heading.toLower(), twips);
    applyWidths();
}

void Grid::applyWidths()
{
    for (auto it = m_widthsTwips.cbegin(); it != m_widthsTwips.cend(); ++it)
        setColumnWidth(it.key(), it.value() * logicalDpiX() / 1440);
    for (int col = 0, cols = m_model->columns(); col < cols; ++col) {
        const auto width = m_headingWidthsTwips.constFind(m_model->heading(col).toLower());
        if (width != m_headingWidthsTwips.cend())
            setColumnWidth(col, *width * logicalDpiX() / 1440);
    }
}

void Grid::headingClicked(int section)
{
    setCurrentCell(0, section);
    emit clicked();
    emit chosen();
}

void Grid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (current.isValid())
        m_headingCurrent = false;
}

void Grid::keyPressEvent(QKeyEvent *event)
{
    const QPointer<Grid> alive(this);
    const bool wasHidden = isHidden();
    const bool hadFocus = hasFocus();
    emit keyPressed(event->key());
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (alive)
            emit chosen();
        return;
    }
    // A handler that took the choice hid the grid or gave the focus away: the key is spent.
    if (alive && isHidden() == wasHidden && hasFocus() == hadFocus)
        QTableView::keyPressEvent(event);
}

} // namespace vantrel
