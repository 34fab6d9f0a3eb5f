#pragma once

#include "booksreader.h"

namespace vantrel {

// A session of its own on the books' server, for what looks after the books. Read in one
// read-only transaction whose snapshot every statement shares (the check reads the books at one
// moment, whatever the counters write meanwhile), or run statement by statement, the caller
// opening any transaction (the year's close). Each statement's rows come through a cursor of
// their own, a page at a time, inside a transaction.
class ServerSession : public BooksReader {
public:
    // Snapshot: every statement reads the books as they stood at the start. Statements: no
    // transaction is opened (what cannot run in one, making a database; or the caller's own).
    enum class Mode { Snapshot, Statements };
    explicit ServerSession(const QString &connection, Mode mode = Mode::Snapshot);
    ~ServerSession() override;
    ServerSession(const ServerSession &) = delete;
    ServerSession &operator=(const ServerSession &) = delete;

    bool onServer() const override { return true; }
    std::unique_ptr<BookRows> rows(const QString &sql) override;
    // Runs a statement that returns no rows; throws UnhandledError when it fails.
    void run(const QString &sql);

    // Throws UnhandledError naming the server, the action and the server's message.
    [[noreturn]] void fail(const QString &action, const QString &message) const;
    QString connectionName() const { return m_name; }

private:
    QString m_connection, m_name;
    int m_cursors = 0;
};

} // namespace vantrel
