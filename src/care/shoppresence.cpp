#include "shoppresence.h"

#include <QFile>
#include <cerrno>
#include <cstring>
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
    : m_lockFile(database + QStringLiteral(".open")), m_fd(::open(QFile::encodeName(m_lockFile).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_fd < 0)
        m_error = errno;
    else
        lock(m_fd, F_RDLCK);
}

ShopPresence::~ShopPresence()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool ShopPresence::othersPresent() const
{
    if (m_fd < 0)
        return false;
    if (!lock(m_fd, F_WRLCK))
        return true;
    lock(m_fd, F_RDLCK);
    return false;
}

QString ShopPresence::problem() const
{
    if (m_fd >= 0)
        return QString();
    return QStringLiteral("%1 cannot be made (%2): another copy of Vantrel that has the shop open cannot be seen, so the year "
                          "cannot be closed.")
        .arg(m_lockFile, QString::fromLocal8Bit(std::strerror(m_error)));
}

QString ShopPresence::whyShared() const
{
    if (m_fd < 0)
        return problem();
    return othersPresent() ? QStringLiteral("Another copy of Vantrel has the shop open. Close it first, then close the year.") : QString();
}

} // namespace vantrel
