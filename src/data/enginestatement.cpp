#include "enginestatement.h"

#include <sqlite3.h>

namespace vantrel {

EngineStatement::EngineStatement(sqlite3 *db, const QString &sql)
{
    if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &m_statement, nullptr) != SQLITE_OK)
        m_statement = nullptr;
}

EngineStatement::~EngineStatement() { sqlite3_finalize(m_statement); }

int EngineStatement::step() { return m_statement ? sqlite3_step(m_statement) : SQLITE_ERROR; }

QByteArray EngineStatement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return bytes ? QByteArray(bytes, sqlite3_column_bytes(m_statement, column)) : QByteArray();
}

qint64 EngineStatement::integer(int column) const { return sqlite3_column_int64(m_statement, column); }

} // namespace vantrel
