#pragma once

#include "widgets/screen.h"

namespace vantrel {

class Grid;
class Recordset;

// "Stock": for one product, how much was bought, sold and is left, in total and for one item
// code at its rate. The totals go by product number and company code, the breakdown by item
// code and product name: the two keys of the same stock rows.
class StockScreen final : public Screen {
    Q_OBJECT
public:
    explicit StockScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void productNameKeyReleased();
    void productClicked();
    void productGridKeyPressed(int key);
    void itemCodeClicked();
    void itemCodeFieldClicked();

    // A pick in GRID must be on a data row and in one of its first two columns; otherwise the
    // operator is told so and false is returned.
    bool acceptPick(Grid *grid);
    void showFigures(const Recordset &figures);

    QLineEdit *m_productName;
    QLineEdit *m_productId;
    QLineEdit *m_companyName;
    QLineEdit *m_itemCode;
    QLineEdit *m_companyCode;
    QLineEdit *m_rate;
    QLineEdit *m_total;
    QLineEdit *m_used;
    QLineEdit *m_available;
    Grid *m_products;
    Grid *m_itemCodes;
};

} // namespace vantrel
