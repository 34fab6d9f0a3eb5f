#include "lineprinter.h"

#include "data/unhandlederror.h"

#include <QFile>

namespace vantrel {

QString padRight(const QString &text, int width)
{
    return text.left(width).leftJustified(width, QLatin1Char(' '));
}

QString padLeft(const QString &text, int width)
{
    return text.left(width).rightJustified(width, QLatin1Char(' '));
}

QString spaces(int count)
{
    return QString(count, QLatin1Char(' '));
}

LinePrinter::LinePrinter(const QString &programDirectory)
    : m_devicePath(programDirectory + QStringLiteral("/LPT1"))
{
}

void LinePrinter::print(const QStringList &lines) const
{
    QFile device(m_devicePath);
    if (!device.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw UnhandledError(QStringLiteral("Cannot open the printer %1: %2").arg(m_devicePath, device.errorString()));
    for (const QString &line : lines) {
        if (device.write(line.toUtf8() + "\r\n") < 0)
            throw UnhandledError(QStringLiteral("Cannot write to the printer %1: %2").arg(m_devicePath, device.errorString()));
    }
    device.close();
}

} // namespace vantrel
