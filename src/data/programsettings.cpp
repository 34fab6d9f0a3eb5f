#include "programsettings.h"

#include "connectionstring.h"
#include "serverconnection.h"

#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QSysInfo>

namespace vantrel {

namespace {

const char *const YearStart = "years/financialYearStart", *const ExportFolder = "export/folder", *const PrintQueue = "printing/queue",
                  *const Preview = "printing/preview", *const ShopName = "shop/name", *const ShopAddress = "shop/address",
                  *const BooksServer = "books/server", *const Counter = "books/counter";

} // namespace

QString FinancialYear::nameOf(const QDate &day) const
{
    const int first = day < QDate(day.year(), startMonth, startDay) ? day.year() - 1 : day.year();
    return QStringLiteral("%1-%2").arg(first).arg((first + 1) % 100, 2, 10, QLatin1Char('0'));
}

QDate FinancialYear::lastCompleteYearEnd(const QDate &day) const
{
    const QDate start(day.year(), startMonth, startDay);
    return (day < start ? start.addYears(-1) : start).addDays(-1);
}

void ProgramSettings::usePlace()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Vantrel"));
    QCoreApplication::setApplicationName(QStringLiteral("Vantrel"));
}

ProgramSettings ProgramSettings::read()
{
    const QSettings settings;
    ProgramSettings read;
    read.yearStart = settings.value(QLatin1String(YearStart), read.yearStart).toString();
    read.exportFolder = settings.value(QLatin1String(ExportFolder)).toString().trimmed();
    read.printQueue = settings.value(QLatin1String(PrintQueue)).toString();
    read.previewPrintouts = settings.value(QLatin1String(Preview), false).toBool();
    read.shopName = settings.value(QLatin1String(ShopName)).toString().trimmed();
    read.shopAddress = settings.value(QLatin1String(ShopAddress)).toString().trimmed();
    read.booksServer = settings.value(QLatin1String(BooksServer)).toString().trimmed();
    read.counterName = settings.value(QLatin1String(Counter)).toString().trimmed();
    return read;
}

bool ProgramSettings::write() const
{
    QSettings settings;
    for (const auto &[key, value] : {std::pair{YearStart, yearStart}, std::pair{ExportFolder, exportFolder}, std::pair{PrintQueue, printQueue},
                                     std::pair{ShopName, shopName}, std::pair{ShopAddress, shopAddress},
                                     std::pair{BooksServer, booksServer}, std::pair{Counter, counterName}}) {
        if (value.trimmed().isEmpty())
            settings.remove(QLatin1String(key));
        else
            settings.setValue(QLatin1String(key), value.trimmed());
    }
    settings.setValue(QLatin1String(Preview), previewPrintouts);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

FinancialYear ProgramSettings::financialYear() const
{
    const QDate day = QDate::fromString(QStringLiteral("2000-") + yearStart, QStringLiteral("yyyy-MM-dd"));
    return day.isValid() ? FinancialYear{day.month(), day.day()} : FinancialYear{};
}

QString ProgramSettings::exportFolderIn(const QString &programDirectory) const
{
    return exportFolder.isEmpty() ? QDir(programDirectory).filePath(QStringLiteral("exports")) : exportFolder;
}

QString ProgramSettings::counter() const
{
    return counterName.isEmpty() ? QSysInfo::machineHostName() : counterName;
}

QString ProgramSettings::booksIn(const QString &programDirectory) const
{
    const QString chosen = qEnvironmentVariableIsSet("VANTREL_BOOKS") ? qEnvironmentVariable("VANTREL_BOOKS").trimmed() : booksServer;
    return isServerConnection(chosen) ? chosen : buildConnectionString(programDirectory);
}

QString ProgramSettings::booksPathIn(const QString &programDirectory) const
{
    const QString books = booksIn(programDirectory);
    return isServerConnection(books) ? books : dataSourceOf(books);
}

} // namespace vantrel
