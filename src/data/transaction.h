#pragma once

struct sqlite3;

namespace vantrel {

// Brackets the statements of its scope on the connection DB in one transaction of the engine's:
// they are written together by commit(), or not at all when the scope is left without it (an
// exception on the way, a kill). Every failure throws UnhandledError with the engine's message.
class Transaction {
public:
    explicit Transaction(sqlite3 *db);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    // Runs SQL (one statement or several) inside the transaction.
    void execute(const char *sql);
    void commit();

private:
    sqlite3 *m_db;
    bool m_open = true;
};

} // namespace vantrel
