#include "printout.h"

#include "printqueue.h"
#include "widgets/dialogs.h"
#include "widgets/lineprinter.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSettings>

namespace vantrel {

namespace {

QString keptCopy(const QString &programDirectory) { return QDir(programDirectory).filePath(QStringLiteral("last printout.txt")); }

} // namespace

PrintSettings PrintSettings::read()
{
    QSettings settings;
    return {settings.value(QStringLiteral("printing/queue")).toString(), settings.value(QStringLiteral("printing/preview"), false).toBool()};
}

void PrintSettings::write(QSettings &settings) const
{
    settings.setValue(QStringLiteral("printing/queue"), queue);
    settings.setValue(QStringLiteral("printing/preview"), preview);
}

QStringList printoutHead(int indent, bool spaced)
{
    const QSettings settings;
    QStringList head;
    for (const auto &[key, placeholder] : {std::pair{"shop/name", "COMPANY NAME"}, std::pair{"shop/address", "ADDRESS"}}) {
        const QString set = settings.value(QLatin1String(key)).toString().trimmed();
        head << spaces(indent) + (set.isEmpty() ? QLatin1String(placeholder) : set);
        if (spaced)
            head << QString();
    }
    return head;
}

void writeShopHeading(QSettings &settings, const QString &name, const QString &address)
{
    for (const auto &[key, value] : {std::pair{"shop/name", name.trimmed()}, std::pair{"shop/address", address.trimmed()}}) {
        if (value.isEmpty())
            settings.remove(QLatin1String(key));
        else
            settings.setValue(QLatin1String(key), value);
    }
}

QByteArray printoutBytes(const QStringList &lines)
{
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += line.toUtf8() + "\r\n";
    return bytes;
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

QString sendPrintout(const QString &programDirectory, Dialogs &dialogs, const QString &document, const QStringList &lines)
{
    const PrintSettings settings = PrintSettings::read();
    if (settings.preview && !dialogs.previewPrintout(document, lines))
        return QStringLiteral("Not printed: %1 (dropped at the preview)").arg(document);
    if (settings.queue.isEmpty()) {
        LinePrinter(programDirectory).print(lines);
    } else if (const QString refused = printRaw(settings.queue, document, printoutBytes(lines)); !refused.isEmpty()) {
        dialogs.inform(QStringLiteral("%1 was not printed: the printer %2 refused it.\nThe printing system says: %3").arg(document, settings.queue, refused));
        return QStringLiteral("Not printed: %1 (the printer %2: %3)").arg(document, settings.queue, refused);
    }
    QSaveFile copy(keptCopy(programDirectory)); // what Tools > Last Printout shows
    if (copy.open(QIODevice::WriteOnly)) {
        copy.write(printoutBytes(lines));
        copy.commit();
    }
    return QStringLiteral("Printed %1: %2 lines").arg(document).arg(lines.size());
}

} // namespace vantrel
