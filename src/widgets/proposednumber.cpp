#include "proposednumber.h"

#include "data/database.h"
#include "data/records.h"
#include "data/unhandlederror.h"
#include "dialogs.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <utility>

namespace vantrel {

namespace {

// The row that holds NUMBER in the series MAXQUERY numbers ("select max(C) as A from T where
// CONDITION"): "select C from T where CONDITION and C=NUMBER".
QString takenQuery(const QString &maxQuery, const QString &number)
{
    static const QRegularExpression series(QStringLiteral("^select max\\((\\w+)\\) as \\w+ from (\\w+)(?: where (.*))?$"),
                                           QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch m = series.match(maxQuery);
    if (!m.hasMatch())
        throw UnhandledError(QStringLiteral("no series of numbers in: ") + maxQuery);
    const QString condition = m.captured(3).isEmpty() ? QString() : m.captured(3) + QStringLiteral(" and ");
    return QStringLiteral("select %1 from %2 where %3%1=%4").arg(m.captured(1), m.captured(2), condition, number);
}

} // namespace

void ProposedNumber::propose(Database &db, QLineEdit *field, const QString &maxQuery, const QString &column)
{
    field->setText(doubleText(nextNumber(db, maxQuery, column)));
    m_maxQuery = maxQuery;
    m_column = column;
    m_proposed = field->text();
}

void ProposedNumber::take(Database &db, Dialogs &dialogs, QLineEdit *field, const QString &taken)
{
    const QString proposed = std::exchange(m_proposed, QString());
    if (proposed.isEmpty() || field->text() != proposed)
        return;
    // A save that keeps nothing took nothing, whichever of its statements failed: the field shows
    // the proposal again (whatever the save showed after it), for the next save to take.
    db.onActionLost([this, field, proposed] {
        field->setText(proposed);
        m_proposed = proposed;
    });
    if (db.query(takenQuery(m_maxQuery, proposed)).eof())
        return;
    field->setText(doubleText(nextNumber(db, m_maxQuery, m_column)));
    dialogs.inform(taken.arg(proposed, field->text()));
}

} // namespace vantrel
