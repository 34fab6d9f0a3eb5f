#include "printqueue.h"

#include <cups/cups.h>

namespace vantrel {

QStringList printQueues()
{
    cups_dest_t *dests = nullptr;
    const int count = cupsGetDests2(CUPS_HTTP_DEFAULT, &dests);
    QStringList queues;
    for (int i = 0; i < count; ++i)
        queues << QString::fromUtf8(dests[i].name);
    cupsFreeDests(count, dests);
    return queues;
}

QString printRaw(const QString &queue, const QString &title, const QByteArray &bytes)
{
    const QByteArray name = queue.toUtf8(), jobTitle = title.toUtf8();
    const int job = cupsCreateJob(CUPS_HTTP_DEFAULT, name.constData(), jobTitle.constData(), 0, nullptr);
    if (job == 0)
        return QString::fromUtf8(cupsLastErrorString());
    if (cupsStartDocument(CUPS_HTTP_DEFAULT, name.constData(), job, jobTitle.constData(), CUPS_FORMAT_RAW, 1) != HTTP_STATUS_CONTINUE
        || cupsWriteRequestData(CUPS_HTTP_DEFAULT, bytes.constData(), size_t(bytes.size())) != HTTP_STATUS_CONTINUE
        || cupsFinishDocument(CUPS_HTTP_DEFAULT, name.constData()) != IPP_STATUS_OK) {
        const QString message = QString::fromUtf8(cupsLastErrorString());
        cupsCancelJob(name.constData(), job);
        return message;
    }
    return {};
}

} // namespace vantrel
