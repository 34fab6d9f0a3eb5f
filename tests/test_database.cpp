// The database file: opening and its failures, the schema, the date functions, the engine's
// handling of the system's query texts, and statements that fail.
#include "data/connectionstring.h"
#include "data/database.h"
#include "data/schema.h"
#include "data/unhandlederror.h"
#include "support/testmain.h"
#include "support/testshop.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QProcess>
#include <QSqlField>
#include <QSqlRecord>
#include <qplatformdefs.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vantrel;

namespace {

// The message of the UnhandledError that ACTION throws, or "(no error)".
template <typename F>
QString errorOf(F action)
{
    try {
        action();
    } catch (const UnhandledError &error) {
        return error.message();
    }
    return QStringLiteral("(no error)");
}

const QString Mismatch = QStringLiteral("Data type mismatch in criteria expression.");

// Makes a file read-only for as long as it lives, even for the superuser (who writes any file
// whatever its mode): the immutable attribute for root, the mode for everyone else.
class ReadOnly {
public:
    explicit ReadOnly(const QString &path) : m_path(QFile::encodeName(path))
    {
        if (::geteuid() == 0)
            m_ok = setImmutable(true);
        else
            m_ok = ::chmod(m_path.constData(), 0444) == 0;
    }
    ~ReadOnly()
    {
        if (m_ok && ::geteuid() == 0)
            setImmutable(false);
        else if (m_ok)
            ::chmod(m_path.constData(), 0600);
    }
    bool ok() const { return m_ok; }

private:
    bool setImmutable(bool on)
    {
        const int fd = ::open(m_path.constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            return false;
        int flags = 0;
        bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        ::close(fd);
        return done;
    }
    QByteArray m_path;
    bool m_ok = false;
};

} // namespace

class DatabaseTest : public QObject {
    Q_OBJECT
    // The same names, and row by row the same value types and texts.
    static void sameRows(Recordset fast, Recordset stated)
    {
        QCOMPARE(fast.fieldNames(), stated.fieldNames());
        QCOMPARE(fast.rowCount(), stated.rowCount());
        for (; !stated.eof(); stated.moveNext(), fast.moveNext())
            for (const QString &name : stated.fieldNames()) {
                QCOMPARE(fast.value(name).typeId(), stated.value(name).typeId());
                QCOMPARE(fast.text(name), stated.text(name));
            }
    }

private slots:
    void aMissingFileFailsTheOpenAndIsNotCreated()
    {
        QTemporaryDir dir;
        const QString message = errorOf([&] { Database db(buildConnectionString(dir.path())); });
        QCOMPARE(message, QStringLiteral("Cannot open the database file %1/vantrel.accdb: unable to open database file").arg(dir.path()));
        QVERIFY(!QFile::exists(dir.path() + "/vantrel.accdb"));
    }

    void aFileThatIsNotADatabaseFailsTheOpen()
    {
        QTemporaryDir dir;
        QFile file(dir.path() + "/vantrel.accdb");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(4096, 'x'));
        file.close();
        const QString message = errorOf([&] { Database db(buildConnectionString(dir.path())); });
        QVERIFY2(message.endsWith(QStringLiteral("file is not a database")), qPrintable(message));
    }

    void anUnreadableFileFailsTheOpen()
    {
        // A folder where the file should be cannot be read as one, whoever runs the test.
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("vantrel.accdb")));
        const QString message = errorOf([&] { Database db(buildConnectionString(dir.path())); });
        QVERIFY2(message.startsWith(QStringLiteral("Cannot open the database file ")), qPrintable(message));
    }

    void aDirectoryWithBlanksAndUriCharactersOpens()
    {
        QTemporaryDir parent;
        const QString dir = parent.path() + QStringLiteral("/my shop %20 ?x #1");
        QVERIFY(QDir().mkpath(dir));
        createDatabaseFile(dir + "/vantrel.accdb");
        Database db(buildConnectionString(dir));
        db.execute(QStringLiteral("insert into companymaster(cmpid) values('C1')"));
        QCOMPARE(db.query(QStringLiteral("select cmpid from companymaster")).text(QStringLiteral("cmpid")), QStringLiteral("C1"));
        QCOMPARE(QDir(dir).entryList({"*.accdb"}), QStringList{"vantrel.accdb"});
    }

    void initToolNeverOverwritesAndKeepsTheFilePrivate()
    {
        QTemporaryDir dir;
        const QString path = dir.path() + "/vantrel.accdb";
        createDatabaseFile(path);
        QT_STATBUF status;
        QCOMPARE(QT_STAT(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, 0600u);
        {
            Database db(buildConnectionString(dir.path()));
            db.execute(QStringLiteral("insert into suppliermaster(ID,suppname) values('1','KEPT')"));
        }
        QVERIFY(errorOf([&] { createDatabaseFile(path); }).startsWith(QStringLiteral("Cannot create")));
        Database db(buildConnectionString(dir.path()));
        QCOMPARE(db.query(QStringLiteral("select suppname from suppliermaster")).text(QStringLiteral("suppname")), QStringLiteral("KEPT"));
    }

    void receiptViewShowsTheLedgersReceipts()
    {
        test::TestShop shop;
        shop.exec("insert into ledger(refno,dat,ac,credit,accnm,type) values(1,'11/23/2026','CASH','250','RAM','receipt')");
        shop.exec("insert into ledger(refno,dat,ac,debit,type) values(1,'11/23/2026','RAM','90','payment')");
        QCOMPARE(shop.rows("select refno,dat,ac,amt,accnm from receipt"),
                 (QList<QStringList>{{"1", "11/23/2026", "CASH", "250", "RAM"}}));
    }

    void datesAreConvertedAndFormattedInsideQueries()
    {
        test::TestShop shop;
        shop.exec("insert into salesmain(invoice,dat,trans) values('1','11/23/2026','C')");
        shop.exec("insert into salesmain(invoice,dat,trans) values('2','1/5/2024','C')");
        shop.exec("insert into salesmain(invoice,dat,trans) values('3','2026-11-02','C')");
        QCOMPARE(shop.rows("select invoice, format(cdate(dat),'MM/DD/YYYY') as d from salesmain order by invoice"),
                 (QList<QStringList>{{"1", "11/23/2026"}, {"2", "01/05/2024"}, {"3", "11/02/2026"}}));
        QCOMPARE(shop.rows("select format(cdate(dat),'yyyy-mm-dd') as d, format(cdate(dat),'d mmm yy') as e from salesmain where invoice=2"),
                 (QList<QStringList>{{"2024-01-05", "5 Jan 24"}}));
        // The registers' month-first text comparison: a span inside November 2026.
        QCOMPARE(shop.rows("select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY')>='11/01/2026' "
                           "and format(cdate(dat),'MM/DD/YYYY')<='11/30/2026' order by invoice"),
                 (QList<QStringList>{{"1"}, {"3"}}));
        QCOMPARE(shop.rows("select cdate(null) as d, format(null,'MM') as e"), (QList<QStringList>{{"", ""}}));
    }

    void aStoredDateThatIsNotADateFailsTheQuery()
    {
        test::TestShop shop;
        shop.exec("insert into salesmain(invoice,dat,trans) values('1','11/23/2026','C')");
        for (const char *bad : {"hello", "13/45/2026", "2/30/2026", "23/11/2026", "11/23"}) {
            shop.exec(QStringLiteral("update salesmain set dat='%1'").arg(QLatin1String(bad)));
            const QString message = errorOf([&] {
                shop.db().query(QStringLiteral("select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY')>='01/01/2026'"));
            });
            QVERIFY2(message == QStringLiteral("Data type mismatch in criteria expression."), bad);
        }
    }

    void rightJoinsAndBracketAliasesRun()
    {
        test::TestShop shop;
        shop.exec("insert into productmaster(cmpid,psrno,prodname,boxno) values('C1','1','PANADOL','B7')");
        shop.exec("insert into productmaster(cmpid,psrno,prodname,boxno) values('C1','2','PARACIP','B8')");
        shop.exec("insert into productmaster(cmpid,psrno,prodname,boxno) values('C2','1','ZINC','B9')");
        shop.exec("insert into stock(cmpid,psrno,prodname,stk) values('C1','1','PANADOL','10')");
        shop.exec("insert into stock(cmpid,psrno,prodname,stk) values('C1','1','PANADOL','4')");
        const QString search = "select p.prodname,sum(s.stk) as stk,p.boxno,p.cmpid,p.psrno from stock s right join productmaster p "
                               "on p.cmpid=s.cmpid and p.psrno=s.psrno where p.prodname like 'pa%' group by p.cmpid,p.psrno,p.prodname,p.boxno";
        QVERIFY(Database::engineText(search).contains("from productmaster p left join stock s on"));
        QCOMPARE(shop.rows(search), (QList<QStringList>{{"PANADOL", "14", "B7", "C1", "1"}, {"PARACIP", "", "B8", "C1", "2"}}));
        shop.exec("insert into ledger(refno,dat,ac,debit,type) values(1,'11/23/2026','RAM','90','payment')");
        const Recordset aliased = shop.db().query("select dat as [Date],ac as Name_of_Account,debit from ledger");
        QCOMPARE(aliased.fieldNames(), (QStringList{"Date", "Name_of_Account", "debit"}));
        QCOMPARE(aliased.text("date"), QStringLiteral("11/23/2026"));
    }

    // The registers' date spans run in a faster form; the rows, their order, the column names
    // and types, the total to its last digit and the error are those of the statement as it
    // stands (here kept from the rewrite by a condition that changes nothing).
    void aDateSpanGivesWhatTheStatementGives()
    {
        test::TestShop shop;
        const QStringList rows = {"1,'11/2/2024','RAM','C',1e16",    "2,'11/9/2026','SITA','D',1",   "3,'11/3/2025','RAM','C',-1e16",
                                  "4,'12/1/2026','GITA','C',5",      "5,'11/05/2026','RAM','D',0.1", "6,'2026-11-07','SITA','C',0.2",
                                  "7,'11x9x2026','RAM','C',0.3",     "8,'11X9X2026','RAM','C',0.4",  "9,null,'NULL','C',7",
                                  "10,'10/31/2026','EDGE','C',8",    "11,'11/30/2026','EDGE','D',9"};
        for (const QString &row : rows)
            shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values(" + row + ")");
        const QString listing = "select invoice,dat as [Date],party,trans,netamt from salesmain where format(cdate(dat),'MM/DD/YYYY') between '";
        const QString total = "select sum(netamt) as charge from salesmain where format(cdate(dat),'MM/DD/YYYY') between '";
        const QString span = "11/01/2026' and '11/30/2026'";
        QVERIFY(Database::engineText(listing + span) != listing + span);
        QVERIFY(Database::engineText(total + span) != total + span);

        const auto sameAsStated = [&](const QString &sql) {
            sameRows(shop.db().query(sql), shop.db().query(sql + " and 1=1"));
            PendingQuery grid = shop.db().startQuery(sql), statedGrid = shop.db().startQuery(sql + " and 1=1");
            for (int i = 0; i < statedGrid.query().record().count(); ++i)
                QCOMPARE(grid.query().record().field(i).metaType(), statedGrid.query().record().field(i).metaType());
        };
        sameAsStated(listing + span);
        sameAsStated(total + span);
        QCOMPARE(shop.rows(listing + span).size(), 8);
        // Added in the table's order, 1 is lost against 1e16; in date order it would survive.
        double inTableOrder = 0;
        for (const double amount : {1e16, 1.0, -1e16, 0.1, 0.2, 0.3, 0.4, 9.0})
            inTableOrder += amount;
        QCOMPARE(shop.rows(total + span), (QList<QStringList>{{displayText(inTableOrder)}}));

        shop.exec("insert into salesmain(invoice,dat,party,trans,netamt) values(12,'NOT A DATE','X','C',1)");
        const QString stated = errorOf([&] { shop.db().query(total + span + " and 1=1"); });
        QCOMPARE(stated, QStringLiteral("Data type mismatch in criteria expression."));
        QCOMPARE(errorOf([&] { shop.db().query(total + span); }), stated);
        QCOMPARE(errorOf([&] { shop.db().query(listing + span); }), stated);
    }

    // The product search, many products matching or few: the rows and their order, names,
    // types and sums of the statement as it stands (written here with a blank after each comma
    // of its grouping, which keeps it from the rewrite and changes nothing).
    void aProductSearchGivesWhatTheStatementGives()
    {
        test::TestShop shop;
        shop.exec("with recursive n(i) as (select 1 union all select i+1 from n where i<1200) "
                  "insert into productmaster(cmpid,psrno,prodname,boxno) select 'C'||(i%7),i/7,"
                  "case when i%3=0 then 'PAN '||i else 'PARA '||i end,'B'||(i%5) from n");
        shop.exec("insert into productmaster(cmpid,psrno,prodname,boxno) values('C1','1','PAN 8','B3')");
        shop.exec("insert into productmaster(cmpid,psrno,prodname,boxno) values('C1','1','PAN 8','B3')");
        shop.exec("insert into stock(cmpid,psrno,prodname,stk) select cmpid,psrno,prodname,psrno*0.1 from productmaster where psrno%4<>0");
        shop.exec("insert into stock(cmpid,psrno,prodname,stk) select cmpid,psrno,prodname,0.7 from productmaster where psrno%3=0");
        const QString search = "select p.prodname,sum(s.stk) as stk,p.boxno,p.cmpid,p.psrno from stock s right join productmaster p "
                               "on p.cmpid=s.cmpid and p.psrno=s.psrno where p.prodname like '%1%' group by p.cmpid,p.psrno,p.prodname,p.boxno";
        for (const char *typed : {"p", "PAR", "PAN 1", "pan 8", "Z"}) {
            const QString sql = search.arg(QLatin1String(typed));
            const QString stated = QString(sql).replace("p.cmpid,p.psrno,p.prodname,p.boxno", "p.cmpid, p.psrno, p.prodname, p.boxno");
            QVERIFY(Database::engineText(sql) != sql);
            QCOMPARE(Database::engineText(stated), QString(stated).replace("stock s right join productmaster p", "productmaster p left join stock s"));
            sameRows(shop.db().query(sql), shop.db().query(stated));
        }
        QVERIFY(shop.rows(search.arg("p")).size() > 400);
        QVERIFY(shop.rows(search.arg("PAN 8")).size() < 400);
    }

    void textComparesWithoutRegardToCase()
    {
        test::TestShop shop;
        shop.exec("insert into suppliermaster(ID,suppname) values('1','Ram Traders')");
        QCOMPARE(shop.rows("select ID from suppliermaster where suppname='RAM TRADERS'").size(), 1);
        QCOMPARE(shop.rows("select suppname from suppliermaster where suppname like 'ram%'"), (QList<QStringList>{{"Ram Traders"}}));
        QCOMPARE(shop.rows("select suppname from suppliermaster where suppname like 'am%'").size(), 0);
    }

    void aQuoteInAValueFailsTheStatementAndKeepsEarlierOnes()
    {
        test::TestShop shop;
        shop.exec("insert into suppliermaster(ID,suppname) values('1','FIRST')");
        const QString message = errorOf([&] { shop.db().execute("insert into suppliermaster(ID,suppname) values('2','O'NEIL')"); });
        QVERIFY2(message.contains("syntax error"), qPrintable(message));
        QCOMPARE(errorOf([&] { shop.db().query("select * from suppliermaster where ID="); }), QStringLiteral("incomplete input"));
        QCOMPARE(shop.rows("select suppname from suppliermaster"), (QList<QStringList>{{"FIRST"}}));
    }

    void numbersAreStoredFromQuotedDigitsAndTextStaysAsTyped()
    {
        test::TestShop shop;
        shop.exec("insert into sales(invoice,qty,rate,amount) values('12','3','12.5','37.5')");
        shop.exec("insert into sales(invoice,qty,rate,amount) values('13','','abc','1e3')");
        const Recordset rs = shop.db().query("select qty,rate,amount from sales where invoice='12'");
        QCOMPARE(rs.value("qty").typeId(), int(QMetaType::Double));
        QCOMPARE(rs.number("amount"), 37.5);
        QCOMPARE(shop.rows("select qty,rate,amount from sales where invoice='13'"), (QList<QStringList>{{"", "abc", "1000"}}));
        QCOMPARE(shop.rows("select sum(amount) as t from sales"), (QList<QStringList>{{"1037.5"}}));
    }

    void numberingColumnsHoldNumbersOnly_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::newRow("invoice") << "salesmain" << "invoice";
        QTest::newRow("pono") << "purchasemain" << "pono";
        QTest::newRow("refno") << "ledger" << "refno";
        QTest::newRow("ID") << "suppliermaster" << "ID";
        QTest::newRow("psrno") << "productmaster" << "psrno";
    }

    void numberingColumnsHoldNumbersOnly()
    {
        QFETCH(QString, table);
        QFETCH(QString, column);
        test::TestShop shop;
        const QString insert = "insert into " + table + "(" + column + ") values('%1')";
        shop.exec(insert.arg("7"));
        shop.exec(insert.arg(" 8 "));
        for (const char *text : {"", "X", "9A", "1 OR 1"})
            QCOMPARE(errorOf([&] { shop.db().execute(insert.arg(text)); }), Mismatch);
        QCOMPARE(errorOf([&] { shop.db().execute("update " + table + " set " + column + "='Y'"); }), Mismatch);
        QCOMPARE(shop.rows("select max(" + column + ") as n, count(*) from " + table), (QList<QStringList>{{"8", "2"}}));
        // The stock shell of the engine keeps the same rule on the same file.
        QProcess shell;
        shell.start("sqlite3", {shop.db().fileName(), insert.arg("") + ";"});
        QVERIFY2(shell.waitForFinished(10000), "the sqlite3 shell did not run");
        QVERIFY2(QString::fromUtf8(shell.readAllStandardError()).contains(Mismatch), "the shell stored a text");
    }

    void figuresNeverStoreInfinityAndReferencesStayInSixteenBits()
    {
        test::TestShop shop;
        QCOMPARE(errorOf([&] { shop.db().execute("insert into sales(qty) values('1e999')"); }), QStringLiteral("Overflow"));
        QCOMPARE(errorOf([&] { shop.db().execute("insert into stock(prodname,stk) values('P','-1e309')"); }), QStringLiteral("Overflow"));
        shop.exec("insert into stock(prodname,stk) values('P','5')");
        QCOMPARE(errorOf([&] { shop.db().execute("update stock set stk='1e400' where prodname='P'"); }), QStringLiteral("Overflow"));
        QCOMPARE(errorOf([&] { shop.db().execute("insert into ledger(refno,type) values('32768','receipt')"); }), QStringLiteral("Overflow"));
        shop.exec("insert into ledger(refno,type) values('32767','receipt')");
        // Other Number columns keep a text as typed.
        shop.exec("insert into sales(qty,rate) values('abc','')");
        QCOMPARE(shop.rows("select stk from stock union all select qty from sales"), (QList<QStringList>{{"5"}, {"abc"}}));
    }

    void aFileThatCannotBeWrittenFailsTheOpen_data()
    {
        QTest::addColumn<QString>("lockedFile");
        QTest::newRow("the file") << "vantrel.accdb";
        QTest::newRow("its write-ahead index") << "vantrel.accdb-shm";
    }

    void aFileThatCannotBeWrittenFailsTheOpen()
    {
        QFETCH(QString, lockedFile);
        QTemporaryDir dir;
        const QString file = dir.path() + "/vantrel.accdb";
        createDatabaseFile(file);
        {
            // A program that ended without closing leaves its write-ahead log and index behind.
            Database db(buildConnectionString(dir.path()));
            db.execute(QStringLiteral("insert into companymaster(cmpid) values('C1')"));
            for (const char *suffix : {"-shm", "-wal"})
                QVERIFY(QFile::copy(file + suffix, file + suffix + ".left"));
        }
        for (const char *suffix : {"-shm", "-wal"})
            QVERIFY(QFile::rename(file + suffix + ".left", file + suffix));
        ReadOnly locked(dir.path() + "/" + lockedFile);
        if (!locked.ok())
            QSKIP("this machine cannot make a file read-only for its owner");
        const QString message = errorOf([&] { Database db(buildConnectionString(dir.path())); });
        QVERIFY2(message.startsWith(QStringLiteral("Cannot open the database file ")), qPrintable(message));
        QVERIFY2(message.contains(QStringLiteral("read-only")) || message.contains(QStringLiteral("cannot be written")), qPrintable(message));
    }

    void aWriteIsVisibleToASecondCopyOfTheProgram()
    {
        test::TestShop shop;
        shop.exec("insert into companymaster(cmpid) values('C1')");
        Database second(buildConnectionString(shop.directory()));
        QCOMPARE(second.query("select count(*) as n from companymaster").number("n"), 1.0);
        QCOMPARE(second.query("pragma journal_mode").text("journal_mode"), QStringLiteral("wal"));
    }
};

VANTREL_TEST_MAIN(DatabaseTest)
#include "test_database.moc"
