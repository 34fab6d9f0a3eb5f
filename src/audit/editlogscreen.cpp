#include "editlogscreen.h"

#include "data/database.h"
#include "data/editlog.h"
#include "data/records.h"
#include "widgets/clock.h"
#include "widgets/datepicker.h"
#include "widgets/grid.h"
#include "output/printout.h"
#include "output/lineprinter.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

namespace {

const char *const AllTables = "(every table)";


// Every logged column as a row (table, position, name), for the listing to name each value.
QString columnsTable()
{
    QStringList rows;
    for (const LoggedTable &table : loggedTables())
        for (int pos = 0; pos < table.columns.size(); ++pos)
            rows << QStringLiteral("(%1, %2, %3)").arg(sqlLiteral(table.name)).arg(pos).arg(sqlLiteral(table.columns.at(pos)));
    return "cols(tab, pos, name) as (values " + rows.join(QLatin1Char(',')) + ")";
}

// The pieces of the listing that each engine writes its own way: a value of an entry's JSON
// array or object, a difference that counts two nulls as equal, a value read as a number, a
// name compared without regard to case.
struct LogForms {
    bool server;
    QString valueAt(const QString &row, const QString &pos) const
    {
        return server ? QStringLiteral("(%1::json ->> %2)").arg(row, pos) : QStringLiteral("json_extract(%1, '$[' || %2 || ']')").arg(row, pos);
    }
    QString note() const { return server ? QStringLiteral("(e.new::json ->> 'note')") : QStringLiteral("json_extract(e.new, '$.note')"); }
    QString differs(const QString &a, const QString &b) const { return a + (server ? " is distinct from " : " is not ") + b; }
    QString numberIs(const QString &value, const QString &number) const
    {
        return server ? QStringLiteral("vleading(%1) = vleading(%2)").arg(value, sqlLiteral(number)) : value + " + 0 = " + sqlLiteral(number) + " + 0";
    }
    QString nameIs(const QString &value, const QString &name) const
    {
        return server ? value + "::citext = " + sqlLiteral(name) : value + " = " + sqlLiteral(name) + " collate nocase";
    }
};

// Whether a column named among NAMES holds a value MATCHES takes, before or after the change.
QString anyColumn(const LogForms &forms, const QStringList &names, const std::function<QString(const QString &)> &matches)
{
    return QStringLiteral("exists (select 1 from cols k where k.tab = e.tab and k.name in ('%1') and (%2 or %3))")
        .arg(names.join(QStringLiteral("', '")), matches(forms.valueAt(QStringLiteral("e.old"), QStringLiteral("k.pos"))),
             matches(forms.valueAt(QStringLiteral("e.new"), QStringLiteral("k.pos"))));
}

} // namespace

EditLogScreen::EditLogScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Edit Log"), parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    const QDate today = services.clock.today();
    m_from = makeDatePicker(this, QStringLiteral("From"), today);
    m_to = makeDatePicker(this, QStringLiteral("To"), today);
    form->addRow(QStringLiteral("From"), m_from);
    form->addRow(QStringLiteral("To"), m_to);
    m_table = addChoice(form, QStringLiteral("&Table"));
    m_table->addItem(QLatin1String(AllTables));
    for (const LoggedTable &table : loggedTables())
        m_table->addItem(table.name);
    m_number = addField(form, QStringLiteral("Number"));
    m_party = addField(form, QStringLiteral("Party"));
    m_counter = addField(form, QStringLiteral("Counter"));
    m_table->setMaximumWidth(m_party->maximumWidth());
    auto *show = new QPushButton(QStringLiteral("&Show"), this);
    form->addRow(QString(), show);
    show->setMaximumWidth(show->sizeHint().width() + 24);

    m_changes = makeGrid(QStringLiteral("changes grid"));
    m_changes->setFixedFirstColumn(true);
    layout->addWidget(m_changes, 1);

    auto *bottom = new QHBoxLayout;
    bottom->addStretch();
    auto *print = new QPushButton(QStringLiteral("&Print"), this);
    bottom->addWidget(print);
    bottom->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(bottom);

    on(show, &QPushButton::clicked, &EditLogScreen::showClicked);
    on(print, &QPushButton::clicked, &EditLogScreen::printClicked);
    setKeysHint(QStringLiteral("Alt+S shows the changes of the span, newest first \u00b7 Alt+P prints them"));
}

// One row per changed column (every column of an insert or a delete), then the log's own notes
// when nothing narrows the list.
QString EditLogScreen::listing() const
{
    const QString span = QStringLiteral("e.at >= %1 and e.at < %2")
                             .arg(sqlLiteral(m_from->date().toString(Qt::ISODate)), sqlLiteral(m_to->date().addDays(1).toString(Qt::ISODate)));
    const LogForms forms{db().onServer()};
    const QString oldValue = forms.valueAt(QStringLiteral("e.old"), QStringLiteral("c.pos")),
                  newValue = forms.valueAt(QStringLiteral("e.new"), QStringLiteral("c.pos"));
    QString filters;
    if (m_table->currentIndex() > 0)
        filters += " and e.tab = " + sqlLiteral(m_table->currentText());
    if (!m_number->text().trimmed().isEmpty())
        filters += " and " + anyColumn(forms, {QStringLiteral("invoice"), QStringLiteral("pono"), QStringLiteral("refno")}, 
                                       [&](const QString &value) { return forms.numberIs(value, m_number->text().trimmed()); });
    if (!m_party->text().trimmed().isEmpty())
        filters += " and " + anyColumn(forms, {QStringLiteral("party"), QStringLiteral("suppname"), QStringLiteral("ac"), QStringLiteral("accnm")},
                                       [&](const QString &value) { return forms.nameIs(value, m_party->text().trimmed()); });
    if (!m_counter->text().trimmed().isEmpty())
        filters += " and " + forms.nameIs(QStringLiteral("e.source"), m_counter->text().trimmed());
    QString sql = "with " + columnsTable()
        + " select [Entry], [When], [By], [Change], [Table], [Row], [Column], [Old], [New] from ("
          "select e.id as [Entry], e.at as [When], e.source as [By], e.action as [Change], e.tab as [Table], e.rid as [Row], c.pos as pos, "
          "c.name as [Column], " + oldValue + " as [Old], " + newValue + " as [New] from editlog e join cols c on c.tab = e.tab where "
        + span + filters + " and (e.action <> 'update' or " + forms.differs(oldValue, newValue) + ")";
    if (filters.isEmpty())
        sql += " union all select e.id, e.at, e.source, e.action, '', null, 0, '', null, " + forms.note() + " from editlog e "
               "where e.tab = '' and " + span;
    return sql + ") listed order by [Entry] desc, pos";
}

void EditLogScreen::showClicked()
{
    m_changes->bind(db(), listing());
}

// The list as the grid holds it, 132 columns wide.
void EditLogScreen::printClicked()
{
    static const int widths[] = {7, 23, 7, 6, 14, 7, 12, 25, 25};
    const QString rule(132, QLatin1Char('='));
    QStringList lines = printoutHead(15, true);
    lines << rule << QStringLiteral("Edit Log") << "From " + m_from->text() + spaces(3) + "To " + m_to->text() << rule;
    for (int row = 0; row < m_changes->rows(); ++row) {
        QString line;
        for (int col = 1; col <= 9; ++col) {
            appendPaddedRight(line, m_changes->text(row, col).left(widths[col - 1]), widths[col - 1]);
            line += QLatin1Char(' ');
        }
        lines << line.trimmed();
        if (row == 0)
            lines << QString(132, QLatin1Char('-'));
    }
    lines << rule;
    printLines("Edit Log " + m_from->text() + " to " + m_to->text(), lines);
}

} // namespace vantrel
