#pragma once

#include "booksreader.h"

namespace vantrel {

// The books on a server read straight, in one read-only transaction whose snapshot every
// statement shares: what the check reads is the books at one moment, whatever the counters write
// meanwhile. Each statement's rows come through a cursor of their own, a page at a time.
class ServerReader : public BooksReader {
public:
    // Snapshot: every statement reads the books as they stood at the start. Statements: no
    // transaction is opened, for what cannot run in one (making a database).
    enum class Mode { Snapshot, Statements };
    explicit ServerReader(const QString &connection, Mode mode = Mode::Snapshot);
    ~ServerReader() override;
    ServerReader(const ServerReader &) = delete;
    ServerReader &operator=(const ServerReader &) = delete;

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
