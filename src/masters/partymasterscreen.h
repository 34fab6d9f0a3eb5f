#pragma once

#include "widgets/proposednumber.h"
#include "widgets/screen.h"

class QComboBox;

namespace vantrel {

class Grid;

// "Suppliermaster" (menu "Party master"): the parties, customers and suppliers alike, numbered
// by the system, saved, updated, deleted and found by a name search.
class PartyMasterScreen final : public Screen {
    Q_OBJECT
public:
    explicit PartyMasterScreen(Services &services, QWidget *parent = nullptr);

    void activated() override;

private:
    void nameKeyReleased();
    void partyChosen();
    void saveClicked();
    void updateClicked();
    void deleteClicked();
    void cancelClicked();
    void proposeNextNumber();

    QLineEdit *m_id;
    ProposedNumber m_proposedId;
    QLineEdit *m_name;
    QLineEdit *m_shortName;
    QLineEdit *m_address;
    QLineEdit *m_city;
    QLineEdit *m_phone;
    QLineEdit *m_mobile;
    QLineEdit *m_pin;
    QLineEdit *m_category;
    QComboBox *m_accountType;
    Grid *m_parties;
};

} // namespace vantrel
