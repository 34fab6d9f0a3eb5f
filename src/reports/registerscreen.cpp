#include "registerscreen.h"

#include "data/database.h"
#include "invoice/invoicescreen.h"
#include "widgets/clock.h"
#include "widgets/datepicker.h"
#include "widgets/grid.h"
#include "output/printout.h"
#include "output/lineprinter.h"

#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

const RegisterScreen::Kind RegisterScreen::Sales = {
    "Sales Datewise Report",
    "select invoice,dat as [Date],party,trans,netamt from salesmain where format(cdate(dat),'MM/DD/YYYY') between '",
    "select sum(netamt) as charge from salesmain where format(cdate(dat),'MM/DD/YYYY') between '",
    "Datewise Sales Register",
    "sale",
};

const RegisterScreen::Kind RegisterScreen::Purchase = {
    "Purchase Datewise Report",
    "select pono,dat as [Date],party,trans,netamt from purchasemain where format(cdate(dat),'MM/DD/YYYY') between '",
    "select sum(netamt) as charge from purchasemain where format(cdate(dat),'MM/DD/YYYY') between '",
    "Datewise Purchase Register",
    "pur",
};

RegisterScreen::RegisterScreen(Services &services, const Kind &kind, QWidget *parent)
    : RegisterScreen(services, kind, QStringLiteral("From"), QStringLiteral("To"), parent)
{
}

RegisterScreen::RegisterScreen(Services &services, const Kind &kind, const QString &fromLabel, const QString &toLabel, QWidget *parent)
    : Screen(services, kind.caption, parent), m_kind(kind), m_fromLabel(fromLabel), m_toLabel(toLabel)
{
    auto *layout = new QVBoxLayout(this);
    m_form = new QFormLayout;
    layout->addLayout(m_form);
    const QDate today = services.clock.today();
    m_from = makeDatePicker(this, fromLabel, today);
    m_to = makeDatePicker(this, toLabel, today);
    m_form->addRow(fromLabel, m_from);
    m_form->addRow(toLabel, m_to);
    m_show = new QPushButton(QStringLiteral("&Show"), this);
    m_form->addRow(QString(), m_show);
    m_show->setMaximumWidth(m_show->sizeHint().width() + 24);

    m_register = makeGrid(QStringLiteral("register grid"));
    m_register->setFixedFirstColumn(true);
    layout->addWidget(m_register, 1);

    auto *bottom = new QHBoxLayout;
    auto *totals = new QFormLayout;
    m_total = addField(totals, QStringLiteral("Total (Rs.)"));
    bottom->addLayout(totals);
    bottom->addStretch();
    auto *print = new QPushButton(QStringLiteral("Print"), this);
    bottom->addWidget(print);
    bottom->addWidget(makeCloseButton(QStringLiteral("Close")));
    layout->addLayout(bottom);

    on(m_show, &QPushButton::clicked, &RegisterScreen::showClicked);
    on(m_register, &Grid::clicked, &RegisterScreen::registerClicked);
    on(print, &QPushButton::clicked, &RegisterScreen::printClicked);
    alignNumbers({m_total});
    setKeysHint(QStringLiteral("Alt+S shows \u00b7 a clicked number and its mode go into the open document screen (nothing is loaded)"));
}

void RegisterScreen::activated()
{
    m_register->setColumnWidthTwips(3, 3000);
}

QString RegisterScreen::afterTo() const
{
    return QStringLiteral("'");
}

QStringList RegisterScreen::titleLines() const
{
    return {m_kind.title};
}

// The bounds are compared as month-first texts: month, then day, then year.
void RegisterScreen::showClicked()
{
    const QString from = m_from->date().toString(QStringLiteral("MM/dd/yyyy"));
    const QString to = m_to->date().toString(QStringLiteral("MM/dd/yyyy"));
    m_register->bind(db(), m_kind.listing + from + "' and '" + to + afterTo());
    const Recordset total = m_register->queryAlongside(m_kind.total + from + "' and '" + to + afterTo());
    m_total->setText(total.isNull("charge") ? QStringLiteral("0") : total.text("charge"));
}

// The invoice screen's number takes the clicked cell and its mode the cell to the left; it is
// neither shown nor loaded. Nothing happens when that screen is not open.
void RegisterScreen::registerClicked()
{
    Screen *target = services().openScreen ? services().openScreen(m_kind.invoiceEntry) : nullptr;
    auto *invoiceScreen = qobject_cast<InvoiceScreen *>(target);
    if (!invoiceScreen)
        return;
    const int row = m_register->row();
    const int col = m_register->col();
    invoiceScreen->takeDocument(m_register->text(row, col), m_register->text(row, col - 1));
}

// The register as the grid holds it, 46 columns wide.
void RegisterScreen::printClicked()
{
    const QString rule(46, QLatin1Char('='));
    const QString dashes(46, QLatin1Char('-'));
    Printout printout = printoutHead(15, true) << rule;
    printout << titleLines();
    printout << m_fromLabel + spaces(1) + m_from->text() + spaces(3) + m_toLabel + spaces(1) + m_to->text();
    printout << rule;
    printout << m_register->text(0, 1) + spaces(3) + m_register->text(0, 2) + spaces(5) + m_register->text(0, 3) + spaces(7)
                    + m_register->text(0, 4) + spaces(2) + m_register->text(0, 5);
    printout << dashes;
    const int rows = m_register->rows();
    QByteArray line;
    for (int row = 1; row < rows; ++row) {
        line.fill(' ', 2);
        appendPaddedRight(line, m_register->utf8(row, 1), 5);
        line += ' ';
        appendPaddedRight(line, m_register->utf8(row, 2), 10);
        line += ' ';
        appendPaddedRight(line, m_register->utf8(row, 3), 15);
        line += ' ';
        appendPaddedRight(line, m_register->utf8(row, 4), 1);
        line += ' ';
        appendPaddedLeft(line, m_register->utf8(row, 5), 7);
        printout.addUtf8Line(line);
    }
    printout << dashes << "Total (Rs.)" + spaces(28) + m_total->text() << rule;
    printLines(m_kind.title + " " + m_from->text() + " to " + m_to->text(), printout);
}

} // namespace vantrel
