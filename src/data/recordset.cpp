#include "recordset.h"

#include "records.h"
#include "unhandlederror.h"

namespace vantrel {

Recordset::Recordset(QStringList fieldNames, QVector<QVector<QVariant>> rows)
    : m_fieldNames(std::move(fieldNames)), m_rows(std::move(rows))
{
    for (int i = 0; i < m_fieldNames.size(); ++i)
        m_index.insert(m_fieldNames[i].toLower(), i);
}

QVariant Recordset::value(const QString &field) const
{
    const auto column = m_index.constFind(field.toLower());
    if (column == m_index.cend())
        throw UnhandledError(QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal: ") + field);
    if (eof())
        throw UnhandledError(QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."));
    return m_rows[m_current][*column];
}

QString Recordset::text(const QString &field) const
{
    return displayText(value(field));
}

double Recordset::number(const QString &field) const
{
    const QVariant v = value(field);
    if (v.isNull())
        return 0;
    if (v.typeId() == QMetaType::QString)
        return val(v.toString());
    return v.toDouble();
}

QString displayText(const QVariant &value)
{
    if (value.isNull())
        return {};
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return doubleText(value.toDouble());
    default:
        return value.toString();
    }
}

} // namespace vantrel
