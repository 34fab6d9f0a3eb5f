#include "correctdatescreen.h"

#include "data/database.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "widgets/clock.h"
#include "widgets/datepicker.h"
#include "widgets/dialogs.h"
#include "widgets/grid.h"

#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

CorrectDateScreen::CorrectDateScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Correct a Date"), parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Dates no register can read:"), this));
    m_list = makeGrid(QStringLiteral("unreadable dates list"));
    m_list->setColumnWidthTwips(QStringLiteral("Document"), 4000);
    layout->addWidget(m_list, 1);
    auto *form = new QFormLayout;
    m_date = makeDatePicker(this, QStringLiteral("Right date"), services.clock.today());
    form->addRow(QStringLiteral("Right date"), m_date);
    layout->addLayout(form);
    auto *buttons = new QHBoxLayout;
    auto *write = new QPushButton(QStringLiteral("&Write the Date"), this);
    buttons->addStretch();
    buttons->addWidget(write);
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(buttons);
    on(write, &QPushButton::clicked, &CorrectDateScreen::writeClicked);
    setKeysHint(QStringLiteral("Alt+W writes the date"));
}

void CorrectDateScreen::activated()
{
    m_found = unreadableDates(db().fileName());
    QStringList rows;
    for (const UnreadableDate &row : m_found)
        rows << QStringLiteral("(%1, %2)").arg(sqlLiteral(row.document), sqlLiteral(row.date));
    m_list->bind(db(), rows.isEmpty() ? QStringLiteral("select '' as [Document], '' as [Date] where 1 = 0")
                                      : "select column1 as [Document], column2 as [Date] from (values " + rows.join(QLatin1Char(',')) + ") found");
}

void CorrectDateScreen::writeClicked()
{
    const int row = m_list->row();
    if (row < 1 || row > m_found.size()) {
        dialogs().inform(m_found.isEmpty() ? QStringLiteral("Every date can be read.") : QStringLiteral("Choose a document in the list first."));
        return;
    }
    const UnreadableDate &found = m_found[row - 1];
    const QString date = ShortDate().text(m_date->date());
    if (!dialogs().ask(QStringLiteral("Write %1 as the date of %2, in place of '%3'?").arg(date, found.document, found.date)))
        return;
    act([&] {
        db().execute("update " + found.table + " set dat = " + sqlLiteral(date) + " where " + found.where);
        dialogs().inform(QStringLiteral("The date of %1 is now %2.").arg(found.document, date));
    });
    activated();
}

} // namespace vantrel
