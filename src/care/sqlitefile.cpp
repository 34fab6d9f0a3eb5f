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

namespace {

// A statement's rows, stepped one at a time; finalized with them.
class SqliteRows : public BookRows {
public:
    SqliteRows(const SqliteFile &file, sqlite3_stmt *statement, const QString &sql) : m_statement(statement), m_row(statement), m_file(file), m_sql(sql) {}
    ~SqliteRows() override { sqlite3_finalize(m_statement); }
    bool next() override
    {
        const int rc = sqlite3_step(m_statement);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            m_file.fail(m_sql);
        return rc == SQLITE_ROW;
    }
    bool isNull(int column) const override { return m_row.isNull(column); }
    QString text(int column) const override { return m_row.text(column); }
    double number(int column) const override { return m_row.number(column); }
    qint64 integer(int column) const override { return m_row.integer(column); }
    QString type(int column) const override { return m_row.type(column); }

private:
    sqlite3_stmt *m_statement;
    SqliteRow m_row;
    const SqliteFile &m_file;
    QString m_sql;
};

} // namespace

std::unique_ptr<BookRows> SqliteFile::rows(const QString &sql)
{
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &statement, nullptr) != SQLITE_OK)
        fail(sql);
    return std::make_unique<SqliteRows>(*this, statement, sql);
}

} // namespace vantrel
