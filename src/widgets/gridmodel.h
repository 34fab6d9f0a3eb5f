#pragma once

#include "data/database.h"

#include <QAbstractTableModel>
#include <QSqlQuery>
#include <QStringList>
#include <QTimer>
#include <QVector>

namespace vantrel {

// The rows of the query a grid is bound to, as the texts the grid shows. The first screenful is
// read when the grid is bound, the rest a chunk at a time while the program is idle, or at once
// when someone walks the rows or the database is about to write.
class GridModel final : public QAbstractTableModel, public PendingReader {
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
    // Shows nothing at all: no columns, no rows.
    void clear();

    int columns() const;
    QString heading(int column) const;
    // Loaded rows; readToEnd() first for all of them.
    int loadedRows() const { return int(m_rows.size()); }
    // The text of a data row (0-based), loading rows up to it; empty beyond the last row.
    QString cell(int row, int column);
    void readToEnd() override;

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
    void fetch(int count, bool announce = true);
    void fetchWhileIdle();
    QStringList currentRow() const;
    void stopReading();

    Database *m_db = nullptr;
    QString m_sql;
    QSqlQuery m_query;
    bool m_reading = false;
    bool m_leading = false;
    QStringList m_headings;
    QVector<bool> m_numeric; // per query column: the engine gives numbers there
    QVector<QStringList> m_rows;
    QTimer m_idleFetch;
};

} // namespace vantrel
