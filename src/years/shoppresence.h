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

    // Whether another copy (another ShopPresence) has the file open now.
    bool othersPresent() const;

private:
    int m_fd = -1;
};

} // namespace vantrel
