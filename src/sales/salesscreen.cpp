#include "salesscreen.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

SalesScreen::SalesScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Sales"), parent)
{
    auto *close = makeCloseButton(QStringLiteral("&Close"), QStringLiteral("cmdclose"));
    close->setToolTip(QStringLiteral("Close this form"));
    auto *layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(close, 0, Qt::AlignRight);
    upperCaseTyping();
}

} // namespace vantrel
