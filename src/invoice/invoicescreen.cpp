#include "invoicescreen.h"

#include "data/database.h"
#include "data/records.h"
#include "data/shortdate.h"
#include "invoice/itemlookup.h"
#include "widgets/clock.h"
#include "widgets/dialogs.h"
#include "widgets/droppanel.h"
#include "widgets/fieldevents.h"
#include "widgets/grid.h"
#include "output/printout.h"
#include "output/lineprinter.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace vantrel {

namespace {

// Adds label-field pairs to a row, left to right.
void addPair(QHBoxLayout *row, const QString &label, QLineEdit *field, int chars)
{
    auto *caption = new QLabel(label);
    caption->setBuddy(field);
    row->addWidget(caption);
    setWidthInCharacters(field, chars);
    row->addWidget(field);
    row->addSpacing(12);
}

QHBoxLayout *newRow(QVBoxLayout *layout)
{
    auto *row = new QHBoxLayout;
    layout->addLayout(row);
    return row;
}

} // namespace

void setWidthInCharacters(QLineEdit *field, int chars)
{
    field->setFixedWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('M')) * chars + 12);
}

InvoiceScreen::InvoiceScreen(Services &services, const Wording &wording, QWidget *parent)
    : Screen(services, wording.caption, parent), m_documentName(wording.documentName), m_numberTaken(wording.numberTaken), m_changedElsewhere(wording.changedElsewhere),
      m_goneElsewhere(wording.goneElsewhere), m_headerTable(wording.headerTable), m_linesTable(wording.linesTable),
      m_numberColumn(wording.numberColumn)
{
    buildFields(wording);
    buildButtonsAndLists(wording);
    connectShared();
    alignNumbers({m_qty, m_rate, m_amount, m_total});
    setKeysHint(QStringLiteral("C/D starts \u00b7 Down, Enter takes a row \u00b7 F9 adds \u00b7 Alt+E settles \u00b7 Alt+P prints \u00b7 Alt+C closes"));
}

void InvoiceScreen::buildFields(const Wording &wording)
{
    auto *layout = new QVBoxLayout(this);
    QHBoxLayout *row = newRow(layout);
    m_mode = makeField(QStringLiteral("C/D"));
    m_number = makeField(wording.numberLabel, QStringLiteral("txtpono"));
    m_date = makeField(QStringLiteral("Date :"), QStringLiteral("txtdate"));
    addPair(row, QStringLiteral("C/D"), m_mode, 2);
    addPair(row, wording.numberLabel, m_number, 8);
    addPair(row, QStringLiteral("Date :"), m_date, 10);
    row->addStretch();

    row = newRow(layout);
    m_party = makeField(QStringLiteral("Party:"));
    addPair(row, QStringLiteral("Party:"), m_party, 36);
    row->addStretch();

    row = newRow(layout);
    m_productName = makeField(QStringLiteral("Product Name:"));
    m_itemCode = makeField(wording.itemCodeLabel);
    m_cmpid = makeField(QStringLiteral("cmpid"));
    m_psrno = makeField(QStringLiteral("psrno"));
    addPair(row, QStringLiteral("Product Name:"), m_productName, 36);
    addPair(row, wording.itemCodeLabel, m_itemCode, 12);
    addPair(row, QStringLiteral("cmpid"), m_cmpid, 8);
    addPair(row, QStringLiteral("psrno"), m_psrno, 5);
    row->addStretch();

    row = newRow(layout);
    m_qty = makeField(QStringLiteral("Qty"));
    m_rate = makeField(QStringLiteral("Rate"));
    m_amount = makeField(QStringLiteral("Amount"));
    addPair(row, QStringLiteral("Qty"), m_qty, 6);
    addPair(row, QStringLiteral("Rate"), m_rate, 9);
    addPair(row, QStringLiteral("Amount"), m_amount, 11);
    m_add = new QPushButton(QStringLiteral("&Add"), this);
    m_add->setObjectName(QStringLiteral("cmdadd"));
    // "&Add" shares Alt+A with "C&ancel"; F9 adds the line and nothing else.
    m_add->setToolTip(QStringLiteral("Add this line (F9)"));
    auto *addKey = new QShortcut(QKeySequence(Qt::Key_F9), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(addKey, &QShortcut::activated, m_add, &QPushButton::click);
    row->addWidget(m_add);
    row->addStretch();

    m_lines = makeGrid(QStringLiteral("lines grid"));
    layout->addWidget(m_lines, 1);

    m_totalsRow = newRow(layout);
    m_total = makeField(QStringLiteral("Total Amount"));
    addPair(m_totalsRow, QStringLiteral("Total Amount"), m_total, 11);
    m_totalsRow->addStretch();
}

void InvoiceScreen::addToTotals(QWidget *widget)
{
    m_totalsRow->insertWidget(m_totalsRow->count() - 1, widget);
}

void InvoiceScreen::buildButtonsAndLists(const Wording &wording)
{
    m_endInventory = new QPushButton(QStringLiteral("&End Inventory"), this);
    m_cancel = new QPushButton(QStringLiteral("C&ancel"), this);
    m_print = new QPushButton(QStringLiteral("&Print"), this);
    QPushButton *close = makeCloseButton(QStringLiteral("&Close"), QStringLiteral("cmdclose"));
    close->setToolTip(QStringLiteral("Close this form"));
    auto *buttons = newRow(static_cast<QVBoxLayout *>(layout()));
    buttons->addStretch();
    for (QPushButton *button : {m_endInventory, m_cancel, m_print, close})
        buttons->addWidget(button);

    // The search lists drop over the screen under the field they serve.
    m_parties = makeGrid(wording.partyGridName);
    m_parties->hide();
    m_productPanel = new QFrame(this);
    m_productPanel->setFrameShape(QFrame::StyledPanel);
    m_products = makeGrid(wording.productGridName, m_productPanel);
    auto *panelLayout = new QVBoxLayout(m_productPanel);
    panelLayout->setContentsMargins(0, 0, 0, 0);
    panelLayout->addWidget(m_products);
    m_productPanel->hide();
    prepareWhileIdle(m_parties);
    prepareWhileIdle(m_productPanel);
    m_lookup = new ItemLookup(this, {m_productName, m_itemCode, m_cmpid, m_psrno, m_qty, m_rate, m_amount, m_productPanel, m_products});
}

void InvoiceScreen::connectShared()
{
    on(m_mode, &QLineEdit::textChanged, &InvoiceScreen::modeChanged);
    // Coming back to the mode field selects its letter, so one key changes C to D.
    m_modeEvents = new FieldEvents(m_mode);
    connect(m_modeEvents, &FieldEvents::focusGained, m_mode, [this] { QTimer::singleShot(0, m_mode, &QLineEdit::selectAll); });
    auto *party = new FieldEvents(m_party);
    on(party, &FieldEvents::keyPressed, &InvoiceScreen::partyKeyPressed);
    on(party, &FieldEvents::keyReleased, &InvoiceScreen::partyKeyReleased);
    on(party, &FieldEvents::clicked, &InvoiceScreen::partyClicked);
    on(party, &FieldEvents::focusLost, &InvoiceScreen::partyFocusLost);

    auto *productName = new FieldEvents(m_productName);
    on(productName, &FieldEvents::clicked, m_lookup, &ItemLookup::showPanel);
    on(productName, &FieldEvents::keyPressed, m_lookup, &ItemLookup::productNameKeyPressed);
    on(productName, &FieldEvents::keyReleased, m_lookup, &ItemLookup::searchByName);
    on(new FieldEvents(m_itemCode), &FieldEvents::keyPressed, m_lookup, &ItemLookup::itemCodeKeyPressed);
    on(m_qty, &QLineEdit::textChanged, m_lookup, &ItemLookup::computeAmount);
}

void InvoiceScreen::takeDocument(const QString &number, const QString &mode)
{
    m_number->setText(number);
    m_mode->setText(mode);
}

QString InvoiceScreen::mode() const
{
    return m_mode->text();
}

void InvoiceScreen::prepareForDocument()
{
    m_mode->setFocus();
    m_date->setText(ShortDate().text(services().clock.today()));
    for (QPushButton *button : {m_endInventory, m_print, m_cancel, m_add})
        button->setEnabled(false);
}

void InvoiceScreen::modeChanged()
{
    static const QStringList modes = {"D", "C", "d", "c"};
    if (mode().isEmpty() || modes.contains(mode()))
        return;
    dialogs().inform(QStringLiteral("Enter C/D only"));
    // The letter still starts a document of its own series: its release, which the box took
    // on a real desktop, counts in the mode field.
    m_modeEvents->releaseKeyTakenByBox();
}

void InvoiceScreen::startDocument(const QString &numberingQuery, const QString &column)
{
    m_party->setFocus();
    for (QLineEdit *field : {m_party, m_productName, m_qty, m_rate, m_amount, m_total})
        field->clear();
    m_add->setEnabled(true);
    m_print->setEnabled(true);
    m_proposedNumber.propose(db(), m_number, numberingQuery, column);
    m_writeLines = true;
    m_writeHeader = true;
    m_lines->clear();
    m_added = {};
}

void InvoiceScreen::takeProposedNumber()
{
    m_proposedNumber.take(db(), dialogs(), m_number, m_numberTaken);
}

QStringList InvoiceScreen::documentRowsNow()
{
    const QString number = m_number->text(), series = mode();
    return linesNow(QStringLiteral("select rowid as r, party, dat from %1 where %2=%3 and trans='%4'").arg(m_headerTable, m_numberColumn, number, series))
        + linesNow(QStringLiteral("select rowid as r, prodname, party, qty, status from %1 where %2='%3' and trans='%4'")
                       .arg(m_linesTable, m_numberColumn, number, series));
}

bool InvoiceScreen::stillTheDocumentAdded()
{
    if (m_added.rows.isEmpty() || m_added.number != m_number->text() || m_added.mode != mode() || documentRowsNow() == m_added.rows)
        return true;
    dialogs().inform(m_goneElsewhere.arg(m_number->text()));
    return false;
}

void InvoiceScreen::rememberDocument()
{
    db().onActionLost([this, before = m_added] { m_added = before; });
    // A number that is none (empty, or a text the statements fail on) names no document to keep.
    const QString number = m_number->text();
    const bool plain = !number.isEmpty() && std::all_of(number.begin(), number.end(), [](QChar c) { return c.isDigit(); });
    m_added = plain ? Added{number, mode(), documentRowsNow()} : Added{};
}

QStringList InvoiceScreen::linesShown()
{
    QStringList rows;
    for (int row = 1, count = m_lines->rows(); row < count; ++row) {
        QStringList cells;
        for (int col = 0; col < m_lines->cols(); ++col)
            cells << m_lines->text(row, col);
        rows << cells.join(QLatin1Char('\t'));
    }
    return rows;
}

bool InvoiceScreen::cancelUnlessChanged(const QStringList &shown, const std::function<void()> &cancel)
{
    bool changed = false;
    const QString shownBy = m_lines->statement();
    act([&] {
        changed = (shownBy.isEmpty() ? QStringList() : linesNow(shownBy)) != shown;
        if (changed)
            dialogs().inform(m_changedElsewhere.arg(m_number->text()));
        else
            cancel();
    });
    return !changed;
}

QStringList InvoiceScreen::linesNow(const QString &sql)
{
    QStringList rows;
    for (Recordset lines = db().query(sql); !lines.eof(); lines.moveNext()) {
        QStringList row;
        for (const QString &name : lines.fieldNames())
            row << lines.text(name);
        rows << row.join(QLatin1Char('\t'));
    }
    return rows;
}

void InvoiceScreen::partyKeyPressed(int key)
{
    enterListOnDown(key, m_parties);
}

void InvoiceScreen::partyKeyReleased(int key)
{
    if (m_party->text().isEmpty())
        return;
    searchParties(m_party, m_parties);
    if (key == Qt::Key_Escape)
        m_parties->hide();
}

void InvoiceScreen::partyClicked()
{
    showBelow(m_parties, m_party);
}

void InvoiceScreen::partyFocusLost()
{
    if (!m_parties->isHidden())
        focusAfterwards(m_parties);
}

void InvoiceScreen::clearItemFields()
{
    for (QLineEdit *field : {m_productName, m_qty, m_rate, m_itemCode, m_amount})
        field->clear();
    for (QPushButton *button : {m_cancel, m_endInventory, m_print})
        button->setEnabled(true);
    m_productName->setFocus();
}

void InvoiceScreen::printDocument(const QString &numberLine, int ruleWidth)
{
    const QString rule(ruleWidth, QLatin1Char('='));
    const QString dashes(ruleWidth, QLatin1Char('-'));
    QStringList lines = printoutHead(10, false);
    lines += {
        rule,
        numberLine,
        "Party:" + spaces(3) + m_party->text(),
        rule,
        m_lines->text(0, 0) + spaces(6) + m_lines->text(0, 1) + spaces(3) + m_lines->text(0, 2) + spaces(1) + m_lines->text(0, 3),
        dashes,
    };
    for (int row = 1, rows = m_lines->rows(); row < rows; ++row)
        lines << padRight(m_lines->text(row, 0), 15) + spaces(1) + padRight(m_lines->text(row, 1), 3) + spaces(1)
                     + padRight(m_lines->text(row, 2), 4) + spaces(2) + padRight(m_lines->text(row, 3), 7);
    lines << dashes << spaces(8) + "Total Amount" + spaces(6) + m_total->text() << rule;
    printLines(m_documentName + " " + m_number->text(), lines);
}

} // namespace vantrel
