#include "lineprinter.h"

#include "data/unhandlederror.h"

#include <QFile>
#include <algorithm>

namespace vantrel {

void appendPaddedRight(QString &line, const QString &text, int width)
{
    const qsizetype kept = std::min<qsizetype>(text.size(), width);
    line.append(text.constData(), kept);
    line.resize(line.size() + width - kept, QLatin1Char(' '));
}

void appendPaddedLeft(QString &line, const QString &text, int width)
{
    const qsizetype kept = std::min<qsizetype>(text.size(), width);
    line.resize(line.size() + width - kept, QLatin1Char(' '));
    line.append(text.constData(), kept);
}

namespace {

bool isAscii(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; });
}

} // namespace

// A byte is a character in plain ASCII; any other text is cut and filled as a text.
void appendPaddedRight(QByteArray &line, QByteArrayView utf8, int width)
{
    if (!isAscii(utf8)) {
        line += padRight(QString::fromUtf8(utf8), width).toUtf8();
        return;
    }
    const qsizetype kept = std::min<qsizetype>(utf8.size(), width);
    line.append(utf8.first(kept));
    line.append(width - kept, ' ');
}

void appendPaddedLeft(QByteArray &line, QByteArrayView utf8, int width)
{
    if (!isAscii(utf8)) {
        line += padLeft(QString::fromUtf8(utf8), width).toUtf8();
        return;
    }
    const qsizetype kept = std::min<qsizetype>(utf8.size(), width);
    line.append(width - kept, ' ');
    line.append(utf8.first(kept));
}

QString padRight(const QString &text, int width)
{
    QString cell;
    appendPaddedRight(cell, text, width);
    return cell;
}

QString padLeft(const QString &text, int width)
{
    QString cell;
    appendPaddedLeft(cell, text, width);
    return cell;
}

QString spaces(int count)
{
    return QString(count, QLatin1Char(' '));
}

LinePrinter::LinePrinter(const QString &programDirectory)
    : m_devicePath(programDirectory + QStringLiteral("/LPT1"))
{
}

void LinePrinter::print(const QByteArray &bytes) const
{
    QFile device(m_devicePath);
    if (!device.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw UnhandledError(QStringLiteral("Cannot open the printer %1: %2").arg(m_devicePath, device.errorString()));
    if (device.write(bytes) != bytes.size() || !device.flush())
        throw UnhandledError(QStringLiteral("Cannot write to the printer %1: %2").arg(m_devicePath, device.errorString()));
    device.close();
}

} // namespace vantrel
