#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vantrel {

// The printers of the desktop's print system (CUPS), by queue name; empty when it has none or
// does not answer.
QStringList printQueues();

// Sends BYTES to QUEUE as one raw job titled TITLE, so that a line printer gets them as the
// printer file would hold them. Returns the print system's message when it refused, else an
// empty string.
QString printRaw(const QString &queue, const QString &title, const QByteArray &bytes);

} // namespace vantrel
