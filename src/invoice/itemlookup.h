#pragma once

#include <QObject>

class QLineEdit;
class QWidget;

namespace vantrel {

class Grid;
class Screen;

// The product lookups that the Sales and Purchase screens share: the search by name into the
// product/stock grid (with each product's summed stock), the choice of a product there, the
// look-up by item code, and the amount computed from quantity and rate. Each screen wires its
// own events to these handlers; they throw UnhandledError like any statement.
class ItemLookup final : public QObject {
    Q_OBJECT
public:
    struct Fields {
        QLineEdit *productName;
        QLineEdit *itemCode;
        QLineEdit *cmpid;
        QLineEdit *psrno;
        QLineEdit *qty;
        QLineEdit *rate;
        QLineEdit *amount;
        QWidget *panel; // holds the grid; shown and hidden as a whole
        Grid *grid;
    };

    ItemLookup(Screen *screen, const Fields &fields);

    // Product name field clicked: the panel shows.
    void showPanel();
    // Down pressed in the product name field while the grid shows: the keyboard goes into it.
    void productNameKeyPressed(int key);
    // Key released in the product name field: products whose name begins with the text.
    void searchByName(int key);
    // A cell of the grid chosen: a name (or stock) cell of a data row, else "Wrong Selection".
    void choose();
    // Enter pressed in the item code field: the product with that code; the focus goes to "Qty".
    void itemCodeKeyPressed(int key);
    // Quantity changed: amount = Val(rate) x Val(quantity).
    void computeAmount();
    // Every product with its summed stock, as the grid shows after a line was added.
    void listAllProducts();

private:
    Screen *m_screen;
    Fields m_fields;
};

} // namespace vantrel
