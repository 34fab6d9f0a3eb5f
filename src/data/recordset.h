#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace vantrel {

// The rows of one query, read completely when the query ran (so no statement stays open on the
// connection), with a cursor on the current row. Fields are read by name or alias, without
// regard to case; a null reads as the default: empty text, or 0 for a number.
class Recordset {
public:
    Recordset() = default;
    Recordset(QStringList fieldNames, QVector<QVector<QVariant>> rows);

    bool eof() const { return m_current >= m_rows.size(); }
    void moveNext() { ++m_current; }
    int rowCount() const { return int(m_rows.size()); }
    const QStringList &fieldNames() const { return m_fieldNames; }

    // The current row's field. Reading at eof, or a field the query does not have, is a
    // programming error: it throws UnhandledError like a failed statement would.
    QVariant value(const QString &field) const;
    bool isNull(const QString &field) const { return value(field).isNull(); }
    // Text as shown on screen: null is empty, numbers in their shortest decimal text.
    QString text(const QString &field) const;
    // Number with leading-number reading of text values; null is 0.
    double number(const QString &field) const;

private:
    QStringList m_fieldNames;
    QHash<QString, int> m_index; // lower-cased name -> column
    QVector<QVector<QVariant>> m_rows;
    qsizetype m_current = 0;
};

// A stored value as the screens show it: null is empty, a number in its shortest decimal text.
QString displayText(const QVariant &value);

} // namespace vantrel
