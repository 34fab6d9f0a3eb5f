#include "printpreview.h"

#include "printoutpages.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

bool previewBeforePrinting(QWidget *parent, const QString &document, const QStringList &lines)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Print %1?").arg(document));
    auto *layout = new QVBoxLayout(&dialog);
    auto *pages = new PrintoutPages(&dialog);
    pages->setLines(lines);
    layout->addWidget(pages, 1);
    auto *buttons = new QDialogButtonBox(&dialog);
    QPushButton *print = buttons->addButton(QStringLiteral("&Print"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("&Drop"), QDialogButtonBox::RejectRole);
    print->setDefault(true);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    dialog.resize(900, 700);
    pages->setFocus();
    return dialog.exec() == QDialog::Accepted;
}

} // namespace vantrel
