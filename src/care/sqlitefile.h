#pragma once

#include "booksreader.h"

#include <QString>
#include <QStringList>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace vantrel {

// One result row of the file while a statement steps.
class SqliteRow : public BookRow {
public:
    explicit SqliteRow(sqlite3_stmt *statement) : m_statement(statement) {}
    bool isNull(int column) const override;
    QString text(int column) const override;
    double number(int column) const override;
    qint64 integer(int column) const override;
    QString type(int column) const override;

private:
    sqlite3_stmt *m_statement;
};

// A shop file opened straight on the engine, for the tools that look after the file (backups,
// the check after a crash), not for the screens. Every failure throws UnhandledError with the
// file's name and the engine's message. A busy file is waited for up to BusyMilliseconds.
class SqliteFile : public BooksReader {
public:
    enum class Access { ReadOnly, ReadWrite, Create };
    static constexpr int BusyMilliseconds = 10000;

    SqliteFile(const QString &path, Access access);
    ~SqliteFile() override;
    SqliteFile(const SqliteFile &) = delete;
    SqliteFile &operator=(const SqliteFile &) = delete;

    sqlite3 *handle() const { return m_db; }
    const QString &path() const { return m_path; }

    bool onServer() const override { return false; }
    std::unique_ptr<BookRows> rows(const QString &sql) override;
    void execute(const QString &sql);

    // Throws UnhandledError naming the file, the action and the engine's last message.
    [[noreturn]] void fail(const QString &action) const;

private:
    QString m_path;
    sqlite3 *m_db = nullptr;
};

} // namespace vantrel
