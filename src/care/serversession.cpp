#include "serversession.h"

#include "data/serverconnection.h"
#include "data/unhandlederror.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlField>
#include <QVariant>

namespace vantrel {

namespace {

// Rows fetched from the server at a time.
const int PageRows = 1000;

class ServerRows : public BookRows {
public:
    ServerRows(const ServerSession &reader, const QString &cursor, const QString &sql)
        : m_reader(reader), m_page(QSqlDatabase::database(reader.connectionName(), false)), m_cursor(cursor), m_sql(sql)
    {
        // Each page read whole (a forward-only query streams its rows and is lost when another runs).
        run(QStringLiteral("declare %1 no scroll cursor for %2").arg(cursor, sql));
    }
    ~ServerRows() override
    {
        m_page.finish();
        m_page.exec("close " + m_cursor);
    }
    bool next() override
    {
        if (m_page.isActive() && m_page.next())
            return true;
        if (m_done)
            return false;
        run(QStringLiteral("fetch %1 from %2").arg(PageRows).arg(m_cursor));
        m_done = m_page.size() >= 0 && m_page.size() < PageRows;
        return m_page.next();
    }
    bool isNull(int column) const override { return m_page.isNull(column); }
    QString text(int column) const override { return m_page.value(column).toString(); }
    double number(int column) const override { return m_page.value(column).toDouble(); }
    qint64 integer(int column) const override { return m_page.value(column).toLongLong(); }
    QString type(int column) const override
    {
        if (m_page.isNull(column))
            return QStringLiteral("null");
        switch (m_page.record().field(column).metaType().id()) { // the column's type: a bigint's value may come as its text
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Short: return QStringLiteral("integer");
        case QMetaType::Double: return QStringLiteral("real");
        default: return QStringLiteral("text");
        }
    }

private:
    void run(const QString &statement)
    {
        if (!m_page.exec(statement))
            m_reader.fail(m_sql, serverMessage(m_page.lastError()));
    }

    const ServerSession &m_reader;
    QSqlQuery m_page;
    QString m_cursor, m_sql;
    bool m_done = false;
};

} // namespace

ServerSession::ServerSession(const QString &connection, Mode mode) : m_connection(connection)
{
    static int readers = 0;
    m_name = QStringLiteral("vantrel-reader-%1").arg(++readers);
    QString action, failure;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_name);
        db.setConnectOptions(serverConnectOptions(connection));
        QSqlQuery setup(db);
        if (!db.open()) {
            action = QStringLiteral("cannot open them");
            failure = db.lastError().databaseText().simplified();
        }
        QStringList statements = serverSessionSetup();
        if (mode == Mode::Snapshot)
            statements << QStringLiteral("begin isolation level repeatable read read only");
        for (const QString &statement : statements)
            if (failure.isEmpty() && !setup.exec(statement)) {
                action = statement;
                failure = serverMessage(setup.lastError());
            }
    }
    if (!failure.isEmpty()) {
        QSqlDatabase::removeDatabase(m_name);
        fail(action, failure);
    }
}

ServerSession::~ServerSession()
{
    QSqlDatabase::database(m_name, false).close(); // the server rolls back what is left open
    QSqlDatabase::removeDatabase(m_name);
}

std::unique_ptr<BookRows> ServerSession::rows(const QString &sql)
{
    return std::make_unique<ServerRows>(*this, QStringLiteral("vantrel_read_%1").arg(++m_cursors), sql);
}

void ServerSession::run(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(m_name, false));
    if (!query.exec(sql))
        fail(sql, serverMessage(query.lastError()));
}

void ServerSession::fail(const QString &action, const QString &message) const
{
    throw UnhandledError(QStringLiteral("%1: %2: %3").arg(serverDescription(m_connection), action, message));
}

} // namespace vantrel
