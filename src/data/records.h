#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace vantrel {

class Database;

// Leading-number reading of a field: the longest leading decimal number of the text (blanks
// before it skipped, an optional sign, digits with one decimal point, an optional exponent),
// else 0. "12abc" is 12, "" is 0, "-3.5x" is -3.5. A number too large for a double ("1e400")
// throws UnhandledError("Overflow").
double val(const QString &text);

// The value itself when it is a finite number; else throws UnhandledError("Overflow"), as the
// shop's arithmetic does on a result too large to hold.
double checkFinite(double value);

// A figure held in single precision: the value rounded to a float. Beyond the float's range
// (or not a number at all) it throws UnhandledError("Overflow").
float toSingle(double value);

// Single-precision figure as text: the shortest text of at most 7 significant digits that reads
// back as the same single, or its 7-digit rounding; plain decimal, no separators (250, 12.5,
// 123456.78 gives 123456.8). An infinite value throws UnhandledError("Overflow").
QString singleText(float value);

// Double figure as text: the shortest plain decimal text that reads back equal (92.55, 37.5).
// An infinite value throws UnhandledError("Overflow"): no number text is ever "inf".
QString doubleText(double value);
// Appends doubleText(VALUE) to TEXT as UTF-8, without a text of its own for the common cases
// (a whole number, a decimal without an exponent): a grid's rows are made of it.
void appendDoubleText(QByteArray &text, double value);
// Whether TEXT is already doubleText() of the number it reads as: a plain decimal with no sign
// but a minus, no zero before the point but a lone one, none ending the fraction, and at most
// 15 significant digits (which a double keeps exactly, so that none shorter reads back equal).
// "-0" is not: zero's text drops its sign.
bool isDoubleText(QByteArrayView text);

// Conversion to a 16-bit signed integer, rounding half to even (8.5 gives 8, 9.5 gives 10).
// Throws UnhandledError("Overflow") outside -32768..32767.
qint16 toInt16(double value);

// TEXT as an SQL string literal, its quotes doubled: for the statements the program's own tools
// build (the system's statements take the operator's text as it is typed).
QString sqlLiteral(const QString &text);

// The next number of a series: runs a "select max(col) as col from ..." query and returns the
// maximum plus one, a null maximum counting as 0; 1 when the query returns no row.
// Throws UnhandledError when the database rejects the query.
double nextNumber(Database &db, const QString &maxQuery, const QString &column);

} // namespace vantrel
