#pragma once

#include <QDate>
#include <QString>

namespace vantrel {

// The shop's financial year: from its start (1 April unless the shop sets another) to the day
// before the next one. Named by its calendar years, "2026-27".
struct FinancialYear {
    int startMonth = 4;
    int startDay = 1;
    QString nameOf(const QDate &day) const;
    // The last day of the last financial year that ended before DAY: 31 March 2026 for any day
    // from 1 April 2026 to 31 March 2027.
    QDate lastCompleteYearEnd(const QDate &day) const;
    bool isYearEnd(const QDate &day) const { return day.isValid() && lastCompleteYearEnd(day.addDays(1)) == day; }
};

// Everything the program keeps in its own settings (Qt's, never the shop's file), read and
// written here alone. Each holds from the next action on.
struct ProgramSettings {
    QString yearStart = QStringLiteral("04-01"); // "years/financialYearStart", as MM-dd
    QString exportFolder;                       // "export/folder"; blank: "exports" in the program directory
    QString printQueue;                         // "printing/queue", a print system's queue; blank: the printer file LPT1
    bool previewPrintouts = false;              // "printing/preview": each printout shown first
    QString shopName, shopAddress;              // "shop/name", "shop/address": the printouts' head; blank: the placeholders
    QString booksServer;                        // "books/server": the books on a PostgreSQL server; blank: the file
    QString counterName;                        // "books/counter": how the server's edit log names this computer

    // Names the program's settings' place (QSettings' organization and application): the
    // program and its tools read the same settings.
    static void usePlace();
    static ProgramSettings read();
    // Keeps every value; a blank one is forgotten, so that its default holds again. False when
    // the settings could not be written.
    bool write() const;

    // The year's start as read; 1 April when it is no month and day.
    FinancialYear financialYear() const;
    // The folder exports go into.
    QString exportFolderIn(const QString &programDirectory) const;
    // The counter's name in the server's edit log: as set, else the computer's host name.
    QString counter() const;
    // Where the books are: the environment's VANTREL_BOOKS for this run when it is set, else the
    // server setting; the connection string of the file in PROGRAMDIRECTORY when neither names
    // a server.
    QString booksIn(const QString &programDirectory) const;
    // The same as a path for the file's tools: the file's own path, or the server's connection.
    QString booksPathIn(const QString &programDirectory) const;
};

} // namespace vantrel
