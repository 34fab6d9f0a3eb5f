#include "serverschema.h"

#include "schema.h"
#include "serverconnection.h"
#include "servereditlog.h"
#include "unhandlederror.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace vantrel {

QStringList ServerTable::names() const
{
    QStringList list;
    for (const Column &column : columns)
        list << column.name;
    return list;
}

QStringList ServerTable::figures() const
{
    QStringList list;
    for (const Column &column : columns)
        if (column.kind == Figure)
            list << column.name;
    return list;
}

const QVector<ServerTable> &serverTables()
{
    using T = ServerTable;
    static const QVector<ServerTable> tables = {
        {"companymaster", {{"companyname", T::Text}, {"cmpid", T::Text}, {"shortname", T::Text}, {"address", T::Text}, {"pin", T::Text}}},
        {"productmaster",
         {{"cmpid", T::Text}, {"mfgname", T::Text}, {"psrno", T::Numbering}, {"prodname", T::Text}, {"shortname", T::Text},
          {"model", T::Text}, {"mrp", T::Figure}, {"wr", T::Figure}, {"rate", T::Figure}, {"boxno", T::Text}}},
        {"suppliermaster",
         {{"ID", T::Numbering}, {"suppname", T::Text}, {"shortname", T::Text}, {"address", T::Text}, {"city", T::Text},
          {"phone", T::Text}, {"mobile", T::Text}, {"pin", T::Text}, {"cbso", T::Text}, {"acctype", T::Text}}},
        {"salesmain",
         {{"invoice", T::Numbering}, {"dat", T::Text}, {"party", T::Text}, {"trans", T::Text}, {"netamt", T::Figure},
          {"dis", T::Figure}, {"disamt", T::Figure}, {"gd", T::Figure}}},
        {"sales",
         {{"cmpid", T::Text}, {"psrno", T::Figure}, {"invoice", T::Text}, {"prodname", T::Text}, {"party", T::Text},
          {"model", T::Text}, {"qty", T::Figure}, {"rate", T::Figure}, {"amount", T::Figure}, {"trans", T::Text}, {"status", T::Text}}},
        {"purchasemain", {{"pono", T::Numbering}, {"dat", T::Text}, {"party", T::Text}, {"trans", T::Text}, {"netamt", T::Figure}}},
        {"purchase",
         {{"cmpid", T::Text}, {"psrno", T::Figure}, {"pono", T::Text}, {"prodname", T::Text}, {"party", T::Text},
          {"model", T::Text}, {"qty", T::Figure}, {"rate", T::Figure}, {"amount", T::Figure}, {"trans", T::Text}, {"status", T::Text}}},
        {"stock",
         {{"cmpid", T::Text}, {"pono", T::Text}, {"psrno", T::Figure}, {"prodname", T::Text}, {"model", T::Text},
          {"party", T::Text}, {"totqty", T::Figure}, {"rate", T::Figure}, {"amt", T::Figure}, {"usedqty", T::Figure}, {"stk", T::Figure}}},
        {"ledger",
         {{"refno", T::Reference}, {"dat", T::Text}, {"ac", T::Text}, {"debit", T::Figure}, {"credit", T::Figure},
          {"accnm", T::Text}, {"type", T::Text}, {"balance", T::Figure}}},
    };
    return tables;
}

const ServerTable *serverTable(const QString &name)
{
    for (const ServerTable &table : serverTables())
        if (table.name.compare(name, Qt::CaseInsensitive) == 0)
            return &table;
    return nullptr;
}

QStringList receiptColumns()
{
    return {"refno", "dat", "ac", "amt", "accnm"};
}

namespace {

// The functions the tables and the statements use. A figure's text is a number when it is one
// as the file reads numbers (blanks around, a sign, digits with a point, an exponent): it is kept
// as the shortest text of its double; a number beyond the double's range fails with the server's
// "out of range", which the program says as "Overflow".
const char *functionsText()
{
    return R"sql(
create extension if not exists citext;

create function vfigure(v text) returns text language sql immutable parallel safe
    set extra_float_digits = 1 as $$
    select case when v ~ '^\s*[-+]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][-+]?[0-9]+)?\s*$' then (v::float8)::text else v end $$;

create function vleading(v text) returns double precision language sql immutable parallel safe as $$
    select case when v is null then null
        else coalesce(substring(v from '^\s*([-+]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][-+]?[0-9]+)?)')::float8, 0) end $$;

-- A figure and a number are equal when the figure is that number, as the file compares a Number
-- column's text with a number: never. Written as the leading number, which the indexes on a
-- figure that joins a number hold, so that such a join reads its rows through them.
create function vfigure_equals(a text, b double precision) returns boolean language sql immutable parallel safe as $$
    select a ~ '^-?[0-9]+(\.[0-9]+)?(e[-+][0-9]+)?$' and vleading(a) = b $$;
create function vnumber_equals(a double precision, b text) returns boolean language sql immutable parallel safe as $$
    select vfigure_equals(b, a) $$;
create operator = (leftarg = text, rightarg = double precision, function = vfigure_equals, commutator = =);
create operator = (leftarg = double precision, rightarg = text, function = vnumber_equals, commutator = =);

-- A figure's place in an order, as the file sorts a Number column: numbers first, by value, then
-- texts.
create function vfigure_is_text(a text) returns boolean language sql immutable parallel safe as $$
    select a !~ '^-?[0-9.]+(e[-+][0-9]+)?$' $$;

)sql";
}

} // namespace

const char *serverDateFunctionsText()
{
    return R"sql(
-- The date a text gives with its day, month and year in the order FORM (as "MDY"), or an ISO
-- date: the ISO date's text; null for a null and for any other text.
create or replace function vdate_iso(v text, form text) returns text language plpgsql immutable parallel safe as $$
declare
    m text[];
    y int; mo int; d int; ydigits int;
    n int[];
begin
    if v is null then return null; end if;
    m := regexp_match(v, '^ *([0-9]{1,5})([^0-9 ])([0-9]{1,5})([^0-9 ])([0-9]{1,5}) *$');
    if m is null then return null; end if;
    n := array[m[1]::int, m[3]::int, m[5]::int];
    if length(m[1]) = 4 and m[2] = '-' and m[4] = '-' then
        y := n[1]; mo := n[2]; d := n[3];
    else
        for k in 1..3 loop
            case substr(form, k, 1)
                when 'D' then d := n[k];
                when 'M' then mo := n[k];
                else
                    ydigits := length(m[2 * k - 1]);
                    y := case when ydigits <= 2 then case when n[k] < 30 then 2000 + n[k] else 1900 + n[k] end
                              when ydigits = 4 then n[k] else -1 end;
            end case;
        end loop;
    end if;
    if y < 100 or y > 9999 or mo < 1 or mo > 12 or d < 1
       or d > extract(day from make_date(y, mo, 1) + interval '1 month' - interval '1 day') then
        return null;
    end if;
    return lpad(y::text, 4, '0') || '-' || lpad(mo::text, 2, '0') || '-' || lpad(d::text, 2, '0');
end $$;

-- The order of day, month and year of the program's short date form, in the setting
-- vantrel.date_order.
create or replace function vdate_order() returns text language sql stable parallel safe as $$
    select coalesce(nullif(current_setting('vantrel.date_order', true), ''), 'MDY') $$;

-- The date a text gives in the program's short date form, or an ISO date: the ISO date's text;
-- null for a null; any other text is a type mismatch.
create or replace function cdate(v text) returns text language plpgsql stable parallel safe as $$
declare
    iso text := vdate_iso(v, vdate_order());
begin
    if iso is null and v is not null then
        raise exception 'Data type mismatch in criteria expression.' using errcode = '22P02';
    end if;
    return iso;
end $$;

-- The date a text gives in the order FORM, as MM/DD/YYYY, the text a register's span compares;
-- null for a text that is no date. The books keep it in an index for each usual order (which a
-- restore builds with no schema on its path: hence the function's own).
create or replace function vdatekey(v text, form text) returns text language plpgsql immutable parallel safe
    set search_path from current as $$
declare
    iso text := vdate_iso(v, form);
begin
    return substr(iso, 6, 2) || '/' || substr(iso, 9, 2) || '/' || substr(iso, 1, 4);
end $$;

-- A number is a day count from 30 December 1899.
create or replace function cdate(v double precision) returns text language plpgsql immutable parallel safe as $$
begin
    if v is null then return null; end if;
    if not (v > -657435 and v < 2958466) then
        raise exception 'Data type mismatch in criteria expression.' using errcode = '22P02';
    end if;
    return to_char(date '1899-12-30' + trunc(v)::int, 'YYYY-MM-DD');
end $$;

-- A date (as cdate takes it) written with the pattern's d, dd, m, mm, mmm, mmmm, yy, yyyy in any
-- case, other characters standing as they are; a value that is not a date comes back as its text.
create or replace function vformat(v text, pattern text) returns text language plpgsql stable parallel safe as $$
declare
    iso text := vdate_iso(v, vdate_order()); y int; mo int; d int; i int := 1; c text; run int; out text := '';
    months text[] := array['January','February','March','April','May','June','July','August','September','October','November','December'];
begin
    if iso is null then return v; end if;
    y := substr(iso, 1, 4)::int; mo := substr(iso, 6, 2)::int; d := substr(iso, 9, 2)::int;
    while i <= length(pattern) loop
        c := lower(substr(pattern, i, 1));
        run := 1;
        while i + run <= length(pattern) and lower(substr(pattern, i + run, 1)) = c loop run := run + 1; end loop;
        if c = 'y' then
            out := out || case when run >= 3 then lpad(y::text, 4, '0') else lpad((y % 100)::text, 2, '0') end;
        elsif c = 'm' and run >= 3 then
            out := out || case when run = 3 then left(months[mo], 3) else months[mo] end;
        elsif c = 'm' or c = 'd' then
            out := out || lpad((case when c = 'm' then mo else d end)::text, case when run >= 2 then 2 else 1 end, '0');
        else
            out := out || substr(pattern, i, run);
        end if;
        i := i + run;
    end loop;
    return out;
end $$;

create or replace function vformat(v double precision, pattern text) returns text language plpgsql stable parallel safe as $$
begin
    if v is null then return null; end if;
    if not (v > -657435 and v < 2958466) then return v::text; end if;
    return vformat(cdate(v), pattern);
end $$;
)sql";
}

QStringList serverFileIndexes()
{
    static const QRegularExpression index(QStringLiteral("^create index (\\w+) on (\\w+)\\(([\\w, ]+)\\);$"));
    QStringList statements;
    for (const QString &line : QString::fromLatin1(schemaText()).split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch m = index.match(line);
        if (!m.hasMatch())
            continue;
        QStringList columns = m.captured(3).split(QLatin1Char(','));
        for (QString &column : columns)
            column = column.trimmed() + QStringLiteral(" nulls first");
        columns << QStringLiteral("rowid");
        statements << QStringLiteral("create index %1 on %2(%3);").arg(m.captured(1), m.captured(2), columns.join(QStringLiteral(", ")));
    }
    return statements;
}

// A walk of the type's rows in (type, figure) compares the case-blind type at every entry, which
// costs more than the sum; these hold the type's rows alone, in the same order of the figure.
const char *serverLedgerSumsText()
{
    return "create index ledger_receipts on ledger(credit__n) where type = 'receipt';\n"
           "create index ledger_payments on ledger(debit__n) where type = 'payment';\n";
}

QString serverDateKeysText(const QString &schema)
{
    QString text;
    for (const char *table : {"salesmain", "purchasemain"})
        for (const char *order : {"MDY", "DMY", "YMD"})
            text += QStringLiteral("create index if not exists %2_day_%3 on %1%2((vdatekey(dat, '%4') collate \"C\"));\n")
                        .arg(schema.isEmpty() ? QString() : schema + QLatin1Char('.'), QLatin1String(table),
                             QString::fromLatin1(order).toLower(), QLatin1String(order));
    return text;
}

namespace {

QString columnText(const QString &table, const ServerTable::Column &column)
{
    switch (column.kind) {
    case ServerTable::Text:
        return column.name + QStringLiteral(" citext collate \"C\"");
    case ServerTable::Numbering:
        return QStringLiteral("%1 double precision constraint %2_%1_number check (%1 not in ('Infinity', '-Infinity', 'NaN'))")
            .arg(column.name, table);
    case ServerTable::Reference:
        return column.name + QStringLiteral(" smallint");
    case ServerTable::Figure:
        return QStringLiteral("%1 text, %1__n double precision generated always as (vleading(%1)) stored").arg(column.name);
    }
    return {};
}

QString tableText(const ServerTable &table)
{
    QStringList columns;
    for (const ServerTable::Column &column : table.columns)
        columns << columnText(table.name, column);
    columns << QStringLiteral("rowid bigint generated always as identity primary key");
    QString text = QStringLiteral("create table %1(\n    %2);\n").arg(table.name, columns.join(QStringLiteral(",\n    ")));
    const QStringList figures = table.figures();
    if (figures.isEmpty())
        return text;
    QString sets;
    for (const QString &figure : figures)
        sets += QStringLiteral("    new.%1 := vfigure(new.%1);\n").arg(figure);
    return text
        + QStringLiteral("create function %1_figures() returns trigger language plpgsql as $$\nbegin\n%2    return new;\nend $$;\n"
                         "create trigger %1_figures before insert or update on %1 for each row execute function %1_figures();\n")
              .arg(table.name, sets);
}

const char *viewText()
{
    return R"sql(
create view receipt as
    select refno, dat, ac, credit as amt, accnm, rowid from ledger where type = 'receipt';

create index ledger_credit on ledger(type, credit__n);
create index ledger_debit on ledger(type, debit__n);

-- A line's document number and a lot's product number, texts that join a number.
create index sales_invoice_number on sales(vleading(invoice), trans);
create index purchase_pono_number on purchase(vleading(pono), trans);
create index stock_product_number on stock(cmpid, vleading(psrno));
)sql";
}

} // namespace

QString serverSchemaText()
{
    QString text = QString::fromLatin1(functionsText()) + QString::fromLatin1(serverDateFunctionsText());
    for (const ServerTable &table : serverTables())
        text += tableText(table);
    text += serverFileIndexes().join(QLatin1Char('\n')) + QLatin1Char('\n') + serverDateKeysText();
    // The closed years, each kept in a schema of its own that the year's close makes.
    text += QStringLiteral("create table closedyears(name citext collate \"C\", closed citext collate \"C\", file citext collate \"C\", "
                           "rowid bigint generated always as identity primary key);\n");
    return text + QString::fromLatin1(viewText()) + QString::fromLatin1(serverLedgerSumsText()) + serverEditLogTableText()
        + QStringLiteral("create table schemaversion(version integer, server integer);\ninsert into schemaversion values(%1, %2);\n")
              .arg(CurrentSchemaVersion)
              .arg(CurrentServerSchemaVersion);
}

QString serverVersionsStatement()
{
    // Books of server version 1 have no column for it.
    return QStringLiteral("select max(version), coalesce(max((to_jsonb(v) ->> 'server')::int), 1) from schemaversion v");
}

QString newerServerBooksReason(const ServerVersions &versions)
{
    if (versions.schema > CurrentSchemaVersion)
        return newerSchemaReason(versions.schema);
    if (versions.server > CurrentServerSchemaVersion)
        return QStringLiteral("written by a newer Vantrel (server version %1; this program knows up to %2). Nothing was changed; start the "
                              "newer program.")
            .arg(versions.server)
            .arg(CurrentServerSchemaVersion);
    return {};
}

QString serverCharacterTypeStatement()
{
    return QStringLiteral("select datctype from pg_database where datname = current_database()");
}

QString unfitCharacterType(const QString &characterType)
{
    if (characterType == QLatin1String("C") || characterType == QLatin1String("POSIX"))
        return {};
    return QStringLiteral("the database's character type is %1, under which texts compare alike beyond A-Z (\"É\" and \"é\"); the books "
                          "need the character type C: createdb --locale=C --encoding=UTF8 --template=template0 NAME")
        .arg(characterType);
}

QStringList yearSchemaStatements(const QString &schema)
{
    QStringList statements{"create schema " + schema};
    for (const ServerTable &table : serverTables())
        statements << QStringLiteral("create table %1.%2 (like %2 including all)").arg(schema, table.name);
    for (const char *table : {"editlog", "schemaversion", "closedyears"})
        statements << QStringLiteral("create table %1.%2 (like %2 including all)").arg(schema, QLatin1String(table));
    statements << QStringLiteral("create view %1.receipt as select refno, dat, ac, credit as amt, accnm, rowid from %1.ledger where type = 'receipt'").arg(schema)
               << QStringLiteral("insert into %1.schemaversion select * from schemaversion").arg(schema);
    return statements;
}

namespace {

// Runs WORK on a connection of its own to the database CONNECTION names; returns why the
// connection or the work failed, or an empty text.
QString onServerConnection(const QString &connection, const std::function<QString(QSqlDatabase &, QSqlQuery &)> &work)
{
    const QString name = QStringLiteral("vantrel-books-setup");
    QString failure;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setConnectOptions(serverConnectOptions(connection));
        QSqlQuery query(db);
        failure = db.open() ? work(db, query) : db.lastError().databaseText().simplified();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return failure;
}

} // namespace

void grantCounters(const QString &connection, const QString &role)
{
    const QString quoted = '"' + QString(role).replace(QLatin1Char('"'), QLatin1String("\"\"")) + '"';
    QStringList tables;
    for (const ServerTable &table : serverTables())
        tables << table.name;
    const QString text = QStringLiteral(
        "begin;\n"
        "do $$ begin execute format('grant connect on database %I to %s', current_database(), '%3'); end $$;\n"
        "do $$ begin execute format('grant usage on schema %I to %s', current_schema(), '%3'); end $$;\n"
        "grant select, insert, update, delete on %2 to %1;\n"
        "grant select on receipt, editlog, schemaversion, closedyears to %1;\n"
        "do $$ declare s text; begin for s in select file from closedyears loop "
        "execute format('grant usage on schema %I to %s', s, '%3'); execute format('grant select on all tables in schema %I to %s', s, '%3'); "
        "end loop; end $$;\n"
        "do $$ begin execute format('grant usage on all sequences in schema %I to %s', current_schema(), '%3'); end $$;\n"
        "commit;\n").arg(quoted, tables.join(QStringLiteral(", ")), QString(quoted).replace(QLatin1Char('\''), QLatin1String("''")));
    const QString failure = onServerConnection(connection, [&](QSqlDatabase &db, QSqlQuery &query) {
        const QString failed = runServerScript(db, text);
        if (!failed.isEmpty())
            query.exec(QStringLiteral("rollback"));
        return failed;
    });
    if (!failure.isEmpty())
        throw UnhandledError(QStringLiteral("Cannot give %1 the counters' rights on %2: %3").arg(role, serverDescription(connection), failure));
}

void createServerBooks(const QString &connection, const std::function<void(QSqlQuery &)> &fill, const QString &startWords)
{
    const QString failure = onServerConnection(connection, [&](QSqlDatabase &db, QSqlQuery &query) {
        QString failed;
        if (!query.exec(QStringLiteral("select count(*) from pg_class c join pg_namespace n on n.oid = c.relnamespace "
                                       "where n.nspname = current_schema()"))
            || !query.next())
            return serverMessage(query.lastError());
        if (query.value(0).toInt() != 0)
            return QStringLiteral("the database is not empty; the books are made only in an empty one");
        if (!query.exec(serverCharacterTypeStatement()) || !query.next())
            return serverMessage(query.lastError());
        if (const QString unfit = unfitCharacterType(query.value(0).toString()); !unfit.isEmpty())
            return unfit;
        if (!query.exec(QStringLiteral("begin")))
            return serverMessage(query.lastError());
        try {
            if (const QString schema = runServerScript(db, serverSchemaText()); !schema.isEmpty())
                throw UnhandledError(schema);
            if (fill)
                fill(query);
            if (const QString log = runServerScript(db, serverEditLogText()); !log.isEmpty())
                throw UnhandledError(log);
            writeServerStartNote(query, startWords);
            if (!query.exec(QStringLiteral("commit")))
                failed = serverMessage(query.lastError());
        } catch (const UnhandledError &error) {
            failed = error.message();
        }
        if (!failed.isEmpty())
            query.exec(QStringLiteral("rollback"));
        return failed;
    });
    if (!failure.isEmpty())
        throw UnhandledError(QStringLiteral("Cannot make the books on %1: %2").arg(serverDescription(connection), failure));
}

} // namespace vantrel
