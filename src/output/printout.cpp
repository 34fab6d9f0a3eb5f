#include "printout.h"

#include "data/programsettings.h"
#include "lineprinter.h"
#include "printqueue.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace vantrel {

namespace {

QString keptCopy(const QString &programDirectory) { return QDir(programDirectory).filePath(QStringLiteral("last printout.txt")); }

} // namespace

QStringList printoutHead(int indent, bool spaced)
{
    const ProgramSettings settings = ProgramSettings::read();
    QStringList head;
    for (const auto &[set, placeholder] : {std::pair{settings.shopName, "COMPANY NAME"}, std::pair{settings.shopAddress, "ADDRESS"}}) {
        head << spaces(indent) + (set.isEmpty() ? QLatin1String(placeholder) : set);
        if (spaced)
            head << QString();
    }
    return head;
}

QByteArray printoutBytes(const QStringList &lines)
{
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += line.toUtf8() + "\r\n";
    return bytes;
}

QString deliverPrintout(const QString &programDirectory, const QString &queue, const QString &document, const QStringList &lines)
{
    if (queue.isEmpty()) {
        LinePrinter(programDirectory).print(lines);
    } else if (const QString refused = printRaw(queue, document, printoutBytes(lines)); !refused.isEmpty()) {
        return refused;
    }
    QSaveFile copy(keptCopy(programDirectory)); // what Tools > Last Printout shows
    if (copy.open(QIODevice::WriteOnly)) {
        copy.write(printoutBytes(lines));
        copy.commit();
    }
    return QString();
}

QStringList lastPrintout(const QString &programDirectory)
{
    QFile kept(keptCopy(programDirectory));
    if (!kept.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(kept.readAll()).split(QStringLiteral("\r\n"));
    lines.removeLast(); // after the last line's end
    return lines;
}

} // namespace vantrel
