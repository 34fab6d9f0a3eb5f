#include "database.h"

#include "connectionstring.h"
#include "editlog.h"
#include "engineforms.h"
#include "programsettings.h"
#include "records.h"
#include "schema.h"
#include "serverconnection.h"
#include "serverforms.h"
#include "serverschema.h"
#include "shortdate.h"
#include "sqlfunctions.h"
#include "unhandlederror.h"

#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <QSqlResult>
#include <QTimeZone>
#include <QVarLengthArray>
#include <sqlite3.h>
#include <algorithm>
#include <cmath>
#include <utility>

namespace vantrel {

namespace {

// Which register span a list of dates was walked for.
QString spanKey(const DateSpan &span)
{
    return QStringList{span.table, span.date, span.from, span.to}.join(QLatin1Char('\n'));
}

QString uniqueConnectionName()
{
    static int opened = 0;
    return QStringLiteral("vantrel-%1").arg(++opened);
}

// SQLite reads '%', '?' and '#' specially in a file URI; every other character stands as it is.
QString fileUri(const QString &path, Database::Access access)
{
    QString escaped = path;
    escaped.replace(QLatin1Char('%'), QLatin1String("%25"))
        .replace(QLatin1Char('?'), QLatin1String("%3f"))
        .replace(QLatin1Char('#'), QLatin1String("%23"));
    return QStringLiteral("file:") + escaped + (access == Database::Access::ReadOnly ? QStringLiteral("?mode=ro") : QStringLiteral("?mode=rw"));
}

// Whether the file takes writes: the engine quietly opens a file it may not write read-only, and
// a write-ahead index it may not write fails only the first save. Taking the write lock and
// giving it back at once proves both, and changes nothing in the file.
QString writeProbe(QSqlDatabase &db, sqlite3 *handle)
{
    if (sqlite3_db_readonly(handle, "main") == 1)
        return QStringLiteral("the file is read-only; the program must be able to write it");
    QSqlQuery probe(db);
    if (!probe.exec(QStringLiteral("begin immediate")))
        return QStringLiteral("the file cannot be written (%1)").arg(Database::engineMessage(probe.lastError()));
    probe.exec(QStringLiteral("rollback"));
    return {};
}

// The names the file gives the statement's columns, or NAMES when they cannot be read from it.
QStringList fileNamesOr(const QString &sql, const QStringList &names)
{
    const QStringList file = fileColumnNames(sql);
    return file.size() == names.size() ? file : names;
}

// Column I of the row QUERY stands on, as the file holds it: a figure's text that is a number
// is that number.
QVariant storedValue(const QSqlQuery &query, int i, bool figure)
{
    return figure && !query.isNull(i) ? figureValue(query.value(i).toString()) : query.value(i);
}

// A number the server sent as SENT for a column of KIND (a figure or a floating-point number):
// its value, with NUMBER set; a figure's text that is no number (or a null) leaves NUMBER
// unset, as figureValue() keeps it a text. A value the driver would read otherwise (an
// infinity, a NaN) leaves it unset too.
double serverNumber(QByteArrayView sent, ServerCell kind, bool &number)
{
    number = false;
    if (sent.isEmpty())
        return 0;
    const char first = sent.front();
    if (kind == ServerCell::Figure && !((first >= '0' && first <= '9') || first == '-' || first == '+' || first == '.'))
        return 0;
    const double value = sent.toDouble(&number);
    number = number && std::isfinite(value);
    return value;
}

} // namespace

Database::Database(const QString &connectionString, Access access)
    : m_connectionName(uniqueConnectionName()), m_server(isServerConnection(connectionString)),
      m_fileName(m_server ? connectionString : dataSourceOf(connectionString)), m_access(access)
{
    m_spareReaderTimer.setSingleShot(true);
    m_spareReaderTimer.setInterval(0);
    QObject::connect(&m_spareReaderTimer, &QTimer::timeout, &m_spareReaderTimer, [this] { readySpareReader(); });
    m_spareReaderTimer.start(); // the first grid's reader, ready before the first keystroke
    const QString failure = openConnection(m_connectionName, Writer);
    if (!failure.isEmpty()) {
        QSqlDatabase::removeDatabase(m_connectionName);
        if (m_server)
            throw UnhandledError(QStringLiteral("Cannot open the books on %1: %2").arg(serverDescription(m_fileName), failure));
        throw UnhandledError(QStringLiteral("Cannot open the database file %1: %2").arg(m_fileName, failure));
    }
}

// Every connection to the server reads dates in the program's short date form and sends figures
// in their shortest exact text; a reader, and every connection to a closed year, only reads.
QString Database::openServerConnection(const QString &name, Role role)
{
    const QString options = serverConnectOptions(m_fileName); // throws before a connection is made
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
    if (!db.isValid())
        return QStringLiteral("the PostgreSQL driver of Qt is not installed (libqt6sql6-psql)");
    db.setConnectOptions(options);
    if (!db.open())
        return db.lastError().databaseText().trimmed().replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified();
    return setUpServerSession(db, role);
}

QString Database::setUpServerSession(const QSqlDatabase &db, Role role)
{
    QStringList setup = serverSessionSetup();
    if (role == Reader || m_access == Access::ReadOnly)
        setup << QStringLiteral("set default_transaction_read_only = on");
    // A grid's cursor is planned as its statement alone would be: for every row, not for the
    // first tenth (which would walk the rowid order's index past a whole table for a day's rows).
    if (role == Reader)
        setup << QStringLiteral("set cursor_tuple_fraction = 1");
    // A screen's statement reads a span's rows at most: starting parallel workers (a process
    // each) costs it more than they save (a month's register total took 21-30 ms with them,
    // 14-15 ms without), and the server's other cores are the other counters'.
    setup << QStringLiteral("set max_parallel_workers_per_gather = 0");
    QSqlQuery probe(db);
    for (const QString &statement : setup)
        if (!probe.exec(statement))
            return serverMessage(probe.lastError());
    // A zone the server does not know leaves the server's own.
    probe.exec(QStringLiteral("set timezone = %1").arg(sqlLiteral(QString::fromUtf8(QTimeZone::systemTimeZoneId()))));
    if (!probe.exec(QStringLiteral("select to_regclass('salesmain') is not null and to_regclass('ledger') is not null")) || !probe.next())
        return serverMessage(probe.lastError());
    if (!probe.value(0).toBool())
        return QStringLiteral("the database holds no books (vantrel-initdb makes them in an empty database)");
    if (!probe.exec(serverVersionsStatement()) || !probe.next())
        return serverMessage(probe.lastError());
    const ServerVersions versions{probe.value(0).toInt(), probe.value(1).toInt()};
    if (const QString newer = newerServerBooksReason(versions); !newer.isEmpty())
        return QStringLiteral("the books were ") + newer;
    // The screens' statements need what the books' later versions bring.
    if (versions.server < CurrentServerSchemaVersion && role == Writer)
        return QStringLiteral("the books were made by an older Vantrel (server version %1; this program needs %2): their owner brings them "
                              "up to date by starting Vantrel once with the owner's role, or with vantrel-initdb CONNECTION --upgrade")
            .arg(versions.server)
            .arg(CurrentServerSchemaVersion);
    return {};
}

// The writer sets the file up: write-ahead log with a sync at every commit, so that a statement
// that returned is on disk and a crash at any moment leaves the file whole. A reader only reads:
// each holds one pending query, and its rows are the file as it was when that query began.
QString Database::openConnection(const QString &name, Role role)
{
    if (m_server)
        return openServerConnection(name, role);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(fileUri(m_fileName, m_access));
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open())
        return engineMessage(db.lastError());

    QString failure;
    {
        QSqlQuery probe(db);
        const QList<const char *> writer = {"select count(*) from sqlite_master", "pragma journal_mode=wal", "pragma synchronous=full",
                                            "pragma cache_size=-16384"};
        const QList<const char *> reader = {"select count(*) from sqlite_master", "pragma query_only=1", "pragma cache_size=-4096"};
        for (const char *setup : role == Writer && m_access == Access::ReadWrite ? writer : reader) {
            if (!probe.exec(QLatin1String(setup))) {
                failure = engineMessage(probe.lastError());
                break;
            }
            probe.finish();
        }
    }
    const QVariant handle = db.driver()->handle();
    if (failure.isEmpty() && (qstrcmp(handle.typeName(), "sqlite3*") != 0 || !*static_cast<sqlite3 *const *>(handle.constData())))
        failure = QStringLiteral("the SQLite driver gave no handle");
    if (failure.isEmpty() && role == Writer && m_access == Access::ReadWrite)
        failure = writeProbe(db, *static_cast<sqlite3 *const *>(handle.constData()));
    if (!failure.isEmpty()) {
        db.close();
        return failure;
    }
    sqlite3 *engine = *static_cast<sqlite3 *const *>(handle.constData());
    registerSqlFunctions(engine, ShortDate());
    if (role == Writer && m_access == Access::ReadWrite)
        failure = attachEditLog(engine, ProgramSettings::read().counter());
    if (!failure.isEmpty()) {
        db.close();
        return QStringLiteral("the edit log cannot be kept: %1").arg(failure);
    }
    return {};
}

Database::~Database()
{
    for (const QString &name : m_readers + QStringList{m_connectionName}) {
        {
            QSqlDatabase db = QSqlDatabase::database(name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
    }
}

void Database::execute(const QString &sql)
{
    const QString text = sent(sql);
    markStep(m_connectionName);
    QSqlQuery statement(QSqlDatabase::database(m_connectionName, false));
    if (!statement.exec(text))
        fail(statement);
}

namespace {

// The lock every counter's action takes on the server's books, whatever the database's name.
const char BooksLock[] = "select pg_advisory_xact_lock(7306454856142352)";

} // namespace

void Database::beginAction()
{
    if (m_actionDepth++ > 0)
        return;
    m_onLost.clear();
    QSqlQuery lock(QSqlDatabase::database(m_connectionName, false));
    const bool locked = m_server ? lock.exec(QStringLiteral("begin")) && lock.exec(QLatin1String(BooksLock))
                                 : lock.exec(QStringLiteral("begin immediate"));
    if (!locked) {
        m_actionDepth = 0;
        if (m_server)
            QSqlQuery(QSqlDatabase::database(m_connectionName, false)).exec(QStringLiteral("rollback"));
        fail(lock);
    }
}

void Database::endAction()
{
    if (m_actionDepth == 0 || --m_actionDepth > 0)
        return;
    QSqlQuery end(QSqlDatabase::database(m_connectionName, false));
    const bool kept = end.exec(QStringLiteral("commit"));
    if (!kept)
        QSqlQuery(QSqlDatabase::database(m_connectionName, false)).exec(QStringLiteral("rollback"));
    for (const auto &undo : std::exchange(m_onLost, {}))
        if (!kept)
            undo();
    if (!kept)
        fail(end);
}

void Database::markStep(const QString &connection)
{
    if (!inAction() || !m_server || connection != m_connectionName)
        return;
    QSqlQuery mark(QSqlDatabase::database(m_connectionName, false));
    if (!mark.exec(QStringLiteral("savepoint vantrel_step")))
        fail(mark);
}

void Database::undoStep(const QSqlQuery &failed) const
{
    const QSqlDatabase writer = QSqlDatabase::database(m_connectionName, false);
    if (inAction() && m_server && failed.driver() == writer.driver())
        QSqlQuery(writer).exec(QStringLiteral("rollback to savepoint vantrel_step"));
}

Recordset Database::query(const QString &sql)
{
    const DateSpan span = fileSpanOf(sql);
    if (span.isEmpty() || inAction())
        return readAll(m_connectionName, sql, span.isEmpty() ? QString() : spanDays(m_connectionName, span));
    QSqlQuery read = beginRead(m_connectionName);
    try {
        Recordset rows = readAll(m_connectionName, sql, spanDays(m_connectionName, span));
        read.exec(QStringLiteral("commit"));
        return rows;
    } catch (...) {
        read.exec(QStringLiteral("rollback"));
        throw;
    }
}

// An open query's statement is under way, and keeps its read transaction: the dates walked for
// it still hold.
Recordset Database::queryAlongside(const PendingQuery &pending, const QString &sql)
{
    if (!pending.isOpen())
        return query(sql);
    const DateSpan span = fileSpanOf(sql);
    if (span.isEmpty())
        return readAll(pending.m_connection, sql);
    const bool walked = pending.m_span.span == spanKey(span);
    return readAll(pending.m_connection, sql, walked ? pending.m_span.days : spanDays(pending.m_connection, span));
}

// A query of its own begins the read in which the dates hold; the query's close ends it.
QString Database::readSpan(PendingQuery &pending, const DateSpan &span)
{
    if (span.isEmpty())
        return {};
    pending.m_span.span = spanKey(span);
    if (!pending.m_inAction) {
        beginRead(pending.m_connection);
        pending.m_span.began = true;
    }
    pending.m_span.days = spanDays(pending.m_connection, span);
    return pending.m_span.days;
}

QSqlQuery Database::beginRead(const QString &connection)
{
    QSqlQuery read(QSqlDatabase::database(connection, false));
    if (!read.exec(QStringLiteral("begin")))
        fail(read);
    return read;
}

DateSpan Database::fileSpanOf(const QString &sql) const
{
    return m_server ? DateSpan{} : dateSpanOf(leftJoinForm(sql));
}

// The dates as a list of their values; "null", which no date equals, when none lies in the span.
// A date kept as anything but a text is walked inside the statement, as the engine form does.
QString Database::spanDays(const QString &connection, const DateSpan &span)
{
    QSqlQuery walk = forwardQuery(connection, spanDaysStatement(span));
    QStringList values;
    while (walk.next()) {
        const QVariant day = walk.value(0);
        if (day.typeId() != QMetaType::QString)
            return spanDaysStatement(span);
        values << sqlLiteral(day.toString());
    }
    if (walk.lastError().isValid())
        fail(walk);
    return values.isEmpty() ? QStringLiteral("null") : values.join(QLatin1Char(','));
}

Recordset Database::readAll(const QString &connection, const QString &sql, const QString &days)
{
    QSqlQuery query = forwardQuery(connection, sql, days);
    QStringList names;
    const QSqlRecord record = query.record();
    for (int i = 0; i < record.count(); ++i)
        names << record.fieldName(i);
    if (m_server)
        names = fileNamesOr(sql, names);
    QVector<QVector<QVariant>> rows;
    QVector<bool> figures(record.count(), false);
    while (query.next()) {
        if (m_server && rows.isEmpty())
            figures = serverFigureColumns(query.result()->handle(), record.count());
        QVector<QVariant> row(record.count());
        for (int i = 0; i < record.count(); ++i)
            row[i] = storedValue(query, i, figures[i]);
        rows.append(std::move(row));
    }
    if (query.lastError().isValid())
        fail(query);
    query.finish();
    return Recordset(std::move(names), std::move(rows));
}

QSqlQuery Database::forwardQuery(const QString &connection, const QString &sql, const QString &days)
{
    const QString text = days.isEmpty() ? sent(sql) : observed(spanRowsStatement(fileSpanOf(sql), days));
    markStep(connection);
    QSqlQuery query(QSqlDatabase::database(connection, false));
    query.setForwardOnly(true);
    if (!query.exec(text))
        fail(query);
    return query;
}

PendingQuery Database::startQuery(const QString &sql)
{
    PendingQuery pending;
    pending.m_inAction = inAction();
    pending.m_connection = pending.m_inAction ? m_connectionName : takeReader(); // none is given back when this throws
    pending.m_db = this;
    pending.m_sql = sql;
    pending.m_connections = m_connections;
    if (m_server && pending.m_inAction)
        pending.readWhole(sent(sql));
    else if (m_server)
        pending.openCursor(sent(sql)); // a failure gives the reader back
    else
        pending.m_query = forwardQuery(pending.m_connection, sql, readSpan(pending, fileSpanOf(sql))); // a failure gives the reader back
    return pending;
}

QString Database::takeReader()
{
    if (m_spareReaders.size() <= 1)
        m_spareReaderTimer.start();
    if (!m_spareReaders.isEmpty())
        return m_spareReaders.takeLast();
    QString failure;
    const QString name = openReader(failure);
    if (name.isEmpty() && m_server) // a server that stopped answering while the program works: it waits for it
        throw ServerLost(failure);
    if (name.isEmpty())
        throw UnhandledError(failure);
    return name;
}

QString Database::openReader(QString &failure)
{
    const QString name = m_connectionName + QStringLiteral("-reader-%1").arg(m_readers.size() + 1);
    failure = openConnection(name, Reader);
    if (!failure.isEmpty()) {
        QSqlDatabase::removeDatabase(name);
        return {};
    }
    m_readers << name;
    return name;
}

// A reader that cannot be opened now is left for the query that needs one, which then says why.
void Database::readySpareReader()
{
    if (!inAction() && !std::exchange(m_writerWarm, true))
        warmUp(m_connectionName);
    QString failure;
    if (m_spareReaders.isEmpty())
        if (const QString name = openReader(failure); !name.isEmpty()) {
            warmUp(name);
            m_spareReaders << name;
        }
}

// Never during an action: the action's own locks (a year's close moves tables) would hold the
// warm-up, and the program with it, until the action ended. What it finds is of no matter: a
// server that stopped answering is found by the next statement.
void Database::warmUp(const QString &connection)
{
    if (m_server && !inAction())
        QSqlQuery(QSqlDatabase::database(connection, false)).exec(serverWarmUpStatement());
}

void Database::giveBack(const QString &reader)
{
    m_spareReaders << reader;
}

PendingQuery::PendingQuery(PendingQuery &&other) noexcept
    : m_db(std::exchange(other.m_db, nullptr)), m_connection(std::move(other.m_connection)), m_sql(std::move(other.m_sql)),
      m_query(std::move(other.m_query)), m_connections(other.m_connections), m_pageRows(other.m_pageRows),
      m_inAction(std::exchange(other.m_inAction, false)), m_columns(std::move(other.m_columns)), m_span(std::exchange(other.m_span, {}))
{
}

PendingQuery &PendingQuery::operator=(PendingQuery &&other) noexcept
{
    if (this != &other) {
        close();
        m_db = std::exchange(other.m_db, nullptr);
        m_connection = std::move(other.m_connection);
        m_sql = std::move(other.m_sql);
        m_query = std::move(other.m_query);
        m_connections = other.m_connections;
        m_pageRows = other.m_pageRows;
        m_inAction = std::exchange(other.m_inAction, false);
        m_columns = std::move(other.m_columns);
        m_span = std::exchange(other.m_span, {});
    }
    return *this;
}

PendingQuery::~PendingQuery()
{
    close();
}

sqlite3_stmt *PendingQuery::statement() const
{
    const QSqlResult *result = m_db && !m_db->m_server ? m_query.result() : nullptr;
    const QVariant handle = result ? result->handle() : QVariant();
    if (qstrcmp(handle.typeName(), "sqlite3_stmt*") != 0)
        return nullptr;
    return *static_cast<sqlite3_stmt *const *>(handle.constData());
}

namespace {

// A grid's first page of rows from the server: the rows it reads when bound (a screenful and
// more), each a share of a keystroke's time; the pages after it grow to the last size, so that
// walking a long list rarely waits for the next.
const int FirstPageRows = 100, LastPageRows = 6400;

} // namespace

void PendingQuery::openCursor(const QString &engineSql)
{
    m_query = QSqlQuery(QSqlDatabase::database(m_connection, false));
    m_query.setForwardOnly(false); // each page read whole, so that other statements may run between
    m_pageRows = 0;
    if (!m_query.exec(QStringLiteral("begin isolation level repeatable read read only")) || !planForFirstRows()
        || !m_query.exec(QStringLiteral("declare vantrel_rows no scroll cursor for ") + engineSql) || !fetchPage())
        m_db->fail(m_query);
}

// The product search finds every match through the name's index and sorts them, which is the
// quicker when few match; when many do, its first screenful comes at once by walking the index
// that holds its groups in order, a plan for the first rows (the file's own form does the same).
bool PendingQuery::planForFirstRows()
{
    const ProductSearch search = productSearchOf(m_sql);
    if (search.matches.isEmpty())
        return true;
    // Only whether more than that many match counts: the count stops there.
    const QString enough = QStringLiteral("select count(*) from (select 1 from productmaster where prodname like %1 limit %2) c")
                               .arg(search.pattern)
                               .arg(ManyMatchingProducts + 1);
    if (!m_query.exec(serverForm(enough)) || !m_query.next())
        return false;
    if (m_query.value(0).toInt() <= ManyMatchingProducts)
        return true;
    return m_query.exec(QStringLiteral("set local cursor_tuple_fraction = 0.02"));
}

// During an action the rows are read at once, on the action's connection within its transaction.
void PendingQuery::readWhole(const QString &engineSql)
{
    m_db->markStep(m_connection);
    m_query = QSqlQuery(QSqlDatabase::database(m_connection, false));
    m_query.setForwardOnly(false);
    m_pageRows = 0; // no pages to fetch
    if (!m_query.exec(engineSql))
        m_db->fail(m_query);
}

bool PendingQuery::fetchPage()
{
    m_pageRows = m_pageRows == 0 ? FirstPageRows : std::min(2 * m_pageRows, LastPageRows);
    return m_query.exec(QStringLiteral("fetch %1 from vantrel_rows").arg(m_pageRows));
}

QStringList PendingQuery::columnNames() const
{
    QStringList names;
    const QSqlRecord record = m_query.record();
    for (int i = 0; i < record.count(); ++i)
        names << record.fieldName(i);
    return m_db && m_db->m_server ? fileNamesOr(m_sql, names) : names;
}

QString PendingQuery::failureMessage() const
{
    return m_db ? m_db->messageOf(m_query.lastError()) : Database::engineMessage(m_query.lastError());
}

const PendingQuery::ServerColumns &PendingQuery::serverColumns(int columns) const
{
    if (m_columns.kinds.isEmpty()) {
        m_columns.kinds = serverCellKinds(m_query.result()->handle(), columns);
        const QSqlRecord record = m_query.record();
        m_columns.texts.fill(false, columns);
        for (int i = 0; i < columns; ++i)
            m_columns.texts[i] = m_columns.kinds[i] == ServerCell::Other && record.field(i).metaType().id() == QMetaType::QString;
    }
    return m_columns;
}

bool PendingQuery::stepRow(QString &failure)
{
    if (m_db && m_db->m_server && m_connections != m_db->m_connections)
        return false; // its connection was opened afresh: the rows end where they stood
    if (m_db && m_db->m_server) {
        if (m_query.next() || (m_pageRows > 0 && m_query.size() == m_pageRows && fetchPage() && m_query.next()))
            return true;
        if (m_query.lastError().isValid())
            failure = m_db->messageOf(m_query.lastError());
        return false;
    }
    sqlite3_stmt *row = statement();
    const int step = row ? sqlite3_step(row) : SQLITE_DONE;
    if (step != SQLITE_ROW && step != SQLITE_DONE)
        failure = QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(row)));
    return step == SQLITE_ROW;
}

void PendingQuery::appendRow(int columns, QByteArray &text, QVector<quint32> &cellEnds, std::vector<bool> &numbers) const
{
    if (m_db && m_db->m_server) {
        const ServerColumns &kinds = serverColumns(columns);
        QVarLengthArray<QByteArrayView, 16> cells(columns);
        serverRowTexts(m_query.result()->handle(), m_query.at(), cells.data(), columns);
        for (int i = 0; i < columns; ++i) {
            const QByteArrayView sent = cells[i];
            const bool numeric = kinds.kinds[i] == ServerCell::Figure || kinds.kinds[i] == ServerCell::Double;
            const bool asWritten = numeric && isDoubleText(sent); // most figures come as the file writes them
            bool number = asWritten;
            const double value = numeric && !asWritten ? serverNumber(sent, kinds.kinds[i], number) : 0;
            if (kinds.texts[i] || asWritten || (kinds.kinds[i] == ServerCell::Figure && !number)) {
                text += sent; // a text as typed; a null is empty
            } else if (number) {
                appendDoubleText(text, value);
            } else if (kinds.kinds[i] == ServerCell::Integer) {
                text += sent;
                number = !sent.isEmpty();
            } else {
                const QVariant converted = storedValue(m_query, i, false);
                const int type = converted.typeId();
                number = !converted.isNull() && (type == QMetaType::Double || type == QMetaType::Int || type == QMetaType::LongLong);
                text += displayText(converted).toUtf8();
            }
            numbers.push_back(number);
            cellEnds << quint32(text.size());
        }
        return;
    }
    sqlite3_stmt *row = statement();
    for (int i = 0; i < columns; ++i) {
        const int type = sqlite3_column_type(row, i);
        numbers.push_back(type == SQLITE_INTEGER || type == SQLITE_FLOAT);
        switch (type) {
        case SQLITE_NULL:
            break;
        case SQLITE_INTEGER:
            text += QByteArray::number(sqlite3_column_int64(row, i));
            break;
        case SQLITE_FLOAT:
            appendDoubleText(text, sqlite3_column_double(row, i));
            break;
        default: // a text, or bytes, which the grid shows as text
            text.append(reinterpret_cast<const char *>(sqlite3_column_text(row, i)), sqlite3_column_bytes(row, i));
            break;
        }
        cellEnds << quint32(text.size());
    }
}

// The statement ends, which ends its reading of the file, before its connection is spare.
// A moved-from query is empty and owns nothing.
void PendingQuery::close()
{
    if (!m_db)
        return;
    m_query.finish();
    if (m_db->m_server && !m_inAction) // ends the cursor and its transaction, whatever state they are in
        m_query.exec(QStringLiteral("rollback"));
    if (std::exchange(m_span, {}).began)
        QSqlQuery(QSqlDatabase::database(m_connection, false)).exec(QStringLiteral("rollback"));
    m_query = QSqlQuery();
    m_columns = {};
    Database *db = std::exchange(m_db, nullptr);
    if (!std::exchange(m_inAction, false))
        db->giveBack(m_connection);
}

QString Database::sent(const QString &sql) const
{
    if (m_server && hasSecondStatement(sql))
        throw UnhandledError(QStringLiteral("Unable to execute multiple statements at a time"));
    return observed(engineText(sql));
}

QString Database::observed(const QString &engineSql) const
{
    if (m_observer)
        m_observer(engineSql);
    return engineSql;
}

void Database::fail(const QSqlQuery &query) const
{
    // The server's own word for a lost connection (class 08, or an administrator's or a crash's
    // shutdown), or a connection found closed.
    static const QRegularExpression lost(QStringLiteral("^(08|57P0[123])"));
    if (m_server && (lost.match(query.lastError().nativeErrorCode()).hasMatch() || serverConnectionBroken(query.driver())))
        throw ServerLost(messageOf(query.lastError()));
    undoStep(query);
    throw UnhandledError(messageOf(query.lastError()));
}

bool Database::serverLost() const
{
    if (!m_server)
        return false;
    for (const QString &name : QStringList{m_connectionName} + m_readers)
        if (serverConnectionBroken(QSqlDatabase::database(name, false).driver()))
            return true;
    return false;
}

QString Database::reconnect()
{
    ++m_connections;
    m_actionDepth = 0; // the action's transaction went with its connection
    for (const QString &name : QStringList{m_connectionName} + m_readers) {
        QSqlDatabase db = QSqlDatabase::database(name, false);
        db.close();
        if (!db.open())
            return serverDescription(m_fileName) + QStringLiteral(": ") + db.lastError().databaseText().simplified();
        if (const QString failure = setUpServerSession(db, name == m_connectionName ? Writer : Reader); !failure.isEmpty())
            return serverDescription(m_fileName) + QStringLiteral(": ") + failure;
    }
    return {};
}

QString Database::messageOf(const QSqlError &error) const
{
    return m_server ? serverMessage(error) : engineMessage(error);
}

QString Database::engineMessage(const QSqlError &error)
{
    // A statement the driver refuses before the engine runs it (a second statement after a ';')
    // leaves the engine saying "not an error": the driver's own text is the reason then.
    const QString text = error.databaseText();
    if (text.isEmpty() || text == QLatin1String("not an error"))
        return error.driverText().isEmpty() ? error.text() : error.driverText();
    return text;
}

QString Database::engineText(const QString &sql) const
{
    return m_server ? serverForm(sql) : engineForm(sql);
}

} // namespace vantrel
