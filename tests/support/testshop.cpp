#include "testshop.h"

#include <QRegularExpression>
#include <QSettings>
#include <QTest>

namespace vantrel::test {

bool ScriptedDialogs::ask(const QString &question)
{
    shown << question;
    if (answers.isEmpty()) {
        if (!answerYes)
            QTest::qFail(qPrintable(QStringLiteral("unscripted question: ") + question), __FILE__, __LINE__);
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

TestShop::TestShop(Start start)
    : m_dir(std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/vantrel shop-XXXXXX"))), m_path(m_dir->path())
{
    // Each kind of shop is made once per test program, through the program's own connection as
    // the screens write, and copied: the same file each time.
    static QTemporaryDir made;
    const QString kind = made.filePath(start == Empty ? QStringLiteral("empty") : QStringLiteral("filled")), first = kind + "/vantrel.accdb";
    if (QDir().mkdir(kind)) {
        createDatabaseFile(first);
        QFile sql(QStringLiteral(VANTREL_SHOP_SQL));
        if (start == Filled && !sql.open(QIODevice::ReadOnly))
            QTest::qFail("the shared shop's SQL cannot be read", __FILE__, __LINE__);
        if (start == Filled) {
            Database db(buildConnectionString(kind));
            const QString text = QString::fromUtf8(sql.readAll()).remove(QRegularExpression(QStringLiteral("--[^\n]*")));
            db.execute(QStringLiteral("begin")); // one sync for the whole shop
            for (const QString &statement : text.split(QLatin1Char(';')))
                if (!statement.trimmed().isEmpty())
                    db.execute(statement);
            db.execute(QStringLiteral("commit"));
        }
    }
    QFile::copy(first, file());
    open();
}

TestShop::TestShop(const QString &directory) : m_path(directory)
{
    open();
}

void TestShop::open()
{
    // Settings of the shop's own, from the program's defaults: two runs at once never share them.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_path);
    m_db = std::make_unique<Database>(buildConnectionString(m_path));
    m_services.reset(new Services{*m_db, dialogs, clock, m_path,
                                  [this](const QString &message) { unhandledErrors << message; }, {}, {}, {}});
}

TestShop::~TestShop() = default;

namespace {

// A statement of the test's own that fails fails the test, naming the statement and the error.
void failOn(const QString &sql, const QString &error)
{
    if (error != QLatin1String("(no error)"))
        QTest::qFail(qPrintable(QStringLiteral("%1\n   failed: %2").arg(sql, error)), __FILE__, __LINE__);
}

} // namespace

void TestShop::exec(const QString &sql)
{
    failOn(sql, errorOf([&] { m_db->execute(sql); }));
}

QList<QStringList> TestShop::rows(const QString &sql)
{
    QList<QStringList> result;
    failOn(sql, errorOf([&] {
        for (Recordset rs = m_db->query(sql); !rs.eof(); rs.moveNext()) {
            QStringList row;
            for (const QString &name : rs.fieldNames())
                row << rs.text(name);
            result << row;
        }
    }));
    return result;
}

} // namespace vantrel::test
