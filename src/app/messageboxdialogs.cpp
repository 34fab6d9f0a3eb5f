#include "messageboxdialogs.h"

#include "printing/printpreview.h"

#include "widgets/datepicker.h"

#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QVBoxLayout>
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

int MessageBoxDialogs::choose(const QString &question, const QStringList &items)
{
    bool ok = false;
    const QString item = QInputDialog::getItem(m_parent, QString::fromLatin1(ProgramTitle), question, items, 0, false, &ok);
    return ok ? int(items.indexOf(item)) : -1;
}

QDate MessageBoxDialogs::askDate(const QString &question, const QDate &proposed)
{
    QDialog box(m_parent);
    box.setWindowTitle(QString::fromLatin1(ProgramTitle));
    auto *layout = new QVBoxLayout(&box);
    auto *label = new QLabel(question, &box);
    QDateEdit *day = makeDatePicker(&box, question, proposed);
    label->setBuddy(day);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &box);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &box, &QDialog::reject);
    layout->addWidget(label);
    layout->addWidget(day);
    layout->addWidget(buttons);
    day->setFocus();
    return box.exec() == QDialog::Accepted ? day->date() : QDate();
}

bool MessageBoxDialogs::previewPrintout(const QString &document, const QStringList &lines)
{
    return previewBeforePrinting(m_parent, document, lines);
}

} // namespace vantrel
