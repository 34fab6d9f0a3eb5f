#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

// Fixed-width cells of a printed line: cut the text to its first N characters, then fill with
// blanks to exactly N, after the text (padRight, left-aligned) or before it (padLeft).
QString padRight(const QString &text, int width);
QString padLeft(const QString &text, int width);
QString spaces(int count);
// The same cells appended to a line being built, without a text of their own.
void appendPaddedRight(QString &line, const QString &text, int width);
void appendPaddedLeft(QString &line, const QString &text, int width);
// The same for a line kept as UTF-8 bytes: the width counts characters as a text's do.
void appendPaddedRight(QByteArray &line, QByteArrayView utf8, int width);
void appendPaddedLeft(QByteArray &line, QByteArrayView utf8, int width);

// The line printer: the plain-text file "LPT1" in the program's directory, created or
// truncated for each document, each line ended by CR LF, and closed. Whoever wants paper links
// that name to the printer device.
class LinePrinter {
public:
    explicit LinePrinter(const QString &programDirectory);

    // Writes BYTES, the lines each ended by CR LF. Throws UnhandledError with the file error when
    // the device cannot be opened (nothing is written then) or the bytes cannot be written.
    void print(const QByteArray &bytes) const;

private:
    QString m_devicePath;
};

} // namespace vantrel
