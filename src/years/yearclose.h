#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>

namespace vantrel {

// The shop's financial year: from its start (1 April unless the shop sets another) to the day
// before the next one. Named by its calendar years, "2026-27".
struct FinancialYear {
    int startMonth = 4;
    int startDay = 1;
    QString nameOf(const QDate &day) const;
};

// What closing the year will do, read from the shop file before anything is written.
struct YearClosePlan {
    QString name;          // "2026-27"
    QString yearFile;      // where the closed year goes: years/2026-27.accdb beside the database
    QStringList unsettled; // the invoices and vouchers still open ("sales invoice 1 (C) of RAM")
    QString findings;      // what the full check found, when it found anything
    int invoices = 0, vouchers = 0, receipts = 0, payments = 0, lotsKept = 0, lotsDropped = 0, accounts = 0;
    QString balance;       // the overall balance carried, as the screens write it

    bool possible() const { return unsettled.isEmpty() && findings.isEmpty(); }
    // Why the close cannot be done now; empty when it can.
    QString refusal() const;
    // What the close will do, as the question that asks for it.
    QString question() const;
};

// Reads the shop file at DATABASE (the newest date in its books names the year).
YearClosePlan planYearClose(const QString &database, const FinancialYear &year, const QDate &today);

// Closes the year that PLAN describes: a checked backup; the closed year's books into a file of
// their own, never written again; then the database keeps the masters, every stock lot that still
// holds stock, and opening rows in the ledger that carry the overall balance (the receipts' and
// the payments' totals), each receiving account's receipts (the Receipt screen's total) and each
// account's receipts and payments (the Ledger screen's rows, type "opening"); every numbering
// series starts again at 1. DATETEXT is the opening rows' date as the screens write dates.
// The new contents are built on a copy and put in by the engine in one transaction, so that a
// program that has the file open sees them whole, and a kill leaves the old file or, with
// finishInterruptedClose, the new pair. PROGRESS hears the percentage done. Throws
// UnhandledError, the database unchanged, when anything fails.
void closeYear(const QString &database, const YearClosePlan &plan, const QDateTime &now, const QString &dateText,
               const std::function<void(int percent)> &progress = {});

// After a kill in a close: a closed year's file still being written is kept when the database
// lists that year as closed and removed when it does not, and the unfinished new contents go.
// Run at every start and before every close.
void finishInterruptedClose(const QString &database);

// The closed years beside DATABASE, by name ("2026-27" -> its file), oldest first.
QList<QPair<QString, QString>> closedYears(const QString &database);

} // namespace vantrel
