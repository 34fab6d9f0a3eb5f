#pragma once

#include <QString>

namespace vantrel {

// Says that this copy of the program has the shop's file open, for as long as it lives: a shared
// lock on a file beside the database ("vantrel.accdb.open"). The lock goes with the process, so
// a killed program leaves none behind.
class ShopPresence {
public:
    explicit ShopPresence(const QString &database);
    ~ShopPresence();
    ShopPresence(const ShopPresence &) = delete;
    ShopPresence &operator=(const ShopPresence &) = delete;

    // Whether another copy (another ShopPresence) has the file open now; false when the lock
    // file could not be made (problem() says so).
    bool othersPresent() const;
    // Why the lock file could not be made, said once at start; empty when it was.
    QString problem() const;
    // Why this copy cannot close the year now: another copy has the file open, or none can be
    // seen for want of the lock file; empty when it is alone.
    QString whyShared() const;

private:
    QString m_lockFile;
    int m_fd = -1;
    int m_error = 0;
};

} // namespace vantrel
