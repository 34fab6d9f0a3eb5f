#pragma once

#include "registerscreen.h"

namespace vantrel {

// A party-wise register: the date-wise register of one party, with a party search and the
// party's name printed under the title. Each activation sets the span back to today.
class PartyRegisterScreen final : public RegisterScreen {
    Q_OBJECT
public:
    struct PartyKind {
        Kind register_;
        QString partyCondition; // what follows the To bound's text, up to the party's name
        // The sales screen's slip: Escape in "Party:" hides the register grid, which a later
        // show fills but does not bring back.
        bool escapeHidesRegister;
    };
    static const PartyKind Sales;
    static const PartyKind Purchase;

    PartyRegisterScreen(Services &services, const PartyKind &kind, QWidget *parent = nullptr);

    void activated() override;

private:
    QString afterTo() const override;
    QStringList titleLines() const override;

    void partyKeyReleased(int key);
    void partyChosen();

    PartyKind m_partyKind;
    QLineEdit *m_party;
    Grid *m_parties;
};

} // namespace vantrel
