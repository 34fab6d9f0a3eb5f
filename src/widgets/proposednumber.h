#pragma once

#include <QString>

class QLineEdit;

namespace vantrel {

class Database;
class Dialogs;

// The number of a new document, receipt or master row as its field first shows it: the
// highest of its series plus one, a proposal. Its first save takes it, inside that save's
// action: when a row of the series has taken it meanwhile (another counter's), the field gets
// the highest plus one then. A number the operator typed over the proposal is the operator's.
class ProposedNumber {
public:
    // Fills FIELD with the next number of the series MAXQUERY ("select max(C) as A from T where
    // CONDITION") reads as COLUMN (a null maximum counts as 0; no row at all gives 1). Throws
    // UnhandledError.
    void propose(Database &db, QLineEdit *field, const QString &maxQuery, const QString &column);
    // At the first save after propose(), in its action: when the proposal was taken meanwhile,
    // FIELD gets the next number and DIALOGS tell TAKEN ("Invoice %1 was taken at another
    // counter; this invoice is %2.") filled with the two numbers. When the save's action keeps
    // nothing (a lost server), FIELD shows the proposal again, still a proposal. Throws
    // UnhandledError.
    void take(Database &db, Dialogs &dialogs, QLineEdit *field, const QString &taken);

private:
    QString m_maxQuery, m_column;
    QString m_proposed; // until the first save takes it
};

} // namespace vantrel
