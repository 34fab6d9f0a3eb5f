#include "daybookscreen.h"

#include "data/database.h"
#include "data/shortdate.h"
#include "widgets/clock.h"
#include "widgets/grid.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

const DayBookScreen::Kind DayBookScreen::Sales = {
    "Sales-Day Book",
    "select invoice,dat as [Date],party,trans,dis,disamt,netamt,gd from salesmain where dat='",
    "select sum(netamt) as charge from salesmain where dat='",
};

const DayBookScreen::Kind DayBookScreen::Purchase = {
    "Purchase Day Book",
    "select pono,dat as [Date],party,trans,netamt from purchasemain where dat='",
    "select sum(netamt) as charge from purchasemain where dat='",
};

DayBookScreen::DayBookScreen(Services &services, const Kind &kind, QWidget *parent)
    : Screen(services, kind.caption, parent), m_kind(kind)
{
    auto *layout = new QVBoxLayout(this);
    m_grid = makeGrid(QStringLiteral("day book grid"));
    layout->addWidget(m_grid, 1);
    auto *bottom = new QHBoxLayout;
    auto *form = new QFormLayout;
    m_total = addField(form, QStringLiteral("Total (Rs.)"));
    bottom->addLayout(form);
    bottom->addStretch();
    bottom->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(bottom);
    alignNumbers({m_total});
    setKeysHint(QStringLiteral("Alt+C closes"));
}

void DayBookScreen::activated()
{
    m_grid->setColumnWidthTwips(QStringLiteral("party"), 3000);
    const QString today = ShortDate().text(services().clock.today());
    m_grid->bind(db(), m_kind.listing + today + "'");
    const Recordset total = db().query(m_kind.total + today + "'");
    m_total->setText(total.isNull("charge") ? QStringLiteral("0") : total.text("charge"));
}

} // namespace vantrel
