#pragma once

#include <QByteArray>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

namespace vantrel {

// A statement straight on the engine, finalized when it goes out of scope; not prepared (and
// every step an error) when the SQL fails to compile.
class EngineStatement {
public:
    EngineStatement(sqlite3 *db, const QString &sql);
    ~EngineStatement();
    EngineStatement(const EngineStatement &) = delete;
    EngineStatement &operator=(const EngineStatement &) = delete;
    bool prepared() const { return m_statement != nullptr; }
    sqlite3_stmt *get() const { return m_statement; }
    // SQLITE_ROW, SQLITE_DONE or an error code.
    int step();
    // Column COLUMN of the row it stands on: its text (null for a null) and as an integer.
    QByteArray text(int column) const;
    qint64 integer(int column) const;

private:
    sqlite3_stmt *m_statement = nullptr;
};

} // namespace vantrel
