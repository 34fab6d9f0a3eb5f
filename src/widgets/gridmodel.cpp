#include "gridmodel.h"

#include "data/recordset.h"
#include "data/unhandlederror.h"

#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>

namespace vantrel {

namespace {
const int Screenful = 100;
const int IdleChunk = 2000;

// A column the engine declares, or computes, as a number.
bool isNumberType(QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}
} // namespace

GridModel::GridModel(QObject *parent) : QAbstractTableModel(parent)
{
    m_idleFetch.setSingleShot(true);
    m_idleFetch.setInterval(0);
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
    QSqlQuery query = db.startQuery(sql); // throws before anything changes
    const bool hasRow = query.next();
    if (!hasRow && query.lastError().isValid())
        throw UnhandledError(Database::engineMessage(query.lastError()));
    if (!hasRow && mode == OnlyWithRows) {
        query.finish();
        return false;
    }
    beginResetModel();
    stopReading();
    m_db = &db;
    m_sql = sql;
    m_query = std::move(query);
    m_headings.clear();
    m_numeric.clear();
    const QSqlRecord record = m_query.record();
    for (int i = 0; i < record.count(); ++i) {
        m_headings << record.fieldName(i);
        m_numeric << isNumberType(record.field(i).metaType());
    }
    m_rows.clear();
    if (hasRow) {
        m_rows.append(currentRow());
        m_reading = true;
        m_db->addPendingReader(this);
    } else {
        m_query.finish();
    }
    try {
        fetch(Screenful - 1, false);
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

QStringList GridModel::currentRow() const
{
    QStringList row;
    row.reserve(m_headings.size());
    for (int i = 0; i < m_headings.size(); ++i)
        row << displayText(m_query.value(i));
    return row;
}

void GridModel::clear()
{
    beginResetModel();
    stopReading();
    m_sql.clear();
    m_headings.clear();
    m_numeric.clear();
    m_rows.clear();
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
    if (row >= m_rows.size() && m_reading)
        fetch(row + 1 - int(m_rows.size()));
    const int index = column - (m_leading ? 1 : 0);
    if (row < 0 || row >= m_rows.size() || index < 0 || index >= m_rows[row].size())
        return {};
    return m_rows[row][index];
}

void GridModel::readToEnd()
{
    while (m_reading)
        fetch(IdleChunk);
}

// Reads up to COUNT more rows; at the end of the result the statement is closed. A row the
// database fails to produce closes the statement and throws UnhandledError.
void GridModel::fetch(int count, bool announce)
{
    if (!m_reading)
        return;
    QVector<QStringList> more;
    bool atEnd = false;
    for (int n = 0; n < count; ++n) {
        if (!m_query.next()) {
            atEnd = true;
            break;
        }
        more.append(currentRow());
    }
    const QSqlError error = m_query.lastError();
    if (!more.isEmpty()) {
        const int first = int(m_rows.size());
        if (announce)
            beginInsertRows({}, first, first + int(more.size()) - 1);
        m_rows.append(std::move(more));
        if (announce)
            endInsertRows();
    }
    if (atEnd)
        stopReading();
    else
        m_idleFetch.start();
    if (error.isValid())
        throw UnhandledError(Database::engineMessage(error));
}

void GridModel::fetchWhileIdle()
{
    try {
        fetch(IdleChunk);
    } catch (const UnhandledError &error) {
        emit readFailed(error.message());
    }
}

void GridModel::stopReading()
{
    m_idleFetch.stop();
    if (m_reading) {
        m_query.finish();
        m_reading = false;
    }
    m_query = QSqlQuery();
    if (m_db)
        m_db->removePendingReader(this);
}

int GridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int GridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns();
}

QVariant GridModel::data(const QModelIndex &index, int role) const
{
    const int column = index.column() - (m_leading ? 1 : 0);
    if (role == Qt::TextAlignmentRole && column >= 0 && column < m_numeric.size())
        return QVariant::fromValue(Qt::AlignVCenter | (m_numeric[column] ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    if (column < 0 || index.row() >= m_rows.size() || column >= m_rows[index.row()].size())
        return {};
    return m_rows[index.row()][column];
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
    if (!parent.isValid())
        fetchWhileIdle();
}

} // namespace vantrel
