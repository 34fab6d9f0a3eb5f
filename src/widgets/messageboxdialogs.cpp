#include "messageboxdialogs.h"

#include <QMessageBox>

namespace vantrel {

void MessageBoxDialogs::inform(const QString &message)
{
    QMessageBox box(QMessageBox::NoIcon, QString::fromLatin1(ProgramTitle), message, QMessageBox::Ok, m_parent);
    box.exec();
}

bool MessageBoxDialogs::ask(const QString &question)
{
    // Every question of the program deletes, cancels or settles: a bare Enter must not do it.
    QMessageBox box(QMessageBox::NoIcon, QString::fromLatin1(ProgramTitle), question,
                    QMessageBox::Yes | QMessageBox::No, m_parent);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

} // namespace vantrel
