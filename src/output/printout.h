#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vantrel {

// The head of a printout: the shop's name, then its address, each after INDENT blanks and, when
// SPACED (the registers), followed by an empty line. They are as the shop set them in Settings;
// one unset or blank prints as printouts have always printed it, "COMPANY NAME" or "ADDRESS".
QStringList printoutHead(int indent, bool spaced);

// A printout as the printer takes it: each line in UTF-8 ended by CR LF, the same for the file
// and a queue, held as those bytes alone (a year's register is 400,000 lines).
class Printout {
public:
    Printout() = default;
    Printout(const QStringList &lines) { *this << lines; } // NOLINT: a list of lines is a printout
    Printout &operator<<(const QString &line);
    Printout &operator<<(const QStringList &lines);
    // A line already in UTF-8 (a long register's, made without a text per line).
    Printout &addUtf8Line(QByteArrayView line);

    int lineCount() const { return m_lines; }
    const QByteArray &bytes() const { return m_bytes; }
    QStringList lines() const;

private:
    QByteArray m_bytes;
    int m_lines = 0;
};

// Sends PRINTOUT where the settings say: the printer file LPT1 in PROGRAMDIRECTORY, or QUEUE of the
// print system (raw, titled DOCUMENT), and keeps it as the last printout. Returns the print
// system's reason when the queue refused it (nothing is kept then), else an empty text. A
// printer file that cannot be written throws UnhandledError, as it always has.
QString deliverPrintout(const QString &programDirectory, const QString &queue, const QString &document, const Printout &printout);

// The lines of the printout last sent, from the copy kept beside the program ("last
// printout.txt"); empty when nothing was printed yet.
QStringList lastPrintout(const QString &programDirectory);

} // namespace vantrel
