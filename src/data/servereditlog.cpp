#include "servereditlog.h"

#include "serverconnection.h"
#include "unhandlederror.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlError>
#include <QSqlQuery>

namespace vantrel {

namespace {

// The log's table, its function for a figure's value, the chain's field and the log's own
// triggers. The lock's key is the log's alone; it is held to the end of the writing transaction.
const char *const LogText = R"sql(
create table editlog(id bigint primary key, at text, tab text, rid bigint, action text, old text, new text,
                     source text default 'other', hash text);
create index editlog_row on editlog(tab, rid);
create index editlog_at on editlog(at);

create function vjson(v text) returns json language sql immutable parallel safe as $$
    select case when v ~ '^-?[0-9]+(\.[0-9]+)?(e[-+][0-9]+)?$' then to_json(v::float8) else to_json(v) end $$;

create function vchain_field(kind text, v text) returns text language sql immutable parallel safe as $$
    select case when v is null then 'N0:' else kind || octet_length(v) || ':' || v end $$;
)sql";

const char *const SealBody = R"sql(
declare
    last_id bigint;
    previous text;
begin
    perform pg_advisory_xact_lock(7346001);
    select id, hash into last_id, previous from editlog order by id desc limit 1;
    new.id := coalesce(last_id, 0) + 1;
    new.at := to_char(clock_timestamp(), 'YYYY-MM-DD HH24:MI:SS.MS');
    new.source := coalesce(nullif(current_setting('vantrel.counter', true), ''), 'other');
    new.hash := encode(sha256(convert_to(coalesce(previous, '')
        || vchain_field('I', new.id::text) || vchain_field('T', new.at) || vchain_field('T', new.tab)
        || vchain_field('I', new.rid::text) || vchain_field('T', new.action) || vchain_field('T', new.old)
        || vchain_field('T', new.new) || vchain_field('T', new.source), 'UTF8')), 'hex');
    return new;
end )sql";

const char *const KeptBody = R"sql(
begin
    raise exception 'The edit log keeps its entries as they were written.';
end )sql";

QString rowJson(const ServerTable &table, const QString &prefix)
{
    QStringList values;
    for (const ServerTable::Column &column : table.columns)
        values << (column.kind == ServerTable::Figure ? QStringLiteral("vjson(%1%2)").arg(prefix, column.name) : prefix + column.name);
    return "json_build_array(" + values.join(QStringLiteral(", ")) + ")::text";
}

QString tableLogBody(const ServerTable &table)
{
    return QStringLiteral(R"sql(
declare
    o text;
    n text;
begin
    if tg_op <> 'INSERT' then o := %2; end if;
    if tg_op <> 'DELETE' then n := %3; end if;
    if tg_op = 'UPDATE' and o = n then return null; end if;
    insert into editlog(tab, rid, action, old, new)
        values ('%1', case when tg_op = 'DELETE' then old.rowid else new.rowid end, lower(tg_op), o, n);
    return null;
end )sql")
        .arg(table.name, rowJson(table, QStringLiteral("old.")), rowJson(table, QStringLiteral("new.")));
}

// A log function runs with its owner's rights, so that a counter writes the log through the
// triggers alone, and finds the tables in the books' own schema whatever its search path.
QString functionText(const QString &name, const QString &body)
{
    return QStringLiteral("create function %1() returns trigger language plpgsql security definer set search_path from current as $$%2$$;\n")
        .arg(name, body);
}

} // namespace

QVector<ServerLogTrigger> serverLogTriggers()
{
    // The catalogue's bits: 1 for each row, 2 before, 4 insert, 8 delete, 16 update, 32 truncate.
    QVector<ServerLogTrigger> triggers = {{QStringLiteral("editlog_seal"), QStringLiteral("editlog"), QStringLiteral("editlog_seal"), 1 | 2 | 4},
                                          {QStringLiteral("editlog_kept"), QStringLiteral("editlog"), QStringLiteral("editlog_kept"), 1 | 2 | 8 | 16},
                                          {QStringLiteral("editlog_kept_truncate"), QStringLiteral("editlog"), QStringLiteral("editlog_kept"), 2 | 32}};
    for (const ServerTable &table : serverTables())
        triggers.append({table.name + QStringLiteral("_log"), table.name, table.name + QStringLiteral("_log"), 1 | 4 | 8 | 16});
    return triggers;
}

QString serverLogFunctionBody(const QString &function)
{
    if (function == QLatin1String("editlog_seal"))
        return QString::fromLatin1(SealBody);
    if (function == QLatin1String("editlog_kept"))
        return QString::fromLatin1(KeptBody);
    for (const ServerTable &table : serverTables())
        if (function == table.name + QStringLiteral("_log"))
            return tableLogBody(table);
    return {};
}

QString serverEditLogTableText()
{
    return QString::fromLatin1(LogText);
}

QString serverEditLogText()
{
    QString text = functionText(QStringLiteral("editlog_seal"), QString::fromLatin1(SealBody))
        + functionText(QStringLiteral("editlog_kept"), QString::fromLatin1(KeptBody))
        + QStringLiteral("create trigger editlog_seal before insert on editlog for each row execute function editlog_seal();\n"
                         "create trigger editlog_kept before update or delete on editlog for each row execute function editlog_kept();\n"
                         "create trigger editlog_kept_truncate before truncate on editlog execute function editlog_kept();\n");
    for (const ServerTable &table : serverTables())
        text += functionText(table.name + QStringLiteral("_log"), tableLogBody(table))
            + QStringLiteral("create trigger %1_log after insert or update or delete on %1 for each row execute function %1_log();\n").arg(table.name);
    return text;
}

QString serverRowsAsLoggedText(const ServerTable &table)
{
    return QStringLiteral("select rowid, %1 from %2 order by rowid").arg(rowJson(table, QString()), table.name);
}

void writeServerStartNote(QSqlQuery &query, const QString &words, const QString &previousYearHash)
{
    const auto run = [&query](const QString &sql) {
        if (!query.exec(sql))
            throw UnhandledError(QStringLiteral("Cannot write the edit log's start: %1").arg(serverMessage(query.lastError())));
    };
    QJsonObject digests;
    for (const ServerTable &table : serverTables()) {
        QCryptographicHash hash(QCryptographicHash::Sha256);
        run(QStringLiteral("declare vantrel_digest no scroll cursor for ") + serverRowsAsLoggedText(table));
        for (bool more = true; more;) {
            run(QStringLiteral("fetch 5000 from vantrel_digest"));
            more = false;
            while (query.next()) {
                more = true;
                hash.addData(QByteArray::number(query.value(0).toLongLong()) + '\x1f');
                hash.addData(query.value(1).toString().toUtf8());
                hash.addData(QByteArrayView("\n"));
            }
        }
        run(QStringLiteral("close vantrel_digest"));
        digests.insert(table.name, QString::fromLatin1(hash.result().toHex()));
    }
    QJsonObject note{{QStringLiteral("note"), words}, {QStringLiteral("tables"), digests}};
    if (!previousYearHash.isEmpty())
        note.insert(QStringLiteral("closedYearLastHash"), previousYearHash);
    query.prepare(QStringLiteral("insert into editlog(tab, rid, action, old, new) values ('', null, 'start', null, ?)"));
    query.addBindValue(QString::fromUtf8(QJsonDocument(note).toJson(QJsonDocument::Compact)));
    if (!query.exec())
        throw UnhandledError(QStringLiteral("Cannot write the edit log's start: %1").arg(serverMessage(query.lastError())));
}

} // namespace vantrel
