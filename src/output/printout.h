#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vantrel {

// The head of a printout: the shop's name, then its address, each after INDENT blanks and, when
// SPACED (the registers), followed by an empty line. They are as the shop set them in Settings;
// one unset or blank prints as printouts have always printed it, "COMPANY NAME" or "ADDRESS".
QStringList printoutHead(int indent, bool spaced);

// The bytes a printout is: each line in UTF-8 ended by CR LF, the same for the file and a queue.
QByteArray printoutBytes(const QStringList &lines);

// Sends LINES where the settings say: the printer file LPT1 in PROGRAMDIRECTORY, or QUEUE of the
// print system (raw, titled DOCUMENT), and keeps them as the last printout. Returns the print
// system's reason when the queue refused them (nothing is kept then), else an empty text. A
// printer file that cannot be written throws UnhandledError, as it always has.
QString deliverPrintout(const QString &programDirectory, const QString &queue, const QString &document, const QStringList &lines);

// The lines of the printout last sent, from the copy kept beside the program ("last
// printout.txt"); empty when nothing was printed yet.
QStringList lastPrintout(const QString &programDirectory);

} // namespace vantrel
