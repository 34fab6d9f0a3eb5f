#pragma once

#include "widgets/proposednumber.h"
#include "widgets/screen.h"

class QFrame;

namespace vantrel {

class Grid;

// "Product Master": adds a product under a company picked from the company search, numbered
// within that company, refusing a name or item code already in use; and rewrites a product
// picked from the name search typed into the "Company Code" field.
class ProductMasterScreen final : public Screen {
    Q_OBJECT
public:
    explicit ProductMasterScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void addClicked();
    void companySearchKeyReleased();
    void companyChosen();
    void companyCodeKeyReleased(int key);
    void companyCodeClicked();
    void productChosen();
    void saveClicked();
    bool saveProduct();
    void updateClicked();
    void cancelClicked();
    void clearFields();

    QLineEdit *m_companyCode;
    QLineEdit *m_serial;
    ProposedNumber m_proposedSerial;
    QLineEdit *m_mfgName;
    QLineEdit *m_productName;
    QLineEdit *m_productShortName;
    QLineEdit *m_companyShortName;
    QLineEdit *m_itemCode;
    QLineEdit *m_mrp;
    QLineEdit *m_wholesaleRate;
    QLineEdit *m_salesRate;
    QLineEdit *m_boxno;
    QFrame *m_companyPanel;
    QLineEdit *m_search;
    Grid *m_companies;
    Grid *m_products;
    QPushButton *m_add;
    QPushButton *m_save;
    QPushButton *m_update;
    QPushButton *m_delete;
    QPushButton *m_cancel;
};

} // namespace vantrel
