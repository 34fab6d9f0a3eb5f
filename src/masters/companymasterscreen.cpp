#include "companymasterscreen.h"

#include "data/database.h"
#include "widgets/dialogs.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

CompanyMasterScreen::CompanyMasterScreen(Services &services, QWidget *parent)
    : Screen(services, QStringLiteral("Company Master"), parent)
{
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    m_code = addField(form, QStringLiteral("Company Code"));
    m_name = addField(form, QStringLiteral("Company Name"));
    m_shortName = addField(form, QStringLiteral("Short Name"));
    m_address = addField(form, QStringLiteral("Address"));
    m_pin = addField(form, QStringLiteral("Pin"));

    auto *save = new QPushButton(QStringLiteral("Save"), this);
    auto *edit = new QPushButton(QStringLiteral("Edit"), this);
    auto *remove = new QPushButton(QStringLiteral("Delete"), this);
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {save, edit, remove, makeCloseButton(QStringLiteral("Close"))})
        buttons->addWidget(button);
    layout->addLayout(buttons);
    layout->addStretch();

    on(save, &QPushButton::clicked, &CompanyMasterScreen::saveClicked);
    upperCaseTyping();
    keepNaturalSize();
    setKeysHint(QStringLiteral("Tab to a button, Enter presses it"));
}

// The code must be unused; the name may repeat. The check and the save are one action.
void CompanyMasterScreen::saveClicked()
{
    bool used = false;
    act([&] {
        used = !db().query("select * from companymaster where cmpid='" + m_code->text() + "'").eof();
        if (used) {
            dialogs().inform(QStringLiteral("company id already used try another id"));
            return;
        }
        db().execute("insert into companymaster(companyname,cmpid,shortname,address,pin) values('" + m_name->text() + "','" + m_code->text()
                     + "','" + m_shortName->text() + "','" + m_address->text() + "','" + m_pin->text() + "')");
        dialogs().inform(QStringLiteral("Company Added Successfully"));
    });
    if (used)
        return;
    for (QLineEdit *field : {m_code, m_name, m_shortName, m_address, m_pin})
        field->clear();
    m_code->setFocus();
}

} // namespace vantrel
