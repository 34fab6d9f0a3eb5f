// The database file's opening, and the values read and written. (What the engine makes of the
// system's statements is in tests/cases/database.txt.)
#include "data/records.h"
#include "data/shortdate.h"
#include "support/testshop.h"

#include <cmath>
#include <limits>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
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
        return ::chmod(QFile::encodeName(path).constData(), on ? 0444 : 0600) == 0;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(fd);
    return done;
}

const QLocale UnitedStates(QLocale::English, QLocale::UnitedStates), India(QLocale::English, QLocale::India);

} // namespace

class DatabaseTest : public QObject {
    Q_OBJECT

private slots:
    // In a directory with blanks and URI characters: a missing file is not created; no database, a
    // folder, a file or index that cannot be written fail with a message; a second copy sees a write.
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
};

VANTREL_TEST_MAIN(DatabaseTest)
#include "test_database.moc"
