#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QSettings;

namespace vantrel {

class Dialogs;

// Where printouts go and how, as the shop set it in the program's settings (Qt's own):
// "printing/queue", a printer of the desktop's print system (CUPS) that takes the bytes raw, or
// empty for the printer file LPT1 in the program directory (the default); "printing/preview",
// whether each printout is shown first (off by default: a printout goes at once).
struct PrintSettings {
    QString queue;
    bool preview = false;

    static PrintSettings read();
    void write(QSettings &settings) const;
};

// The head of a printout: the shop's name, then its address, each after INDENT blanks and, when
// SPACED (the registers), followed by an empty line. They are as the shop set them in Settings
// ("shop/name", "shop/address"); one unset or blank prints as printouts have always printed it,
// "COMPANY NAME" or "ADDRESS".
QStringList printoutHead(int indent, bool spaced);
// Keeps the shop's NAME and ADDRESS for the printouts' head; a blank one is forgotten.
void writeShopHeading(QSettings &settings, const QString &name, const QString &address);

// The bytes a printout is: each line in UTF-8 ended by CR LF, the same for the file and a queue.
QByteArray printoutBytes(const QStringList &lines);

// The lines of the printout last sent, from the copy kept beside the program ("last
// printout.txt"); empty when nothing was printed yet.
QStringList lastPrintout(const QString &programDirectory);

// Sends a printout where the settings say, after the preview when it is on (Dialogs answers
// whether to print). Returns what the status line says: "Printed DOCUMENT: N lines", or why
// nothing reached the printer (the preview dropped, the queue refused: the screen keeps its
// document either way). A refusal is told in a message box too, naming the printer and the
// printing system's reason. A printer file that cannot be written throws UnhandledError, as it
// always has.
QString sendPrintout(const QString &programDirectory, Dialogs &dialogs, const QString &document, const QStringList &lines);

} // namespace vantrel
