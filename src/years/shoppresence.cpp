#include "shoppresence.h"

#include <QFile>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel {

namespace {

// An open-file-description lock over the whole file: it belongs to this descriptor, not to the
// process, so that two presences in one process see each other too.
bool lock(int fd, short type)
{
    struct flock region = {};
    region.l_type = type;
    region.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_SETLK, &region) == 0;
}

} // namespace

ShopPresence::ShopPresence(const QString &database)
    : m_fd(::open(QFile::encodeName(database + QStringLiteral(".open")).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_fd >= 0)
        lock(m_fd, F_RDLCK);
}

ShopPresence::~ShopPresence()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool ShopPresence::othersPresent() const
{
    if (m_fd < 0 || !lock(m_fd, F_WRLCK))
        return true;
    lock(m_fd, F_RDLCK);
    return false;
}

} // namespace vantrel
