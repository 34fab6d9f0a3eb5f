#include "records.h"

#include "database.h"
#include "recordset.h"
#include "unhandlederror.h"

#include <QLocale>
#include <cmath>
#include <limits>

namespace vantrel {

namespace {

bool isDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

// Turns a number text that may carry an exponent ("1.234568e+07") into plain decimal digits.
QString plainDecimal(const QString &text)
{
    const qsizetype e = text.indexOf(QLatin1Char('e'), 0, Qt::CaseInsensitive);
    if (e < 0)
        return text;
    QString mantissa = text.left(e);
    const int exponent = text.mid(e + 1).toInt();
    QString sign;
    if (mantissa.startsWith(QLatin1Char('-'))) {
        sign = QStringLiteral("-");
        mantissa.remove(0, 1);
    }
    qsizetype point = mantissa.indexOf(QLatin1Char('.'));
    if (point < 0)
        point = mantissa.size();
    QString digits = mantissa;
    digits.remove(QLatin1Char('.'));
    const qsizetype newPoint = point + exponent;
    QString result;
    if (newPoint <= 0)
        result = QStringLiteral("0.") + QString(-newPoint, QLatin1Char('0')) + digits;
    else if (newPoint >= digits.size())
        result = digits + QString(newPoint - digits.size(), QLatin1Char('0'));
    else
        result = digits.left(newPoint) + QLatin1Char('.') + digits.mid(newPoint);
    return sign + result;
}

} // namespace

double val(const QString &text)
{
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n && (text[i] == QLatin1Char(' ') || text[i] == QLatin1Char('\t')))
        ++i;
    const qsizetype start = i;
    if (i < n && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+')))
        ++i;
    bool digits = false;
    while (i < n && isDigit(text[i])) {
        ++i;
        digits = true;
    }
    if (i < n && text[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && isDigit(text[i])) {
            ++i;
            digits = true;
        }
    }
    if (!digits)
        return 0;
    qsizetype end = i;
    if (i < n && (text[i] == QLatin1Char('e') || text[i] == QLatin1Char('E'))) {
        qsizetype j = i + 1;
        if (j < n && (text[j] == QLatin1Char('-') || text[j] == QLatin1Char('+')))
            ++j;
        if (j < n && isDigit(text[j])) {
            while (j < n && isDigit(text[j]))
                ++j;
            end = j;
        }
    }
    return checkFinite(QStringView(text).mid(start, end - start).toDouble());
}

double checkFinite(double value)
{
    if (!std::isfinite(value))
        throw UnhandledError(QStringLiteral("Overflow"));
    return value;
}

float toSingle(double value)
{
    if (!std::isfinite(value) || std::fabs(value) > double(std::numeric_limits<float>::max()))
        throw UnhandledError(QStringLiteral("Overflow"));
    return float(value);
}

QString singleText(float value)
{
    checkFinite(value);
    if (value == 0)
        return QStringLiteral("0");
    QString text;
    for (int precision = 1; precision <= 7; ++precision) {
        text = QString::number(value, 'g', precision);
        if (text.toFloat() == value)
            break;
    }
    return plainDecimal(text);
}

QString doubleText(double value)
{
    checkFinite(value);
    if (value == 0)
        return QStringLiteral("0");
    return plainDecimal(QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void appendDoubleText(QByteArray &text, double value)
{
    if (value == std::floor(value) && std::fabs(value) < 1e15) { // a whole number's digits, zero's sign dropped
        text += QByteArray::number(qint64(value));
        return;
    }
    if (std::isfinite(value)) {
        const QByteArray shortest = QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
        if (!shortest.contains('e')) {
            text += shortest;
            return;
        }
    }
    text += doubleText(value).toUtf8();
}

bool isDoubleText(QByteArrayView text)
{
    qsizetype at = text.startsWith('-') ? 1 : 0;
    const qsizetype whole = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9')
        ++at;
    const qsizetype wholeDigits = at - whole;
    if (wholeDigits == 0 || (wholeDigits > 1 && text[whole] == '0'))
        return false;
    qsizetype significant = text[whole] == '0' ? 0 : wholeDigits;
    if (at < text.size()) {
        if (text[at] != '.' || at + 1 == text.size() || text.back() == '0')
            return false;
        for (qsizetype i = at + 1; i < text.size(); ++i) {
            if (text[i] < '0' || text[i] > '9')
                return false;
            if (significant > 0 || text[i] != '0')
                ++significant;
        }
    } else if (text == "-0") {
        return false;
    }
    return significant <= 15;
}

qint16 toInt16(double value)
{
    const double rounded = std::nearbyint(value); // the default rounding mode: half to even
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw UnhandledError(QStringLiteral("Overflow"));
    return static_cast<qint16>(rounded);
}

double nextNumber(Database &db, const QString &maxQuery, const QString &column)
{
    const Recordset result = db.query(maxQuery);
    if (result.eof())
        return 1;
    return result.number(column) + 1;
}

QString sqlLiteral(const QString &text)
{
    return QLatin1Char('\'') + QString(text).replace(QLatin1Char('\''), QStringLiteral("''")) + QLatin1Char('\'');
}

} // namespace vantrel
