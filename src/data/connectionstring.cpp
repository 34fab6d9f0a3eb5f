#include "connectionstring.h"

namespace vantrel {

QString buildConnectionString(const QString &programDirectory)
{
    return QStringLiteral("Provider=Microsoft.ACE.OLEDB.12.0;Data Source=") + programDirectory
        + QStringLiteral("/vantrel.accdb;Jet OLEDB:Database Password=tamarin5252;");
}

QString dataSourceOf(const QString &connectionString)
{
    static const QString key = QStringLiteral("Data Source=");
    const qsizetype start = connectionString.indexOf(key, 0, Qt::CaseInsensitive);
    if (start < 0)
        return {};
    const qsizetype from = start + key.size();
    const qsizetype end = connectionString.indexOf(QLatin1Char(';'), from);
    return connectionString.mid(from, end < 0 ? -1 : end - from);
}

} // namespace vantrel
