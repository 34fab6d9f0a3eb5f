#pragma once

#include "widgets/proposednumber.h"
#include "widgets/screen.h"

class QFrame;
class QHBoxLayout;
class QLineEdit;
class QPushButton;

namespace vantrel {

class FieldEvents;
class Grid;
class ItemLookup;

// What the Sales and Purchase screens share word for word: the fields in the order of the flow,
// the lines grid, the party list and the product panel dropping under their fields, the five
// buttons, the product lookups, the mode check, the party search, the start of a new document
// and the printed layout. Each screen keeps its own handlers where the two differ.
class InvoiceScreen : public Screen {
    Q_OBJECT
public:
    // The texts in which the two screens differ.
    struct Wording {
        QString caption;         // "Sales"
        QString numberLabel;     // "Invoice No :"
        QString itemCodeLabel;   // "item code"
        QString productGridName; // "product/stock grid"
        QString partyGridName;   // "party list"
        QString documentName;    // "Sales invoice", as the status line names a printed one
        QString numberTaken;     // "Invoice %1 was taken at another counter; this invoice is %2."
        QString changedElsewhere; // "Invoice %1 was changed at another counter since it was shown; ..."
        QString goneElsewhere;    // "Invoice %1 was changed at another counter since its last line; ..."
        QString headerTable;      // "salesmain"
        QString linesTable;       // "sales"
        QString numberColumn;     // "invoice"
    };

    InvoiceScreen(Services &services, const Wording &wording, QWidget *parent = nullptr);

    // A register hands a document over: the number and the mode fields take the texts, and
    // the mode field reacts as to typing. Nothing is loaded.
    void takeDocument(const QString &number, const QString &mode);

protected:
    QString mode() const;

    // What both screens do on activation: the keyboard to the mode field, today's date, and
    // every action but "&Close" disabled until a document is started or opened.
    void prepareForDocument();

    void modeChanged();
    // A key released in the mode field starts the document afresh: the next number of the
    // mode's own series from NUMBERINGQUERY, whose maximum is read as COLUMN.
    void startDocument(const QString &numberingQuery, const QString &column);
    // The first "&Add" of a started document takes the number proposed for it, in its action:
    // when another counter has taken it meanwhile, the document gets the next free one and the
    // operator is told. A number the operator typed or opened is the operator's.
    void takeProposedNumber();
    // In an "&Add"'s action, before it writes: false, the operator told, when the document shown
    // (the number and mode) is no longer as this screen last showed or wrote it: another counter
    // cancelled it (its number perhaps given again), settled it or added to it.
    bool stillTheDocumentAdded();
    // Once a document is shown (re-opened), or in an "&Add"'s action once its header is written:
    // the document as the books hold it now is the one the next "&Add" adds to.
    void rememberDocument();
    // The rows the lines grid shows, each row's texts: what a cancel gives back.
    QStringList linesShown();
    // The cancel's action: CANCEL runs unless the lines grid's rows are no longer what its own
    // query reads (another counter changed the document they belong to, which need not be the
    // one cancelled: a document without lines leaves the grid as it was), which the operator is
    // then told. SHOWN are the rows as the operator confirmed them. Returns whether it ran.
    bool cancelUnlessChanged(const QStringList &shown, const std::function<void()> &cancel);
    void partyKeyPressed(int key);
    void partyKeyReleased(int key);
    void partyClicked();
    void partyFocusLost();
    // Empties the item fields for the next line and brings the keyboard back to the product.
    void clearItemFields();
    // The document as the screen shows it: the fields and the first four columns of the lines
    // grid, under rules of RULEWIDTH characters; NUMBERLINE carries number and date.
    void printDocument(const QString &numberLine, int ruleWidth);
    // Puts WIDGET on the totals' row, after what is there.
    void addToTotals(QWidget *widget);

    QLineEdit *m_mode;
    FieldEvents *m_modeEvents;
    QLineEdit *m_number;
    QLineEdit *m_date;
    QLineEdit *m_party;
    QLineEdit *m_productName;
    QLineEdit *m_itemCode;
    QLineEdit *m_cmpid;
    QLineEdit *m_psrno;
    QLineEdit *m_qty;
    QLineEdit *m_rate;
    QLineEdit *m_amount;
    QLineEdit *m_total;
    Grid *m_lines;
    QFrame *m_productPanel;
    Grid *m_products;
    Grid *m_parties;
    QPushButton *m_add;
    QPushButton *m_endInventory;
    QPushButton *m_cancel;
    QPushButton *m_print;
    ItemLookup *m_lookup;

    // Set by the first key released in the mode field and never cleared. Until then "&Add"
    // writes neither the line nor the header, yet still books the stock.
    bool m_writeLines = false;
    bool m_writeHeader = false;

private:
    void buildFields(const Wording &wording);
    void buildButtonsAndLists(const Wording &wording);
    void connectShared();
    // The rows SQL reads now, as linesShown() gives them.
    QStringList linesNow(const QString &sql);

    QHBoxLayout *m_totalsRow;
    QString m_documentName;
    QString m_numberTaken;
    QString m_changedElsewhere;
    QString m_goneElsewhere;
    QString m_headerTable, m_linesTable, m_numberColumn;
    ProposedNumber m_proposedNumber;
    // The document shown or last written: its number, mode and rows as they were then; none since
    // a start.
    struct Added {
        QString number, mode;
        QStringList rows;
    } m_added;
    // The rows of the document shown, header and lines, as the books hold them now.
    QStringList documentRowsNow();
};

// Gives a field a width for about CHARS characters.
void setWidthInCharacters(QLineEdit *field, int chars);

} // namespace vantrel
