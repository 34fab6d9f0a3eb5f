#include "testshop.h"

#include "data/connectionstring.h"
#include "data/schema.h"
#include "data/unhandlederror.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTest>

namespace vantrel::test {

bool ScriptedDialogs::ask(const QString &question)
{
    shown << question;
    if (answers.isEmpty()) {
        QTest::qFail(qPrintable(QStringLiteral("unscripted question: ") + question), __FILE__, __LINE__);
        return false;
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

QString errorOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const UnhandledError &error) {
        return error.message();
    }
    return QStringLiteral("(no error)");
}

TestShop::TestShop(Start start) : m_dir(QDir::tempPath() + QStringLiteral("/vantrel shop-XXXXXX"))
{
    QSettings().clear(); // every shop starts from the program's defaults
    createDatabaseFile(m_dir.path() + QStringLiteral("/vantrel.accdb"));
    m_db = std::make_unique<Database>(buildConnectionString(m_dir.path()));
    m_services.reset(new Services{*m_db, dialogs, clock, m_dir.path(),
                                  [this](const QString &message) { unhandledErrors << message; }, {}, {}, {}});
    if (start == Empty)
        return;
    QFile sql(QStringLiteral(VANTREL_SHOP_SQL));
    if (!sql.open(QIODevice::ReadOnly))
        QTest::qFail("the shared shop's SQL cannot be read", __FILE__, __LINE__);
    QString text;
    for (const QString &line : QString::fromUtf8(sql.readAll()).split(QLatin1Char('\n')))
        if (!line.startsWith(QLatin1String("--")))
            text += line + QLatin1Char('\n');
    exec(QStringLiteral("begin")); // one sync for the whole shop
    for (const QString &statement : text.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!statement.trimmed().isEmpty())
            exec(statement);
    exec(QStringLiteral("commit"));
}

TestShop::~TestShop() = default;

void TestShop::exec(const QString &sql)
{
    try {
        m_db->execute(sql);
    } catch (const UnhandledError &error) {
        QTest::qFail(qPrintable(QStringLiteral("%1\n   failed: %2").arg(sql, error.message())), __FILE__, __LINE__);
    }
}

QList<QStringList> TestShop::rows(const QString &sql)
{
    QList<QStringList> result;
    try {
        Recordset rs = m_db->query(sql);
        for (; !rs.eof(); rs.moveNext()) {
            QStringList row;
            for (const QString &name : rs.fieldNames())
                row << rs.text(name);
            result << row;
        }
    } catch (const UnhandledError &error) {
        QTest::qFail(qPrintable(QStringLiteral("%1\n   failed: %2").arg(sql, error.message())), __FILE__, __LINE__);
    }
    return result;
}

} // namespace vantrel::test
