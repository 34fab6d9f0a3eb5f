#pragma once

#include "widgets/screen.h"

class QDateEdit;
class QFormLayout;

namespace vantrel {

class Grid;

// A date-wise register: the sales or purchase headers whose month-first date text lies between
// two bounds, their total, and the register printed on the line printer. A click on a cell
// hands its text, and the text of the cell to its left, to the open invoice screen of the kind.
class RegisterScreen : public Screen {
    Q_OBJECT
public:
    struct Kind {
        QString caption;
        QString listing;      // the query up to the quote that opens the From bound
        QString total;        // likewise, summing netamt as charge
        QString title;        // the printed title
        QString invoiceEntry; // the menu entry of the screen a clicked cell goes to
    };
    static const Kind Sales;
    static const Kind Purchase;

    RegisterScreen(Services &services, const Kind &kind, QWidget *parent = nullptr);

    void activated() override;

protected:
    // A register whose bounds are labelled FROMLABEL and TOLABEL.
    RegisterScreen(Services &services, const Kind &kind, const QString &fromLabel, const QString &toLabel, QWidget *parent);

    // What follows the To bound in both statements: its closing quote, here.
    virtual QString afterTo() const;
    // The printed lines between the first rule and the span line: the title, here.
    virtual QStringList titleLines() const;

    void showClicked();

    Kind m_kind;
    QString m_fromLabel;
    QString m_toLabel;
    QFormLayout *m_form;
    QDateEdit *m_from;
    QDateEdit *m_to;
    QPushButton *m_show;
    Grid *m_register;
    QLineEdit *m_total;

private:
    void registerClicked();
    void printClicked();
};

} // namespace vantrel
