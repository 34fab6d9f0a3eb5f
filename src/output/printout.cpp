#include "printout.h"

#include "data/programsettings.h"
#include "lineprinter.h"
#include "printqueue.h"

#include <QDir>
#include <QFile>
#include <cstdio>

namespace vantrel {

namespace {

QString keptCopy(const QString &programDirectory) { return QDir(programDirectory).filePath(QStringLiteral("last printout.txt")); }

QStringList linesOf(const QByteArray &printout)
{
    QStringList lines = QString::fromUtf8(printout).split(QStringLiteral("\r\n"));
    lines.removeLast(); // after the last line's end
    return lines;
}

// What Tools > Last Printout shows: a new file renamed over the last, so that it is never seen
// half written, but not forced to the disk before the rename (a year's register is 20 MB, and
// the copy is only a look back at what went to the printer).
void keepCopy(const QString &programDirectory, const QByteArray &bytes)
{
    const QString kept = keptCopy(programDirectory), fresh = kept + QStringLiteral(".new");
    QFile copy(fresh);
    const bool written = copy.open(QIODevice::WriteOnly | QIODevice::Truncate) && copy.write(bytes) == bytes.size() && copy.flush();
    copy.close();
    if (!written || std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(kept).constData()) != 0)
        QFile::remove(fresh);
}

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

Printout &Printout::operator<<(const QString &line)
{
    return addUtf8Line(line.toUtf8());
}

Printout &Printout::addUtf8Line(QByteArrayView line)
{
    m_bytes += line;
    m_bytes += "\r\n";
    ++m_lines;
    return *this;
}

Printout &Printout::operator<<(const QStringList &lines)
{
    for (const QString &line : lines)
        *this << line;
    return *this;
}

QStringList Printout::lines() const
{
    return linesOf(m_bytes);
}

QString deliverPrintout(const QString &programDirectory, const QString &queue, const QString &document, const Printout &printout)
{
    if (queue.isEmpty()) {
        LinePrinter(programDirectory).print(printout.bytes());
    } else if (const QString refused = printRaw(queue, document, printout.bytes()); !refused.isEmpty()) {
        return refused;
    }
    keepCopy(programDirectory, printout.bytes());
    return QString();
}

QStringList lastPrintout(const QString &programDirectory)
{
    QFile kept(keptCopy(programDirectory));
    if (!kept.open(QIODevice::ReadOnly))
        return {};
    return linesOf(kept.readAll());
}

} // namespace vantrel
