#include "editlog.h"

#include "data/schema.h"
#include "editlogchain.h"
#include "enginestatement.h"
#include "data/records.h"
#include "data/unhandlederror.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <sqlite3.h>

namespace vantrel {

namespace {

const char *const Now = "strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')";
const char *const Kept = "select raise(abort, 'The edit log keeps its entries as they were written.')";

QString engineMessage(sqlite3 *db) { return QString::fromUtf8(sqlite3_errmsg(db)); }

QString columnsOf(const QString &prefix, const QStringList &columns)
{
    QStringList named;
    for (const QString &column : columns)
        named << prefix + column;
    return "json_array(" + named.join(QStringLiteral(", ")) + ")";
}

QStringList triggersOf(const LoggedTable &table)
{
    const QString name = table.name, olds = columnsOf(QStringLiteral("old."), table.columns),
                  news = columnsOf(QStringLiteral("new."), table.columns);
    const QString into = QStringLiteral("insert into editlog(at, tab, rid, action, old, new) values (%1, '%2', ").arg(QLatin1String(Now), name);
    return {
        QStringLiteral("create trigger %1_log_insert after insert on %1 begin %2new.rowid, 'insert', null, %3); end").arg(name, into, news),
        QStringLiteral("create trigger %1_log_update after update on %1 when %3 is not %4 begin %2new.rowid, 'update', %3, %4); end")
            .arg(name, into, olds, news),
        QStringLiteral("create trigger %1_log_delete after delete on %1 begin %2old.rowid, 'delete', %3, null); end").arg(name, into, olds),
    };
}

// The chain function: editlog_chain(id, at, tab, rid, action, old, new, source) gives the
// entry's hash, walking back over entries not yet sealed to the newest sealed one.
void chainFunction(sqlite3_context *context, int, sqlite3_value **arguments)
{
    sqlite3 *db = sqlite3_context_db_handle(context);
    EngineStatement before(db, QStringLiteral("select id, at, tab, rid, action, old, new, source, hash from main.editlog where id < ?1 order by id desc"));
    if (!before.prepared()) {
        sqlite3_result_error(context, sqlite3_errmsg(db), -1);
        return;
    }
    sqlite3_bind_value(before.get(), 1, arguments[0]);
    QVector<EntryFields> unsealed;
    QByteArray previous;
    while (before.step() == SQLITE_ROW) {
        if (sqlite3_column_type(before.get(), 8) != SQLITE_NULL) {
            previous = QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(before.get(), 8)));
            break;
        }
        unsealed.prepend(entryFields(before.get()));
    }
    for (const EntryFields &entry : std::as_const(unsealed))
        previous = chainHash(previous, entry);
    EntryFields entry;
    for (int i = 0; i < 8; ++i)
        entry[i] = fieldOf(arguments[i]);
    const QByteArray hash = chainHash(previous, entry);
    sqlite3_result_text(context, hash.constData(), int(hash.size()), SQLITE_TRANSIENT);
}

bool holdsEditLog(sqlite3 *db)
{
    EngineStatement probe(db, QStringLiteral("select 1 from sqlite_schema where type = 'table' and name = 'editlog'"));
    return probe.step() == SQLITE_ROW;
}

QString sealUnsealed(sqlite3 *db)
{
    QVector<qint64> ids;
    {
        EngineStatement unsealed(db, QStringLiteral("select id from editlog where hash is null order by id"));
        while (unsealed.step() == SQLITE_ROW)
            ids << sqlite3_column_int64(unsealed.get(), 0);
    }
    if (ids.isEmpty())
        return {};
    if (sqlite3_exec(db, "savepoint editlog_seal", nullptr, nullptr, nullptr) != SQLITE_OK)
        return engineMessage(db);
    EngineStatement seal(db, QStringLiteral("update editlog set hash = editlog_chain(id, at, tab, rid, action, old, new, source) where id = ?1"));
    for (qint64 id : ids) {
        sqlite3_reset(seal.get());
        sqlite3_bind_int64(seal.get(), 1, id);
        if (seal.step() != SQLITE_DONE) {
            const QString message = engineMessage(db);
            sqlite3_exec(db, "rollback to editlog_seal; release editlog_seal", nullptr, nullptr, nullptr);
            return message;
        }
    }
    return sqlite3_exec(db, "release editlog_seal", nullptr, nullptr, nullptr) == SQLITE_OK ? QString() : engineMessage(db);
}

} // namespace

const QVector<LoggedTable> &loggedTables()
{
    static const QVector<LoggedTable> tables = [] {
        QVector<LoggedTable> found;
        sqlite3 *db = nullptr;
        sqlite3_open(":memory:", &db);
        sqlite3_exec(db, (QByteArray(schemaText()) + closedYearsText()).constData(), nullptr, nullptr, nullptr);
        {
            EngineStatement names(db, QStringLiteral("select name from sqlite_schema where type = 'table' order by rowid"));
            while (names.step() == SQLITE_ROW)
                found.append({QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(names.get(), 0))), {}});
            for (LoggedTable &table : found) {
                EngineStatement columns(db, "select name from pragma_table_info('" + table.name + "') order by cid");
                while (columns.step() == SQLITE_ROW)
                    table.columns << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(columns.get(), 0)));
            }
        }
        sqlite3_close(db);
        return found;
    }();
    return tables;
}

QStringList editLogStatements()
{
    QStringList statements = {
        QStringLiteral("create table editlog(id integer primary key, at text, tab text, rid integer, action text, old text, new text, "
                       "source text default 'other', hash text)"),
        QStringLiteral("create index editlog_row on editlog(tab, rid)"),
        QStringLiteral("create index editlog_at on editlog(at)"),
        // What another client wrote and the program has still to seal, found at each start
        // without reading the log.
        QStringLiteral("create index editlog_unsealed on editlog(id) where hash is null"),
        QStringLiteral("create trigger editlog_kept_update before update on editlog when old.hash is not null begin %1; end").arg(QLatin1String(Kept)),
        QStringLiteral("create trigger editlog_kept_delete before delete on editlog begin %1; end").arg(QLatin1String(Kept)),
    };
    for (const LoggedTable &table : loggedTables())
        statements << triggersOf(table);
    return statements;
}

QStringList editLogTriggerNames()
{
    QStringList names;
    for (const QString &statement : editLogStatements())
        if (statement.startsWith(QLatin1String("create trigger ")))
            names << statement.section(QLatin1Char(' '), 2, 2);
    return names;
}

QString dropEditLogTriggersText()
{
    QString text;
    for (const QString &name : editLogTriggerNames())
        text += "drop trigger if exists " + name + ";\n";
    return text;
}

QString rowsAsLoggedText(const LoggedTable &table)
{
    return "select rowid, " + columnsOf(QString(), table.columns) + " from " + table.name + " order by rowid";
}

QString attachEditLog(sqlite3 *db, const QString &source)
{
    if (!holdsEditLog(db))
        return {};
    if (sqlite3_create_function_v2(db, "editlog_chain", 8, SQLITE_UTF8, nullptr, chainFunction, nullptr, nullptr, nullptr) != SQLITE_OK)
        return engineMessage(db);
    const QByteArray seal = QStringLiteral("create temp trigger if not exists editlog_seal after insert on main.editlog when new.hash is null begin "
                                           "update editlog set source = %1, "
                                           "hash = editlog_chain(new.id, new.at, new.tab, new.rid, new.action, new.old, new.new, %1) where id = new.id; end")
                                .arg(sqlLiteral(source))
                                .toUtf8();
    if (sqlite3_exec(db, seal.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        return engineMessage(db);
    return sealUnsealed(db);
}

void writeEditLogNote(sqlite3 *db, const QString &action, const QString &words, const QString &previousYearHash)
{
    if (const QString failure = attachEditLog(db); !failure.isEmpty())
        throw UnhandledError(QStringLiteral("Cannot keep the edit log: %1").arg(failure));
    QJsonObject note{{QStringLiteral("note"), words}};
    if (action == QLatin1String("start")) {
        QJsonObject digests;
        for (const LoggedTable &table : loggedTables())
            digests.insert(table.name, QString::fromLatin1(tableDigest(db, table)));
        note.insert(QStringLiteral("tables"), digests);
    }
    if (!previousYearHash.isEmpty())
        note.insert(QStringLiteral("closedYearLastHash"), previousYearHash);
    const QByteArray json = QJsonDocument(note).toJson(QJsonDocument::Compact);
    EngineStatement insert(db, QStringLiteral("insert into editlog(at, tab, rid, action, old, new) values (%1, '', null, ?1, null, ?2)").arg(QLatin1String(Now)));
    const QByteArray actionText = action.toUtf8();
    sqlite3_bind_text(insert.get(), 1, actionText.constData(), int(actionText.size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(insert.get(), 2, json.constData(), int(json.size()), SQLITE_TRANSIENT);
    if (insert.step() != SQLITE_DONE)
        throw UnhandledError(QStringLiteral("Cannot write the edit log's %1: %2").arg(action, engineMessage(db)));
}

QByteArray lastEditLogHash(sqlite3 *db)
{
    EngineStatement last(db, QStringLiteral("select hash from editlog order by id desc limit 1"));
    if (!last.prepared())
        throw UnhandledError(QStringLiteral("Cannot read the edit log: %1").arg(engineMessage(db)));
    return last.step() == SQLITE_ROW ? QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(last.get(), 0))) : QByteArray();
}

} // namespace vantrel
