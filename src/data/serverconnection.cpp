#include "serverconnection.h"

#include "programsettings.h"
#include "shortdate.h"
#include "unhandlederror.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QStringList>
#include <cmath>
#include <libpq-fe.h>

namespace vantrel {

bool isServerConnection(const QString &text)
{
    static const QRegularExpression keyValue(QStringLiteral("^\\s*(service|host|hostaddr|dbname|user|port)\\s*="));
    return text.startsWith(QLatin1String("postgresql://")) || text.startsWith(QLatin1String("postgres://")) || keyValue.match(text).hasMatch();
}

namespace {

// Each parameter the connection sets, as libpq reads it.
QList<std::pair<QString, QString>> parameters(const QString &connection)
{
    char *error = nullptr;
    PQconninfoOption *options = PQconninfoParse(connection.toUtf8().constData(), &error);
    if (!options) {
        const QString reason = error ? QString::fromUtf8(error).trimmed() : QStringLiteral("out of memory");
        PQfreemem(error);
        throw UnhandledError(QStringLiteral("The server connection \"%1\" cannot be read: %2").arg(connection, reason));
    }
    QList<std::pair<QString, QString>> set;
    for (PQconninfoOption *option = options; option->keyword; ++option)
        if (option->val && *option->val)
            set.append({QString::fromUtf8(option->keyword), QString::fromUtf8(option->val)});
    PQconninfoFree(options);
    return set;
}

// CONNECTION's parameters as key='value', a quote or backslash in a value escaped, but WITHOUT.
QStringList quotedParameters(const QString &connection, const QString &without = QString())
{
    QStringList pairs;
    for (auto [key, value] : parameters(connection)) {
        if (key == without)
            continue;
        value.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('\''), QLatin1String("\\'"));
        pairs << key + QStringLiteral("='") + value + QLatin1Char('\'');
    }
    return pairs;
}

} // namespace

QString serverConnectOptions(const QString &connection)
{
    return quotedParameters(connection).join(QLatin1Char(';'));
}

QString serverConnectionTo(const QString &connection, const QString &database)
{
    return (quotedParameters(connection, QStringLiteral("dbname")) << QStringLiteral("dbname='%1'").arg(database)).join(QLatin1Char(' '));
}

QString serverDateOrder()
{
    static const char orders[] = {'D', 'M', 'Y'};
    const ShortDate form;
    return QString(QLatin1Char(orders[form.order()[0]])) + QLatin1Char(orders[form.order()[1]]) + QLatin1Char(orders[form.order()[2]]);
}

QStringList serverSessionSetup()
{
    const QString order = serverDateOrder();
    QString counter = ProgramSettings::read().counter();
    counter.replace(QLatin1Char('\''), QLatin1String("''"));
    return {QStringLiteral("set extra_float_digits = 1"), QStringLiteral("set vantrel.date_order = '%1'").arg(order),
            QStringLiteral("set vantrel.counter = '%1'").arg(counter), QStringLiteral("set application_name = 'Vantrel at %1'").arg(counter)};
}

QString serverWarmUpStatement()
{
    return QStringLiteral("do $$ declare t regclass; begin perform set_config('lock_timeout', '1', true); "
                          "for t in select c.oid from pg_class c join pg_namespace n on n.oid = c.relnamespace "
                          "where c.relkind = 'r' and n.nspname = any (current_schemas(false)) and has_table_privilege(c.oid, 'select') "
                          "loop execute format('select 1 from %s where false', t); end loop; "
                          "exception when lock_not_available then null; end $$");
}

QString serverConnectionInSchema(const QString &connection, const QString &schema)
{
    return (quotedParameters(connection, QStringLiteral("options")) << QStringLiteral("options='-c search_path=%1,public'").arg(schema))
        .join(QLatin1Char(' '));
}

QString serverDescription(const QString &connection)
{
    QString host, port, database, service;
    for (const auto &[key, value] : parameters(connection)) {
        if (key == QLatin1String("host") || key == QLatin1String("hostaddr"))
            host = value;
        else if (key == QLatin1String("port"))
            port = value;
        else if (key == QLatin1String("dbname"))
            database = value;
        else if (key == QLatin1String("service"))
            service = value;
    }
    if (!service.isEmpty() && host.isEmpty())
        return QStringLiteral("the server of the service %1").arg(service);
    return QStringLiteral("the server %1, port %2, database %3")
        .arg(host.isEmpty() ? QStringLiteral("on this computer") : host, port.isEmpty() ? QStringLiteral("5432") : port,
             database.isEmpty() ? QStringLiteral("(the user's own)") : database);
}

QString serverMessage(const QSqlError &error)
{
    const QString state = error.nativeErrorCode();
    if (state == QLatin1String("22P02") || state == QLatin1String("22007") || state == QLatin1String("22008")
        || (state == QLatin1String("23514") && error.databaseText().contains(QLatin1String("_number\""))))
        return QStringLiteral("Data type mismatch in criteria expression.");
    if (state == QLatin1String("22003"))
        return QStringLiteral("Overflow");
    // The driver's text is the server's report, "ERROR:  message" and lines of detail.
    QString text = error.databaseText().section(QLatin1Char('\n'), 0, 0).trimmed();
    static const QRegularExpression severity(QStringLiteral("^(ERROR|FATAL|PANIC):\\s+"));
    text.remove(severity);
    if (!state.isEmpty() && text.endsWith(QLatin1Char('(') + state + QLatin1Char(')')))
        text.chop(state.size() + 2);
    // A statement the system assembled wrongly reads as it reads on the file.
    static const QRegularExpression near(QStringLiteral("^syntax error at or near (\".*\")$"));
    text.replace(near, QStringLiteral("near \\1: syntax error"));
    if (text == QLatin1String("syntax error at end of input"))
        return QStringLiteral("incomplete input");
    return text.isEmpty() ? error.text() : text;
}

namespace {

// The server's result under a driver's handle; null when the handle is not the server's.
const PGresult *serverResult(const QVariant &resultHandle)
{
    if (qstrcmp(resultHandle.typeName(), "PGresult*") != 0 && qstrcmp(resultHandle.typeName(), "pg_result*") != 0)
        return nullptr;
    return *static_cast<PGresult *const *>(resultHandle.constData());
}

} // namespace

QVector<bool> serverFigureColumns(const QVariant &resultHandle, int columns)
{
    QVector<bool> figures(columns, false);
    const PGresult *result = serverResult(resultHandle);
    const Oid Text = 25;
    for (int i = 0; result && i < columns && i < PQnfields(result); ++i)
        figures[i] = PQftype(result, i) == Text && PQftable(result, i) != InvalidOid;
    return figures;
}

QVector<ServerCell> serverCellKinds(const QVariant &resultHandle, int columns)
{
    QVector<ServerCell> kinds(columns, ServerCell::Other);
    const PGresult *result = serverResult(resultHandle);
    for (int i = 0; result && i < columns && i < PQnfields(result); ++i) {
        switch (PQftype(result, i)) {
        case 25: // text
            kinds[i] = PQftable(result, i) != InvalidOid ? ServerCell::Figure : ServerCell::Other;
            break;
        case 700: // real
        case 701: // double precision
            kinds[i] = ServerCell::Double;
            break;
        case 20: // bigint
        case 21: // smallint
        case 23: // integer
            kinds[i] = ServerCell::Integer;
            break;
        default:
            break;
        }
    }
    return kinds;
}

void serverRowTexts(const QVariant &resultHandle, int row, QByteArrayView *cells, int columns)
{
    const PGresult *result = serverResult(resultHandle);
    for (int i = 0; i < columns; ++i)
        cells[i] = result ? QByteArrayView(PQgetvalue(result, row, i), PQgetlength(result, row, i)) : QByteArrayView();
}

bool serverConnectionBroken(const QSqlDriver *driver)
{
    const QVariant handle = driver ? driver->handle() : QVariant();
    if (qstrcmp(handle.typeName(), "PGconn*") != 0 && qstrcmp(handle.typeName(), "pg_conn*") != 0)
        return false;
    PGconn *connection = *static_cast<PGconn *const *>(handle.constData());
    if (!connection)
        return true;
    // A server that ended the connection has said so and closed it; the end is seen once the
    // input waiting is read (a driver reading a statement's first result has not read it yet).
    if (PQstatus(connection) == CONNECTION_OK)
        PQconsumeInput(connection);
    return PQstatus(connection) == CONNECTION_BAD;
}

QString runServerScript(const QSqlDatabase &db, const QString &script)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (qstrcmp(handle.typeName(), "PGconn*") != 0 && qstrcmp(handle.typeName(), "pg_conn*") != 0)
        return QStringLiteral("the connection is not to a server");
    PGconn *connection = *static_cast<PGconn *const *>(handle.constData());
    PGresult *result = PQexec(connection, script.toUtf8().constData());
    const ExecStatusType status = PQresultStatus(result);
    QString failure;
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_EMPTY_QUERY) {
        const char *state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
        failure = serverMessage(QSqlError(QString(), QString::fromUtf8(PQresultErrorMessage(result)), QSqlError::StatementError,
                                          QString::fromLatin1(state ? state : "")));
    }
    PQclear(result);
    return failure;
}

QVariant figureValue(const QString &text)
{
    const QChar first = text.isEmpty() ? QChar() : text.front();
    if (!(first.isDigit() || first == QLatin1Char('-') || first == QLatin1Char('+') || first == QLatin1Char('.')))
        return text;
    bool number = false;
    const double value = text.toDouble(&number);
    return number && std::isfinite(value) ? QVariant(value) : QVariant(text);
}

} // namespace vantrel
