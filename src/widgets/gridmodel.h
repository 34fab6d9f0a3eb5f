#pragma once

#include "data/database.h"

#include <QAbstractTableModel>
#include <QSqlQuery>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <vector>

namespace vantrel {

// The rows of the query a grid is bound to, as the texts the grid shows. The first screenful is
// read when the grid is bound; more as the view scrolls or someone walks the rows; the rest, a
// few milliseconds at a time, once the grid has been left alone for a second. The query reads on
// a connection of its own (PendingQuery): its rows are the file as it was at the bind, and no
// write waits for them.
class GridModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit GridModel(QObject *parent = nullptr);
    ~GridModel() override;

    // With a leading column, column 0 is fixed and empty and the query's columns follow it.
    void setLeadingColumn(bool leading);

    enum BindMode { Always, OnlyWithRows };
    // Replaces the rows with the query's; with OnlyWithRows, only when the query returns a row.
    // Returns whether it replaced them. Throws UnhandledError when the query fails; the grid
    // keeps what it showed then.
    bool bind(Database &db, const QString &sql, BindMode mode);
    // Binds the last query again; false when the model was never bound or was cleared.
    bool refresh();
    // The query whose rows it shows; empty when never bound or cleared.
    const QString &statement() const { return m_sql; }
    // Shows nothing at all: no columns, no rows.
    void clear();

    int columns() const;
    QString heading(int column) const;
    // Loaded rows; readToEnd() first for all of them.
    int loadedRows() const { return m_loaded; }
    // The text of a data row (0-based), loading rows up to it; empty beyond the last row.
    QString cell(int row, int column);
    // The same text as the UTF-8 bytes the model holds: valid until the next rows are read.
    QByteArrayView cellUtf8(int row, int column);
    void readToEnd();
    // Another query read to its end as this one reads (Database::queryAlongside).
    Recordset queryAlongside(const QString &sql);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

signals:
    // Rows read while the program was idle could not be read: the database's message.
    void readFailed(const QString &message);

private:
    void fetch(int count, qint64 maxNanoseconds = -1, bool announce = true);
    void fetchWhileIdle();
    void appendCurrentRow();
    void stopReading();
    QString text(int row, int queryColumn) const;
    QByteArrayView utf8(int row, int queryColumn) const;

    Database *m_db = nullptr;
    QString m_sql;
    PendingQuery m_pending;
    bool m_reading = false;
    bool m_leading = false;
    QStringList m_headings;
    // The loaded rows' texts, row after row, as UTF-8 in one buffer: a hundred thousand rows
    // cost a few megabytes and are freed at once. Cell k (row * columns + column) ends at
    // m_cellEnds[k] and begins where cell k - 1 ends.
    QByteArray m_text;
    QVector<quint32> m_cellEnds;
    std::vector<bool> m_numberCells; // cell k holds a number (shown on the right)
    int m_loaded = 0;
    QTimer m_idleFetch;
};

} // namespace vantrel
