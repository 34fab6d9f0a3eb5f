#pragma once

#include "widgets/screen.h"

namespace vantrel {

// "Company Master": adds manufacturers under a code of the operator's choosing that must be
// unused. Companies are never changed or removed; "Edit" and "Delete" do nothing.
class CompanyMasterScreen final : public Screen {
    Q_OBJECT
public:
    explicit CompanyMasterScreen(Services &services, QWidget *parent = nullptr);

private:
    void saveClicked();

    QLineEdit *m_code;
    QLineEdit *m_name;
    QLineEdit *m_shortName;
    QLineEdit *m_address;
    QLineEdit *m_pin;
};

} // namespace vantrel
