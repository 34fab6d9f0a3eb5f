#include "sqlitefile.h"

#include "data/unhandlederror.h"

#include <QFile>
#include <sqlite3.h>

namespace vantrel {

bool SqliteRow::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

QString SqliteRow::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}

double SqliteRow::number(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

qint64 SqliteRow::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

QString SqliteRow::type(int column) const
{
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER: return QStringLiteral("integer");
    case SQLITE_FLOAT: return QStringLiteral("real");
    case SQLITE_TEXT: return QStringLiteral("text");
    case SQLITE_BLOB: return QStringLiteral("blob");
    default: return QStringLiteral("null");
    }
}

SqliteFile::SqliteFile(const QString &path, Access access) : m_path(path)
{
    const int flags = access == Access::ReadOnly ? SQLITE_OPEN_READONLY
        : access == Access::ReadWrite            ? SQLITE_OPEN_READWRITE
                                                 : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (access != Access::Create && !QFile::exists(path))
        throw UnhandledError(QStringLiteral("%1: there is no such file").arg(path));
    const int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK)
        fail(QStringLiteral("cannot open it"));
    sqlite3_busy_timeout(m_db, BusyMilliseconds);
}

SqliteFile::~SqliteFile()
{
    sqlite3_close(m_db);
}

void SqliteFile::fail(const QString &action) const
{
    const QString message = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QStringLiteral("out of memory");
    throw UnhandledError(QStringLiteral("%1: %2: %3").arg(m_path, action, message));
}

void SqliteFile::execute(const QString &sql)
{
    if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(sql);
}

void SqliteFile::eachRow(const QString &sql, const std::function<void(const SqliteRow &)> &row)
{
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &statement, nullptr) != SQLITE_OK)
        fail(sql);
    int rc;
    try {
        while ((rc = sqlite3_step(statement)) == SQLITE_ROW)
            row(SqliteRow(statement));
    } catch (...) {
        sqlite3_finalize(statement);
        throw;
    }
    sqlite3_finalize(statement);
    if (rc != SQLITE_DONE)
        fail(sql);
}

QStringList SqliteFile::firstColumn(const QString &sql)
{
    QStringList values;
    eachRow(sql, [&](const SqliteRow &row) { values << row.text(0); });
    return values;
}

double SqliteFile::number(const QString &sql)
{
    double value = 0;
    bool first = true;
    eachRow(sql, [&](const SqliteRow &row) {
        if (first)
            value = row.number(0);
        first = false;
    });
    return value;
}

} // namespace vantrel
