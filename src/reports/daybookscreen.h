#pragma once

#include "widgets/screen.h"

namespace vantrel {

class Grid;

// A day book: today's headers of sales or purchases and their total, read again each time the
// screen comes to the front. A header is listed only when its stored date text equals today's.
class DayBookScreen final : public Screen {
    Q_OBJECT
public:
    struct Kind {
        QString caption;
        QString listing; // the query up to the quote that opens today's date
        QString total;   // likewise, summing netamt as charge
    };
    static const Kind Sales;
    static const Kind Purchase;

    DayBookScreen(Services &services, const Kind &kind, QWidget *parent = nullptr);

    void activated() override;

private:
    Kind m_kind;
    Grid *m_grid;
    QLineEdit *m_total;
};

} // namespace vantrel
