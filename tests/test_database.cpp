// The database file's opening, the values read and written, and the grid that reads them. (What
// the engine makes of the system's statements, and choosing from a grid, are in tests/cases.)
#include "data/records.h"
#include "care/backups.h"
#include "care/closedyears.h"
#include "care/servermove.h"
#include "care/serverupgrade.h"
#include "care/shopcheck.h"
#include "data/schema.h"
#include "data/serverconnection.h"
#include "data/serverforms.h"
#include "data/serverschema.h"
#include "data/shortdate.h"
#include "support/testshop.h"
#include "widgets/grid.h"

#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QRandomGenerator>
#include <QThread>
#include <cmath>
#include <limits>
#include <unistd.h>

using namespace vantrel;

namespace {

QString openingError(const QString &directory)
{
    return test::errorOf([&] { Database db(buildConnectionString(directory)); });
}

// Makes a file read-only, even for the superuser (the immutable attribute), or says it cannot.
bool setReadOnly(const QString &path, bool on)
{
    if (::geteuid() != 0)
        return QFile::setPermissions(path, on ? QFile::ReadOwner : QFile::ReadOwner | QFile::WriteOwner);
    return QProcess::execute(QStringLiteral("chattr"), {on ? QStringLiteral("+i") : QStringLiteral("-i"), path}) == 0;
}

const QLocale UnitedStates(QLocale::English, QLocale::UnitedStates), India(QLocale::English, QLocale::India);

} // namespace

class DatabaseTest : public QObject {
    Q_OBJECT

private slots:
    // A server that is not there, a database without books, and books made only in an empty
    // database of the character type C: each said with the server's name and what is wrong, and
    // nothing written.
    void serverOpeningSaysWhatIsWrong()
    {
        QCOMPARE(test::errorOf([] { Database db(QStringLiteral("postgresql://shop@/vantrel?host=/nonexistent&port=1")); }).section(':', 0, 1),
                 QStringLiteral("Cannot open the books on the server /nonexistent, port 1, database vantrel: connection to server on socket "
                                "\"/nonexistent/.s.PGSQL.1\" failed"));
        QVERIFY(test::errorOf([] { Database db(QStringLiteral("postgresql://shop@/vantrel?host=/x&colour=blue")); })
                    .startsWith(QStringLiteral("The server connection \"postgresql://shop@/vantrel?host=/x&colour=blue\" cannot be read: ")));
        const QString server = test::testServer();
        if (server.isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        QVERIFY(test::errorOf([&] { Database db(server); }).endsWith(QStringLiteral(", database postgres: the database holds no books (vantrel-initdb makes them in an empty database)")));
        const QString folding = test::newServerDatabase(QStringLiteral("folding_%1").arg(QCoreApplication::applicationPid()),
                                                        QStringLiteral("template template0 lc_ctype 'C.UTF-8'"));
        QVERIFY(test::errorOf([&] { createServerBooks(folding); })
                    .endsWith(": the database's character type is C.UTF-8, under which texts compare alike beyond A-Z (\"É\" and \"é\"); the books "
                              "need the character type C: createdb --locale=C --encoding=UTF8 --template=template0 NAME"));
        QVERIFY(test::errorOf([&] { Database db(folding); }).endsWith("the database holds no books (vantrel-initdb makes them in an empty database)"));
        { // books made there by other means are named by the check
            QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("other means"));
            other.setConnectOptions(serverConnectOptions(folding));
            QVERIFY(other.open());
            QCOMPARE(runServerScript(other, serverSchemaText()), QString());
            other.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other means"));
        const CheckReport folded = checkShopFile(folding, CheckDepth::Quick);
        QVERIFY2(folded.text().contains("The books' database compares texts unlike the file: the database's character type is C.UTF-8, "),
                 qPrintable(folded.text()));
        test::TestShop shop(test::TestShop::Filled);
        QVERIFY(test::errorOf([&] { createServerBooks(shop.books()); }).endsWith(QStringLiteral(": the database is not empty; the books are made only in an empty one")));
        QCOMPARE(shop.rows(QStringLiteral("select count(*) from salesmain")), (QList<QStringList>{{"3"}}));
        shop.exec(QStringLiteral("update schemaversion set version = version + 1"));
        QCOMPARE(test::errorOf([&] { Database db(shop.books()); }).section(": ", 1),
                 QStringLiteral("the books were written by a newer Vantrel (schema version %1; this program knows up to %2). "
                                "Nothing was changed; start the newer program.").arg(CurrentSchemaVersion + 1).arg(CurrentSchemaVersion));
    }

    // A backup of the books on the server: taken while they stand, kept only once read back, its
    // owner's alone; a dump cut off at 60% is refused and leaves the database it was restored into
    // empty; the whole one restores into an empty database with every row and the log's chain,
    // and never into one that holds anything.
    void aServerBackupIsReadBackAndRestoresOnlyIntoAnEmptyDatabase()
    {
        if (test::testServer().isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        test::TestShop shop(test::TestShop::Filled);
        shop.exec("update ledger set debit = 12.35 where rowid = 2");
        const QString folder = shop.directory() + "/backups";
        Backups backups(shop.books(), folder);
        const QString taken = backups.take(QDateTime(QDate(2026, 11, 23), QTime(9, 30, 5)));
        QCOMPARE(QFileInfo(taken).fileName(), QStringLiteral("vantrel-2026-11-23-093005.dump"));
        QCOMPARE(backups.list(), QStringList{taken});
        QCOMPARE(QFileInfo(taken).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFileDevice::Permissions());
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{QFileInfo(taken).fileName()}); // no part left

        const QString cut = folder + "/cut.dump";
        QFile::copy(taken, cut);
        QFile(cut).resize(QFileInfo(taken).size() * 6 / 10);
        const QString empty = test::newServerDatabase(QStringLiteral("restored_%1").arg(QCoreApplication::applicationPid()));
        QVERIFY(test::errorOf([&] { Backups(empty, folder).restore(cut, QDateTime::currentDateTime()); }).contains("the backup cannot be restored: pg_restore: "));
        QVERIFY(test::errorOf([&] { Database db(empty); }).endsWith("the database holds no books (vantrel-initdb makes them in an empty database)"));

        QCOMPARE(Backups(empty, folder).restore(taken, QDateTime::currentDateTime()), QString());
        Database restored(empty);
        for (const char *sql : {"select * from ledger", "select id, at, source, hash from editlog"}) {
            QStringList here, there;
            for (Recordset rs = shop.db().query(sql); !rs.eof(); rs.moveNext())
                for (const QString &field : rs.fieldNames())
                    here << rs.text(field);
            for (Recordset rs = restored.query(sql); !rs.eof(); rs.moveNext())
                for (const QString &field : rs.fieldNames())
                    there << rs.text(field);
            QCOMPARE(there, here);
        }
        QVERIFY2(checkShopFile(empty, CheckDepth::Full).clean(), qPrintable(checkShopFile(empty, CheckDepth::Full).text()));
        QVERIFY(test::errorOf([&] { backups.restore(taken, QDateTime::currentDateTime()); }).endsWith(": the database is not empty; a backup is restored only into an empty one"));
    }

    // The counters' role works the books (a line, its log entry under the counter's name) and can
    // neither change the schema, switch off a trigger, nor write or rewrite the log by hand.
    void aCountersRoleWorksTheBooksAndNoMore()
    {
        if (test::testServer().isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        test::TestShop shop(test::TestShop::Filled);
        const QString role = QStringLiteral("till_%1").arg(QCoreApplication::applicationPid());
        shop.exec("create role " + role + " login");
        QVERIFY(test::errorOf([&] { grantCounters(shop.books(), "nobody_here"); }).endsWith(": role \"nobody_here\" does not exist"));
        grantCounters(shop.books(), role);
        {
            QSettings().setValue("books/counter", "till 2");
            Database till(QString(shop.books()).replace("vantrel@", role + "@"));
            till.execute("insert into sales(invoice, prodname, qty, rate, amount, trans) values ('9', 'PANADOL', '2', '5', '10', 'C')");
            QCOMPARE(till.query("select source, action, tab from editlog order by id desc limit 1").text("source"), QStringLiteral("till 2"));
            QCOMPARE(till.query("select count(*) as n from receipt").text("n"), QStringLiteral("2"));
            for (const char *refused : {"alter table sales disable trigger sales_log", "drop table stock", "create table mine(a int)",
                                        "insert into editlog(tab, action) values ('', 'start')", "update editlog set source = 'x'",
                                        "drop function sales_log() cascade", "alter table editlog disable trigger editlog_kept"})
                QVERIFY2(test::errorOf([&] { till.execute(refused); }).contains(QRegularExpression("must be owner|permission denied")), refused);
        }
        QSettings().setValue("books/counter", "program");
        shop.exec("drop owned by " + role);
        shop.exec("drop role " + role);
    }

    // Books made by an older Vantrel: refused by the screens until brought up to date; the
    // upgrade waits while another program is connected (giving up changes nothing), a counter's
    // role cannot make it (nothing changes), the owner's does once the other has gone, and the
    // registers' span then finds its rows through the date key's index, the overall payments
    // through theirs, a prefix's names in order through the name's.
    void olderServerBooksAreBroughtUpToDateOnceTheOthersHaveGone()
    {
        if (test::testServer().isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        const QString books = test::newServerDatabase(QStringLiteral("older_%1").arg(QCoreApplication::applicationPid()));
        createServerBooks(books);
        const QString role = QStringLiteral("till_%1").arg(QCoreApplication::applicationPid());
        const auto versions = [&books] { // the columns of the record of the books' versions
            QStringList columns;
            {
                QSqlDatabase look = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("look"));
                look.setConnectOptions(serverConnectOptions(books));
                QSqlQuery query(look);
                if (look.open() && query.exec("select * from schemaversion"))
                    for (int i = 0; i < query.record().count(); ++i)
                        columns << query.record().fieldName(i);
            }
            QSqlDatabase::removeDatabase(QStringLiteral("look"));
            return columns.join(',');
        };
        {
            QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("till 3"));
            other.setConnectOptions(serverConnectOptions(books) + QStringLiteral(";application_name='till 3'"));
            QVERIFY(other.open());
            QSqlQuery older(other);
            for (const QString &sql : {QStringLiteral("drop function vdatekey(text, text) cascade"), QStringLiteral("drop index ledger_receipts, ledger_payments"),
                                       QStringLiteral("alter table schemaversion drop column server"), "create role " + role + " login"})
                QVERIFY2(older.exec(sql), qPrintable(older.lastError().text()));
            grantCounters(books, role);
            QVERIFY(test::errorOf([&] { Database db(books); })
                        .endsWith(": the books were made by an older Vantrel (server version 1; this program needs 3): their owner brings them up to "
                                  "date by starting Vantrel once with the owner's role, or with vantrel-initdb CONNECTION --upgrade"));
            QStringList heard;
            QCOMPARE(test::errorOf([&] { bringServerToCurrentSchema(books, [&](const QString &others) { heard << others; return false; }); }),
                     QStringLiteral("The books on the server were left at server version 1: other programs were still connected (till 3 (this computer))."));
            const QString asCounter = QString(books).replace("vantrel@", role + "@");
            QVERIFY(test::errorOf([&] { bringServerToCurrentSchema(asCounter, [&](const QString &) { other.close(); return true; }); })
                        .contains(QRegularExpression("^The books on the server could not be brought from server version 1 to 3 \\(their owner's role can; "
                                                      "nothing was changed\\): .*permission denied")));
            QCOMPARE(versions(), QStringLiteral("version"));
            QVERIFY(other.open());
            // The server lets a closed session's process go a moment later: the upgrade may hear it again.
            const ServerUpgrade upgrade = bringServerToCurrentSchema(books, [&](const QString &others) {
                heard << others;
                if (!other.isOpen())
                    QThread::msleep(20);
                other.close();
                return true;
            });
            QVERIFY(heard.size() >= 2);
            QCOMPARE(heard.filter(QStringLiteral("till 3 (this computer)")).size(), heard.size());
            QCOMPARE(upgrade.notice(), QStringLiteral("The books on the server were brought from server version 1 to 3."));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("till 3"));
        QCOMPARE(versions(), QStringLiteral("version,server"));
        QCOMPARE(bringServerToCurrentSchema(books, [](const QString &) { return false; }).upgraded(), false);
        Database db(books);
        db.execute("insert into salesmain(invoice, dat, party, trans, netamt) values (1, '11/2/2026', 'RAM', 'C', '5')");
        db.execute("set enable_seqscan = off");
        QString plan;
        for (Recordset rs = db.query("explain " + serverForm("select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY') between '11/01/2026' and '11/30/2026'"));
             !rs.eof(); rs.moveNext())
            plan += rs.text("QUERY PLAN");
        QVERIFY2(plan.contains("Index Cond: ((vdatekey((dat)::text, 'MDY'::text) >= '11/01/2026'::text)"), qPrintable(plan));
        plan.clear();
        for (Recordset rs = db.query("explain " + serverForm("select sum(debit) as debit from ledger where type='payment'")); !rs.eof(); rs.moveNext())
            plan += rs.text("QUERY PLAN");
        QVERIFY2(plan.contains("using ledger_payments"), qPrintable(plan));
        plan.clear(); // a prefix's names in the file's order straight from their index
        for (Recordset rs = db.query("explain " + serverForm("select suppname from suppliermaster where suppname like 'M%'")); !rs.eof(); rs.moveNext())
            plan += rs.text("QUERY PLAN");
        QVERIFY2(plan.contains("using suppliermaster_name") && !plan.contains("Sort"), qPrintable(plan));
        db.execute("drop owned by " + role);
        db.execute("drop role " + role);
    }

    // In a directory with blanks and URI characters: a missing file is not created; no database, a
    // folder, a file or index that cannot be written fail with a message; a second copy sees a write.
    // A shop's file moved onto the server: every row of every table in its order, figures and
    // odd texts as typed; a file whose numbering column holds a text leaves the database empty.
    void aFileMovesOntoTheServerRowForRow()
    {
        if (test::testServer().isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        QTemporaryDir dir;
        createDatabaseFile(dir.filePath("vantrel.accdb"));
        test::fillShop(buildConnectionString(dir.path()));
        Database file(buildConnectionString(dir.path()));
        file.execute("insert into sales(invoice,qty,rate,amount,party) values('7','2X','','0.1','O''BRIEN \\ 50%'), ('8',' 3 ',null,'1e-5','')");
        file.execute("update stock set stk=stk-0.7 where prodname='PANADOL'");
        // A closed year beside it: its own file, recorded in the shop's.
        QDir(dir.path()).mkdir("years");
        Backups::copyToNewFile(dir.filePath("vantrel.accdb"), dir.filePath("years/2025-26.accdb"));
        file.execute("insert into closedyears(name, closed, file) values('2025-26', '4/2/2026', 'years/2025-26.accdb')");
        file.execute("insert into sales(invoice,prodname,qty,rate,amount,trans,status) values('99','PANADOL','1','5','5','C','u')");
        const QString server = test::newServerDatabase(QStringLiteral("moved_%1").arg(QCoreApplication::applicationPid()));
        QStringList report = moveFileToServer(dir.filePath("vantrel.accdb"), server);
        QCOMPARE(report.size(), 12);
        // The check finds the lines without their invoice, on the file and on the server alike.
        QCOMPARE(report.last(), QStringLiteral("the check: Lines without their sales invoice: sales invoice 99 (C): 1 line(s) adding up to 5, the "
                                               "last in row 6 on both"));
        report.removeLast();
        QCOMPARE(report.last(), QStringLiteral("the closed year 2025-26: 30 rows into year_2025_26"));
        report.removeLast();
        QVERIFY2(report.contains("sales: 6 rows") && report.contains("ledger: 3 rows"), qPrintable(report.join(", ")));
        // The file's log goes on on the server, entry for entry, then the server's start.
        const QString entries = file.query("select count(*) as n from editlog").text("n");
        QCOMPARE(report.last(), "editlog: " + entries + " entries");
        Database moved(server);
        QCOMPARE(moved.query("select id, action, source from editlog order by id desc limit 1").text("id"), QString::number(entries.toInt() + 1));
        QCOMPARE(closedYears(server), (QList<QPair<QString, QString>>{{"2025-26", "year_2025_26"}}));
        Database year(yearBooks(server, "year_2025_26"), Database::Access::ReadOnly);
        QCOMPARE(year.query("select count(*) as n, sum(amount__n) as total from sales").text("total"), QStringLiteral("132.60001"));
        for (const ServerTable &table : serverTables()) {
            QStringList here, there;
            for (Recordset rs = file.query("select * from " + table.name); !rs.eof(); rs.moveNext())
                for (const QString &column : table.names())
                    here << rs.text(column);
            for (Recordset rs = moved.query("select * from " + table.name); !rs.eof(); rs.moveNext())
                for (const QString &column : table.names())
                    there << rs.text(column);
            QCOMPARE(there, here);
        }

        file.execute("drop trigger salesmain_numbers_insert");
        file.execute("insert into salesmain(invoice,trans) values('X1','C')");
        const QString refused = test::newServerDatabase(QStringLiteral("refused_%1").arg(QCoreApplication::applicationPid()));
        QCOMPARE(test::errorOf([&] { moveFileToServer(dir.filePath("vantrel.accdb"), refused); }).section(": ", 1),
                 QStringLiteral("the server refused a row of salesmain: Data type mismatch in criteria expression."));
        QVERIFY(test::errorOf([&] { Database db(refused); }).endsWith(QStringLiteral("the database holds no books (vantrel-initdb makes them in an empty database)")));
    }

    void openingFailsWithAMessageAndCreatesNothing()
    {
        QTemporaryDir parent;
        const QDir dir(parent.path() + QStringLiteral("/my shop %20 ?x #1"));
        const QString file = dir.path() + "/vantrel.accdb";
        QVERIFY(QDir().mkpath(dir.path()));
        QCOMPARE(openingError(dir.path()), QStringLiteral("Cannot open the database file %1: unable to open database file").arg(file));
        QVERIFY(!QFile::exists(file));
        QVERIFY(dir.mkdir("vantrel.accdb") && openingError(dir.path()).startsWith(QStringLiteral("Cannot open the database file ")));
        QFile junk(file);
        QVERIFY(dir.rmdir("vantrel.accdb") && junk.open(QIODevice::WriteOnly) && junk.write(QByteArray(4096, 'x')) == 4096);
        junk.close();
        QVERIFY(openingError(dir.path()).endsWith(QStringLiteral("file is not a database")) && junk.remove());

        createDatabaseFile(file);
        QCOMPARE(QFile::permissions(file) & 0x0077, QFileDevice::Permissions()); // the owner's alone
        {
            // A program that ended without closing leaves its write-ahead log and index behind.
            Database db(buildConnectionString(dir.path()));
            db.execute(QStringLiteral("insert into suppliermaster(ID,suppname) values('1','KEPT')"));
            for (const char *suffix : {"-shm", "-wal"})
                QVERIFY(QFile::copy(file + suffix, file + suffix + ".left"));
        }
        QVERIFY(test::errorOf([&] { createDatabaseFile(file); }).startsWith(QStringLiteral("Cannot create")));
        for (const char *suffix : {"-shm", "-wal"})
            QVERIFY(QFile::rename(file + suffix + ".left", file + suffix));
        for (const QString &locked : {file, file + "-shm"}) {
            if (!setReadOnly(locked, true))
                QSKIP("this machine cannot make a file read-only for its owner");
            const QString message = openingError(dir.path());
            setReadOnly(locked, false);
            QVERIFY2(message.startsWith(QStringLiteral("Cannot open the database file "))
                         && (message.contains(QStringLiteral("read-only")) || message.contains(QStringLiteral("cannot be written"))),
                     qPrintable(message));
        }
        Database db(buildConnectionString(dir.path())), second(buildConnectionString(dir.path()));
        db.execute(QStringLiteral("insert into companymaster(cmpid) values('C1')"));
        QCOMPARE(second.query("select max(suppname) || max(cmpid) as kept from suppliermaster, companymaster").text("kept"), QStringLiteral("KEPTC1"));
        QCOMPARE(second.query("pragma journal_mode").text("journal_mode"), QStringLiteral("wal"));
        QCOMPARE(dir.entryList({"*.accdb"}), QStringList{"vantrel.accdb"});
    }

    void valReadsTheLeadingNumber()
    {
        const QList<QPair<QString, double>> cases = {{"12abc", 12}, {"", 0},     {"-3.5x", -3.5}, {"  7.25", 7.25}, {"abc", 0},   {"-", 0},
                                                     {".5", 0.5},   {"1e3kg", 1000}, {"2e", 2},   {"1.2.3", 1.2},   {"1,234", 1}};
        for (const auto &[text, value] : cases)
            QVERIFY2(val(text) == value, qPrintable(text));
    }

    // Singles: seven digits at most, no exponent; doubles: the shortest text that reads back.
    void figuresAreWrittenToTheirPrecision()
    {
        const QList<QPair<float, QString>> singles = {{250.0f, "250"},    {12.5f, "12.5"}, {123456.78f, "123456.8"}, {0.1f, "0.1"},
                                                      {-4.75f, "-4.75"}, {0.0f, "0"},     {12345678.0f, "12345680"}, {0.00001f, "0.00001"}};
        for (const auto &[value, text] : singles)
            QCOMPARE(singleText(value), text);
        const QList<QPair<double, QString>> doubles = {{1234 * 7.5 / 100, "92.55"}, {999 * 3.0 / 100, "29.97"}, {1000000.0, "1000000"},
                                                       {123456789012.0, "123456789012"}, {0.1 + 0.2, "0.30000000000000004"}, {-0.5, "-0.5"}};
        for (const auto &[value, text] : doubles)
            QCOMPARE(doubleText(value), text);
        // A grid's cells are appended without a text of their own, to the same digits.
        for (const double value : {92.55, 1e15, 9.5e15, 1e21, -0.0, 1e-7, 0.0001, -123.456, 3.0, -1e300, 1.0 / 3})
            QCOMPARE(QString::fromUtf8([value] { QByteArray cell("x"); appendDoubleText(cell, value); return cell; }()), "x" + doubleText(value));
        // The server's figure taken as it comes only when it is that text already: any plain
        // decimal of up to 15 significant digits reads back to itself.
        for (const char *text : {"0", "-3", "92.55", "0.5", "0.00001", "123456789012345", "-0.000000000000001", "99999999999999.9"})
            QVERIFY2(isDoubleText(text) && doubleText(QByteArray(text).toDouble()) == QLatin1String(text), text);
        for (const char *text : {"-0", "007", ".5", "5.", "5.50", "+5", "1e-05", "1234567890123456", "0.30000000000000004", "", "12 ", "1,5", "-"})
            QVERIFY2(!isDoubleText(text), text);
        QRandomGenerator random(20261126);
        for (int i = 0; i < 20000; ++i) { // up to 15 digits, the point anywhere in or before them
            const QByteArray digits = QByteArray::number(random.bounded(Q_INT64_C(1), Q_INT64_C(1000000000000000)));
            const int fraction = int(random.bounded(digits.size() + 6));
            QByteArray text = fraction == 0                ? digits
                              : fraction < digits.size() ? digits.left(digits.size() - fraction) + '.' + digits.right(fraction)
                                                         : "0." + QByteArray(fraction - digits.size(), '0') + digits;
            while (text.contains('.') && (text.endsWith('0') || text.endsWith('.')))
                text.chop(1);
            text.prepend(random.bounded(2) ? "-" : "");
            QVERIFY2(isDoubleText(text), text.constData());
            QCOMPARE(doubleText(text.toDouble()), QString::fromLatin1(text));
        }
    }

    // 16 bits round half to even; beyond them, and beyond a figure's range, is "Overflow".
    void sixteenBitsRoundHalfToEvenAndRangesOverflow()
    {
        const QList<QPair<double, int>> rounded = {{8.5, 8}, {9.5, 10}, {7.5, 8}, {-2.5, -2}, {2.4, 2}, {32767, 32767}, {-32768, -32768}, {32767.4, 32767}};
        for (const auto &[value, whole] : rounded)
            QCOMPARE(int(toInt16(value)), whole);
        const QList<std::function<void()>> beyond = {
            [] { toInt16(32767.5); },        [] { toInt16(-32768.6); },         [] { toInt16(1e9); },
            [] { val(QStringLiteral("1e400")); }, [] { val(QStringLiteral("-2e308abc")); }, [] { toSingle(1e39); },
            [] { toSingle(-3.5e38); },       [] { doubleText(std::numeric_limits<double>::infinity()); },
            [] { singleText(-std::numeric_limits<float>::infinity()); }, [] { checkFinite(std::nan("")); },
        };
        for (int i = 0; i < beyond.size(); ++i)
            QVERIFY2(test::errorOf(beyond[i]) == QLatin1String("Overflow"), qPrintable(QString::number(i)));
        QCOMPARE(val(QStringLiteral("1e308")), 1e308);
        QCOMPARE(toSingle(3.4e38), 3.4e38f);
    }

    void shortDateWidensTheYear()
    {
        const QDate day(2026, 11, 23);
        QCOMPARE(QStringList({ShortDate(UnitedStates).text(day), ShortDate(UnitedStates).text(QDate(2024, 1, 5)), ShortDate(India).text(day),
                              ShortDate(QLocale::c()).text(day)}),
                 QStringList({"11/23/2026", "1/5/2024", "23/11/2026", "11/23/2026"}));
        const auto order = ShortDate(India).order();
        QCOMPARE(QList<int>({order[0], order[1], order[2]}), QList<int>({ShortDate::Day, ShortDate::Month, ShortDate::Year}));
    }

    // Every cell reads as a recordset reads it, on the first screenful and past it.
    void cellsReadAsARecordsetReadsThem()
    {
        test::TestShop shop;
        shop.exec("create table kinds(a, b text, c double)");
        shop.exec("with recursive n(i) as (select 1 union all select i + 1 from n where i < 240) "
                  "insert into kinds select case i % 6 when 0 then null when 1 then i when 2 then i * 1000000000000000 "
                  "when 3 then 0.1 * i + 0.2 when 4 then x'00ff41' else '\u0926\u0935\u093e \u20b9' || i end, "
                  "'RAM''S ' || i, case when i % 2 = 0 then i / 7.0 else i end from n");
        Grid grid(QStringLiteral("lines grid"));
        grid.bind(shop.db(), "select a, b, c from kinds");
        const QList<QStringList> expected = shop.rows("select a, b, c from kinds");
        QCOMPARE(grid.rows() - 1, int(expected.size()));
        for (int row = 0; row < expected.size(); ++row)
            for (int col = 0; col < 3; ++col)
                QCOMPARE(grid.text(row + 1, col), expected[row][col]);
        QCOMPARE(grid.text(3, 0), QStringLiteral("0.5"));
        QCOMPARE(grid.text(2, 2), QStringLiteral("0.2857142857142857")); // 2 / 7 in its shortest exact text
        QCOMPARE(grid.text(6, 0), QString());
    }

    // Numbers (declared so or not, computed, 16-bit) on the right, texts on the left.
    void numbersLineUpOnTheRightAndTextsOnTheLeft()
    {
        test::TestShop shop(test::TestShop::Filled);
        Grid grid(QStringLiteral("party list"));
        const auto alignments = [&](const QString &sql, int row) {
            grid.bind(shop.db(), sql);
            QString found;
            for (int col = 0; col < grid.model()->columnCount(); ++col) {
                const auto side = grid.model()->data(grid.model()->index(row, col), Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignHorizontal_Mask;
                found += side == Qt::AlignLeft ? 'L' : side == Qt::AlignRight ? 'R' : '-';
            }
            return found;
        };
        shop.exec("insert into salesmain(invoice,party,netamt) values('7','ASHA','12.5'),('8','ASHA','100')");
        shop.exec("insert into ledger(refno,type) values(7,'receipt')");
        QCOMPARE(alignments("select suppname,ID,city from suppliermaster order by suppname", 2), QStringLiteral("LRL"));
        QCOMPARE(alignments("select party, sum(netamt) as total, count(*) from salesmain group by party", 0), QStringLiteral("LRR"));
        QCOMPARE(grid.text(1, 1), QStringLiteral("112.5"));
        QCOMPARE(alignments("select refno, type from ledger", 0), QStringLiteral("RL"));
        grid.setFixedFirstColumn(true);
        QCOMPARE(alignments("select refno, type from ledger", 0), QStringLiteral("-RL"));
    }

    // A grid on the server reads page after growing page to its last row, on a connection made
    // afresh after the server was lost as on the first.
    void aServerGridReadsEveryPageAfterAReconnect()
    {
        if (test::testServer().isEmpty())
            QSKIP("no test server (VANTREL_TEST_SERVER)");
        test::TestShop shop;
        shop.exec("with recursive n(i) as (select 1 union all select i+1 from n where i<5000) insert into salesmain(invoice,dat,trans) select i,'11/23/2026','C' from n");
        shop.endServerConnections();
        QCOMPARE(shop.db().reconnect(), QString());
        Grid grid(QStringLiteral("lines grid"));
        grid.bind(shop.db(), "select invoice from salesmain order by invoice");
        QCOMPARE(grid.text(1234, 0), QStringLiteral("1234"));
        QCOMPARE(grid.text(5000, 0), QStringLiteral("5000"));
        QCOMPARE(grid.rows(), 5001);
    }

    // Idle time or a walk reads the rest; until then the grid shows the file as it was at its bind
    // while writes go to disk at once. A row that fails late is reported by walk and idle alike.
    void largeResultsReadLazilyAsTheFileWasWhenBound()
    {
        test::TestShop shop;
        shop.exec("with recursive n(i) as (select 1 union all select i+1 from n where i<5000) insert into salesmain(invoice,dat,trans) select i,'11/23/2026','C' from n");
        Grid before(QStringLiteral("lines grid")), idle(QStringLiteral("lines grid"));
        before.bind(shop.db(), "select invoice from salesmain order by invoice");
        QVERIFY(before.model()->rowCount() < 5000);
        QCOMPARE(before.text(1234, 0), QStringLiteral("1234"));
        shop.exec("insert into salesmain(invoice,dat) values(9999,'11/23/2026')");
        shop.exec("delete from salesmain where invoice=4000");
        // A total read alongside the rows still to fetch counts what they count.
        const QString total = "select count(*) as n, sum(invoice) as s from salesmain";
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2);
        Database second(buildConnectionString(shop.directory()));
        QCOMPARE(second.query("select count(*) as n from salesmain where invoice=9999").number("n"), 1.0);

        Grid after(QStringLiteral("lines grid"));
        after.bind(shop.db(), "select invoice from salesmain");
        QCOMPARE(QStringList({QString::number(after.rows()), after.text(4000, 0), after.text(5000, 0)}), QStringList({"5001", "4001", "9999"}));
        QCOMPARE(QStringList({QString::number(before.rows()), before.text(4000, 0), before.text(5000, 0)}), QStringList({"5001", "4000", "5000"}));
        // Read to its end, the grid has given its connection back: the file as it is now.
        QCOMPARE(before.queryAlongside(total).number("n"), 5000.0);
        QCOMPARE(before.queryAlongside(total).number("s"), 5000.0 * 5001 / 2 - 4000 + 9999);
        idle.bind(shop.db(), "select invoice from salesmain");
        QTRY_COMPARE(idle.model()->rowCount(), 5000);

        shop.exec("update salesmain set dat='NOT A DATE' where invoice=2500");
        const QString failing = "select invoice from salesmain where format(cdate(dat),'MM/DD/YYYY')>='01/01/2026'";
        Grid walked(QStringLiteral("register grid")), read(QStringLiteral("register grid"));
        walked.bind(shop.db(), failing);
        QCOMPARE(test::errorOf([&] { walked.rows(); }), QStringLiteral("Data type mismatch in criteria expression."));
        QSignalSpy readFailed(&read, &Grid::readFailed);
        read.bind(shop.db(), failing);
        QTRY_COMPARE(readFailed.size(), 1);
        QCOMPARE(readFailed.at(0).at(0).toString(), QStringLiteral("Data type mismatch in criteria expression."));
    }
};

VANTREL_TEST_MAIN(DatabaseTest)
#include "test_database.moc"
