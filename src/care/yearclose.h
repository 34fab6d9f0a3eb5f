#pragma once

#include "closedyears.h"
#include "data/programsettings.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>

namespace vantrel {

// What closing the year up to a cut-off day will do, read from the shop file before anything is
// written. Documents (invoices, vouchers, receipts, payments) dated up to the cut-off close; those
// dated after it stay in the shop file with their numbers.
struct YearClosePlan {
    QDate cutOff;          // the last day of the year to close
    QString name;          // "2025-26": the financial year of the cut-off
    QString yearFile;      // where the closed year goes: years/2025-26.accdb beside the database
    QString cutOffProblem; // why the cut-off cannot be closed (not a year's end, after today, closed already)
    QStringList unreadable;// documents whose date cannot be read ("sales invoice 4 (C): date '31/02/26'")
    QStringList unsettled; // the invoices and vouchers up to the cut-off still open ("sales invoice 1 (C) of RAM")
    QString findings;      // what the full check found, when it found anything
    int invoices = 0, vouchers = 0, receipts = 0, payments = 0; // closing
    int invoicesStaying = 0, vouchersStaying = 0, receiptsStaying = 0, paymentsStaying = 0;
    int lots = 0, accounts = 0;
    QString balance;       // the overall balance carried, as the screens write it

    bool possible() const { return refusal().isEmpty(); }
    // Why the close cannot be done now; empty when it can.
    QString refusal() const;
    // What the close will do, as the question that asks for it.
    QString question() const;
    // The date of the opening rows, the first day of the new year, as the screens write dates.
    QString openingDate() const;
};

// Reads the shop file at DATABASE for a close up to CUTOFF, on TODAY.
YearClosePlan planYearClose(const QString &database, const FinancialYear &year, const QDate &cutOff, const QDate &today);

// Closes the year that PLAN describes: a checked backup; the closed year's books (the documents up
// to the cut-off) into a file of their own, never written again; then the database keeps the
// masters, every stock lot as it stands, the documents after the cut-off, and opening rows in the
// ledger, dated the new year's first day, that carry the overall balance (the receipts' and the
// payments' totals), each receiving account's receipts (the Receipt screen's total) and each
// account's receipts and payments (the Ledger screen's rows, type "opening"), every amount to the
// paisa. The numbering series go on from the highest number that stays, or from 1.
// The new contents are built on a copy and put in by the engine in one transaction, so that a
// program that has the file open sees them whole, and a kill leaves the old file or, with
// finishInterruptedClose, the new pair. PROGRESS hears the percentage done. Throws
// UnhandledError, the database unchanged, when anything fails.
void closeYear(const QString &database, const YearClosePlan &plan, const QDateTime &now,
               const std::function<void(int percent)> &progress = {});

} // namespace vantrel
