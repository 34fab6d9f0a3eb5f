#include "testshop.h"

#include "data/serverconnection.h"
#include "data/serverschema.h"

#include <QRegularExpression>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QThread>

namespace vantrel::test {

void ScriptedDialogs::inform(const QString &message)
{
    shown << message;
    if (booksLocked && booksLocked())
        QTest::qFail(qPrintable(QStringLiteral("a box shown while the books were locked: ") + message), __FILE__, __LINE__);
}

bool ScriptedDialogs::ask(const QString &question)
{
    shown << question;
    if (booksLocked && booksLocked())
        QTest::qFail(qPrintable(QStringLiteral("a question asked while the books were locked: ") + question), __FILE__, __LINE__);
    if (answers.isEmpty()) {
        if (!answerYes)
            QTest::qFail(qPrintable(QStringLiteral("unscripted question: ") + question), __FILE__, __LINE__);
        QThread::msleep(thinking);
        return answerYes;
    }
    return answers.takeFirst();
}

int ScriptedDialogs::choose(const QString &question, const QStringList &items)
{
    shown << question + QStringLiteral(" (") + items.join(QStringLiteral(", ")) + QLatin1Char(')');
    if (choices.isEmpty()) {
        QTest::qFail(qPrintable(QStringLiteral("unscripted choice: ") + question), __FILE__, __LINE__);
        return -1;
    }
    return choices.takeFirst();
}

QDate ScriptedDialogs::askDate(const QString &question, const QDate &proposed)
{
    shown << question + QStringLiteral(" [") + proposed.toString(QStringLiteral("MM/dd/yyyy")) + QLatin1Char(']');
    return days.isEmpty() ? proposed : days.takeFirst();
}

QString errorOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const UnhandledError &error) {
        return error.message();
    }
    return QStringLiteral("(no error)");
}

QString testServer()
{
    QFile uri(qEnvironmentVariable("VANTREL_TEST_SERVER") + QStringLiteral("/uri"));
    if (qEnvironmentVariableIsEmpty("VANTREL_TEST_SERVER"))
        return {};
    if (!uri.open(QIODevice::ReadOnly))
        qFatal("VANTREL_TEST_SERVER names no running test server (tests/support/pgserver ROOT start)");
    return QString::fromUtf8(uri.readAll()).trimmed();
}

namespace {

// The test server's connection to database NAME.
QString serverDatabase(const QString &name)
{
    return QString(testServer()).replace(QStringLiteral("/postgres?"), QLatin1Char('/') + name + QLatin1Char('?'));
}

// Runs a statement on the test server's own database, outside any shop's books.
void onServer(const QString &sql)
{
    {
        QSqlDatabase admin = QSqlDatabase::database(QStringLiteral("test-server"), false);
        if (!admin.isValid()) {
            admin = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("test-server"));
            admin.setConnectOptions(serverConnectOptions(testServer()));
        }
        QSqlQuery query(admin);
        if (!admin.open() || !query.exec(sql))
            qFatal("the test server refused %s: %s", qPrintable(sql), qPrintable(query.lastError().text() + admin.lastError().text()));
    }
}

} // namespace

QString newServerDatabase(const QString &name, const QString &options)
{
    onServer(QStringLiteral("create database ") + name + (options.isEmpty() ? QString() : QLatin1Char(' ') + options));
    return serverDatabase(name);
}

void fillShop(const QString &books)
{
    QFile sql(QStringLiteral(VANTREL_SHOP_SQL));
    if (!sql.open(QIODevice::ReadOnly))
        QTest::qFail("the shared shop's SQL cannot be read", __FILE__, __LINE__);
    Database db(books);
    const QString text = QString::fromUtf8(sql.readAll()).remove(QRegularExpression(QStringLiteral("--[^\n]*")));
    db.execute(QStringLiteral("begin")); // one sync for the whole shop
    for (const QString &statement : text.split(QLatin1Char(';')))
        if (!statement.trimmed().isEmpty())
            db.execute(statement);
    db.execute(QStringLiteral("commit"));
}

TestShop::TestShop(Start start)
    : m_dir(std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/vantrel shop-XXXXXX"))), m_path(m_dir->path())
{
    // Each kind of shop is made once per test program and copied: the same books each time.
    const QString kind = start == Empty ? QStringLiteral("empty") : QStringLiteral("filled");
    // The log names the counter: the shop's is "program", as the program's tools name their
    // own changes.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_path);
    QSettings().setValue(QStringLiteral("books/counter"), QStringLiteral("program"));
    if (!testServer().isEmpty()) {
        static QStringList made;
        static int shops = 0;
        const QString prefix = QStringLiteral("shop_%1_").arg(QCoreApplication::applicationPid()), first = prefix + kind;
        if (!made.contains(kind)) {
            onServer(QStringLiteral("create database ") + first);
            createServerBooks(serverDatabase(first));
            if (start == Filled)
                fillShop(serverDatabase(first));
            made << kind;
        }
        m_serverDatabase = prefix + QString::number(++shops);
        onServer(QStringLiteral("create database %1 template %2").arg(m_serverDatabase, first));
        open();
        return;
    }
    static QTemporaryDir made;
    const QString folder = made.filePath(kind), first = folder + "/vantrel.accdb";
    if (QDir().mkdir(folder)) {
        createDatabaseFile(first);
        if (start == Filled)
            fillShop(buildConnectionString(folder));
    }
    QFile::copy(first, file());
    open();
}

QString TestShop::books() const
{
    if (!m_books.isEmpty())
        return m_books;
    return m_serverDatabase.isEmpty() ? buildConnectionString(m_path) : serverDatabase(m_serverDatabase);
}

TestShop::TestShop(const QString &directory, const QString &books) : m_path(directory), m_books(books)
{
    open();
}

void TestShop::open()
{
    // Settings of the shop's own, from the program's defaults: two runs at once never share them.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_path);
    m_db = std::make_unique<Database>(books());
    dialogs.booksLocked = [this] { return m_db && m_db->inAction(); };
    m_services.reset(new Services{*m_db, dialogs, clock, m_path,
                                  [this](const QString &message) { unhandledErrors << message; }, {}, {}, {}});
}

TestShop::~TestShop()
{
    m_services.reset();
    m_db.reset();
    if (!m_serverDatabase.isEmpty())
        onServer(QStringLiteral("drop database %1 with (force)").arg(m_serverDatabase));
}

namespace {

// A statement of the test's own that fails fails the test, naming the statement and the error.
void failOn(const QString &sql, const QString &error)
{
    if (error != QLatin1String("(no error)"))
        QTest::qFail(qPrintable(QStringLiteral("%1\n   failed: %2").arg(sql, error)), __FILE__, __LINE__);
}

} // namespace

void TestShop::endServerConnections()
{
    onServer(QStringLiteral("select pg_terminate_backend(pid) from pg_stat_activity where datname = '%1' and pid <> pg_backend_pid()").arg(m_serverDatabase));
}

void TestShop::exec(const QString &sql)
{
    failOn(sql, errorOf([&] { m_db->execute(sql); }));
}

QList<QStringList> TestShop::rows(const QString &sql)
{
    QList<QStringList> result;
    const auto read = [&] {
        result.clear();
        for (Recordset rs = m_db->query(sql); !rs.eof(); rs.moveNext()) {
            QStringList row;
            for (const QString &name : rs.fieldNames())
                row << rs.text(name);
            result << row;
        }
    };
    if (!readThroughRestarts) {
        failOn(sql, errorOf(read));
        return result;
    }
    for (;;) {
        try {
            read();
            return result;
        } catch (const ServerLost &) {
            while (!m_db->reconnect().isEmpty())
                QThread::msleep(100);
        }
    }
}

} // namespace vantrel::test
