#pragma once

#include <QString>
#include <QStringList>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace vantrel {

// One result row while a query steps; valid only inside the callback that receives it.
class SqliteRow {
public:
    explicit SqliteRow(sqlite3_stmt *statement) : m_statement(statement) {}
    bool isNull(int column) const;
    QString text(int column) const;
    double number(int column) const;
    qint64 integer(int column) const;
    // The column's storage class as the engine names it: "integer", "real", "text", "blob", "null".
    QString type(int column) const;

private:
    sqlite3_stmt *m_statement;
};

// A shop file opened straight on the engine, for the tools that look after the file (backups,
// the check after a crash), not for the screens. Every failure throws UnhandledError with the
// file's name and the engine's message. A busy file is waited for up to BusyMilliseconds.
class SqliteFile {
public:
    enum class Access { ReadOnly, ReadWrite, Create };
    static constexpr int BusyMilliseconds = 10000;

    SqliteFile(const QString &path, Access access);
    ~SqliteFile();
    SqliteFile(const SqliteFile &) = delete;
    SqliteFile &operator=(const SqliteFile &) = delete;

    sqlite3 *handle() const { return m_db; }
    const QString &path() const { return m_path; }

    void execute(const QString &sql);
    void eachRow(const QString &sql, const std::function<void(const SqliteRow &)> &row);
    // The first column of every row, as text (the integrity check's lines, say).
    QStringList firstColumn(const QString &sql);
    // The first column of the first row as a number; 0 when there is no row or it is null.
    double number(const QString &sql);

    // Throws UnhandledError naming the file, the action and the engine's last message.
    [[noreturn]] void fail(const QString &action) const;

private:
    QString m_path;
    sqlite3 *m_db = nullptr;
};

} // namespace vantrel
