#include "gridmodel.h"

#include "data/recordset.h"
#include "data/unhandlederror.h"

#include <QElapsedTimer>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <limits>

namespace vantrel {

namespace {
const int Screenful = 100;
// Reading the rest waits until the grid has been left alone this long, then goes on in slices
// short enough that a key pressed meanwhile is not kept waiting.
const int QuietMilliseconds = 1000;
const qint64 IdleSliceNanoseconds = 4'000'000;

} // namespace

GridModel::GridModel(QObject *parent) : QAbstractTableModel(parent)
{
    m_idleFetch.setSingleShot(true);
    connect(&m_idleFetch, &QTimer::timeout, this, &GridModel::fetchWhileIdle);
}

GridModel::~GridModel()
{
    stopReading();
}

void GridModel::setLeadingColumn(bool leading)
{
    beginResetModel();
    m_leading = leading;
    endResetModel();
}

bool GridModel::bind(Database &db, const QString &sql, BindMode mode)
{
    PendingQuery pending = db.startQuery(sql); // throws before anything changes
    const bool hasRow = pending.query().next();
    if (!hasRow && pending.query().lastError().isValid())
        throw UnhandledError(pending.failureMessage());
    if (!hasRow && mode == OnlyWithRows)
        return false;
    beginResetModel();
    stopReading();
    m_db = &db;
    m_sql = sql;
    m_pending = std::move(pending);
    m_headings.clear();
    m_headings = m_pending.columnNames();
    m_numberCells.clear();
    m_text.clear();
    m_cellEnds.clear();
    m_loaded = 0;
    if (hasRow) {
        appendCurrentRow();
        m_loaded = 1;
        m_reading = true;
    } else {
        m_pending.close();
    }
    try { // during an action every row, so that its connection is free for the next statement
        fetch(m_pending.readsInAction() ? std::numeric_limits<int>::max() : Screenful - 1, -1, false);
    } catch (...) {
        endResetModel();
        throw;
    }
    endResetModel();
    return true;
}

bool GridModel::refresh()
{
    if (!m_db || m_sql.isEmpty())
        return false;
    return bind(*m_db, m_sql, Always);
}

// The row the query stands on, each value's text as displayText() gives it, written straight
// into the buffer.
void GridModel::appendCurrentRow()
{
    m_pending.appendRow(int(m_headings.size()), m_text, m_cellEnds, m_numberCells);
}

QString GridModel::text(int row, int queryColumn) const
{
    return QString::fromUtf8(utf8(row, queryColumn));
}

QByteArrayView GridModel::utf8(int row, int queryColumn) const
{
    const qsizetype cell = qsizetype(row) * m_headings.size() + queryColumn;
    const quint32 begin = cell == 0 ? 0 : m_cellEnds[cell - 1];
    return QByteArrayView(m_text.constData() + begin, m_cellEnds[cell] - begin);
}

Recordset GridModel::queryAlongside(const QString &sql)
{
    if (!m_db)
        throw UnhandledError(QStringLiteral("a grid that was never bound was asked for its total"));
    return m_db->queryAlongside(m_pending, sql);
}

void GridModel::clear()
{
    beginResetModel();
    stopReading();
    m_sql.clear();
    m_headings.clear();
    m_numberCells.clear();
    m_text.clear();
    m_cellEnds.clear();
    m_loaded = 0;
    endResetModel();
}

int GridModel::columns() const
{
    return int(m_headings.size()) + (m_leading ? 1 : 0);
}

QString GridModel::heading(int column) const
{
    const int index = column - (m_leading ? 1 : 0);
    return index >= 0 && index < m_headings.size() ? m_headings[index] : QString();
}

QString GridModel::cell(int row, int column)
{
    return QString::fromUtf8(cellUtf8(row, column));
}

QByteArrayView GridModel::cellUtf8(int row, int column)
{
    if (row >= m_loaded && m_reading)
        fetch(row + 1 - m_loaded);
    const int index = column - (m_leading ? 1 : 0);
    if (row < 0 || row >= m_loaded || index < 0 || index >= m_headings.size())
        return {};
    return utf8(row, index);
}

// The view hears of the rows once, however many there are.
void GridModel::readToEnd()
{
    fetch(std::numeric_limits<int>::max());
}

// Reads up to COUNT more rows, for no longer than MAXNANOSECONDS when that is not negative; at
// the end of the result the query is closed. A row the database fails to produce closes the
// query and throws UnhandledError. While rows are left, reading goes on once the grid has been
// left alone (a time-limited read goes on at once: it is the idle reading itself).
void GridModel::fetch(int count, qint64 maxNanoseconds, bool announce)
{
    if (!m_reading)
        return;
    QElapsedTimer clock;
    clock.start();
    int added = 0;
    bool atEnd = false;
    QString failure;
    while (added < count) {
        if (maxNanoseconds >= 0 && added % 64 == 63 && clock.nsecsElapsed() > maxNanoseconds)
            break;
        if (!m_pending.stepRow(failure)) {
            atEnd = true;
            break;
        }
        appendCurrentRow();
        ++added;
    }
    if (added > 0) {
        if (announce)
            beginInsertRows({}, m_loaded, m_loaded + added - 1);
        m_loaded += added;
        if (announce)
            endInsertRows();
    }
    if (atEnd)
        stopReading();
    else
        m_idleFetch.start(maxNanoseconds >= 0 ? 0 : QuietMilliseconds);
    if (!failure.isEmpty())
        throw UnhandledError(failure);
}

void GridModel::fetchWhileIdle()
{
    try {
        fetch(std::numeric_limits<int>::max(), IdleSliceNanoseconds);
    } catch (const UnhandledError &error) {
        emit readFailed(error.message());
    }
}

void GridModel::stopReading()
{
    m_idleFetch.stop();
    m_reading = false;
    m_pending.close();
}

int GridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_loaded;
}

int GridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns();
}

QVariant GridModel::data(const QModelIndex &index, int role) const
{
    const int column = index.column() - (m_leading ? 1 : 0);
    if (column < 0 || index.row() >= m_loaded || column >= m_headings.size())
        return {};
    if (role == Qt::TextAlignmentRole) {
        const bool number = m_numberCells[size_t(index.row()) * size_t(m_headings.size()) + size_t(column)];
        return QVariant::fromValue(Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft));
    }
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    return text(index.row(), column);
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    return heading(section);
}

bool GridModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && m_reading;
}

void GridModel::fetchMore(const QModelIndex &parent)
{
    if (parent.isValid())
        return;
    try {
        fetch(Screenful);
    } catch (const UnhandledError &error) {
        emit readFailed(error.message());
    }
}

} // namespace vantrel
