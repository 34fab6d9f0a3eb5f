#include "transaction.h"

#include "unhandlederror.h"

#include <QString>
#include <sqlite3.h>

namespace vantrel {

Transaction::Transaction(sqlite3 *db) : m_db(db)
{
    // Immediate: the write lock is taken now, so no other connection comes between its statements.
    execute("begin immediate");
}

Transaction::~Transaction()
{
    if (m_open)
        sqlite3_exec(m_db, "rollback", nullptr, nullptr, nullptr); // gone already if the engine ended it
}

void Transaction::execute(const char *sql)
{
    char *error = nullptr;
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, &error) != SQLITE_OK) {
        const QString message = QString::fromUtf8(error ? error : sqlite3_errmsg(m_db));
        sqlite3_free(error);
        throw UnhandledError(message);
    }
}

void Transaction::commit()
{
    execute("commit");
    m_open = false;
}

} // namespace vantrel
