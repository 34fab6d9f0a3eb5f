#include "screen.h"

#include "data/database.h"
#include "data/programsettings.h"
#include "data/unhandlederror.h"
#include "dialogs.h"
#include "droppanel.h"
#include "grid.h"
#include "output/printout.h"
#include "uppercasefilter.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>

namespace vantrel {

Screen::Screen(Services &services, const QString &caption, QWidget *parent) : QWidget(parent), m_services(services)
{
    setWindowTitle(caption);
    setAccessibleName(caption);
}

void Screen::waitForServer(QString message)
{
    for (;;) {
        if (!dialogs().ask(QStringLiteral("The books' server stopped answering: %1\n\nThe action was cut off there, and nothing of it was saved; "
                                          "what was saved before it stays saved. Check that the server is running and "
                                          "that this computer can reach it. Try again?")
                               .arg(message))) {
            m_services.unhandledError(message);
            return;
        }
        message = db().reconnect();
        if (message.isEmpty())
            return;
    }
}

void Screen::guard(const std::function<void()> &action)
{
    try {
        action();
    } catch (const ServerLost &lost) {
        waitForServer(lost.message());
    } catch (const UnhandledError &error) {
        m_services.unhandledError(error.message());
    } catch (const std::exception &error) {
        m_services.unhandledError(QString::fromLocal8Bit(error.what()));
    }
}

void Screen::act(const std::function<void()> &statements)
{
    db().beginAction();
    m_boxes.hold();
    try {
        statements();
    } catch (...) {
        bool kept = true;
        try {
            db().endAction();
        } catch (const UnhandledError &) { // the first failure is the one told
            kept = false;
        }
        m_boxes.release(kept);
        throw;
    }
    try {
        db().endAction();
    } catch (...) {
        m_boxes.release(false);
        throw;
    }
    m_boxes.release(true);
}

void Screen::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Outside a dialog a button takes Enter only when it is an "auto default" one.
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(true);
}

QString Screen::menuKeys()
{
    return QStringLiteral("F10 menu \u00b7 Ctrl+Tab next screen \u00b7 F12 list to Excel (Shift+F12 to CSV)");
}

void Screen::setKeysHint(const QString &ownKeys)
{
    m_keysHint = ownKeys + QStringLiteral(" \u00b7 ") + menuKeys();
}

void Screen::printLines(const QString &document, const Printout &printout)
{
    const ProgramSettings settings = ProgramSettings::read();
    QString said = QStringLiteral("Printed %1: %2 lines").arg(document).arg(printout.lineCount());
    if (settings.previewPrintouts && !dialogs().previewPrintout(document, printout.lines())) {
        said = QStringLiteral("Not printed: %1 (dropped at the preview)").arg(document);
    } else if (const QString refused = deliverPrintout(m_services.programDirectory, settings.printQueue, document, printout); !refused.isEmpty()) {
        dialogs().inform(QStringLiteral("%1 was not printed: the printer %2 refused it.\nThe printing system says: %3").arg(document, settings.printQueue, refused));
        said = QStringLiteral("Not printed: %1 (the printer %2: %3)").arg(document, settings.printQueue, refused);
    }
    if (m_services.showPrinted)
        m_services.showPrinted(said);
}

void Screen::alignNumbers(std::initializer_list<QLineEdit *> fields)
{
    for (QLineEdit *field : fields)
        field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void Screen::closeScreen()
{
    if (auto *window = qobject_cast<QMdiSubWindow *>(parentWidget()))
        window->close();
    else
        close();
}

QLineEdit *Screen::makeField(const QString &accessibleName, const QString &objectName)
{
    auto *field = new QLineEdit(this);
    field->setAccessibleName(accessibleName);
    field->setObjectName(objectName);
    return field;
}

void Screen::searchParties(QLineEdit *field, Grid *list)
{
    list->bind(db(), "select suppname from suppliermaster where suppname like '" + field->text() + "%'");
    showBelow(list, field);
}

QLineEdit *Screen::addField(QFormLayout *form, const QString &label, const QString &objectName)
{
    QLineEdit *field = makeField(label, objectName);
    // A form's fields stop growing at about forty characters, however wide the window.
    field->setMaximumWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('M')) * 40);
    auto *caption = new QLabel(label, this);
    caption->setBuddy(field);
    form->addRow(caption, field);
    return field;
}

QComboBox *Screen::addChoice(QFormLayout *form, const QString &label)
{
    auto *box = new QComboBox(this);
    box->setAccessibleName(QString(label).remove(QLatin1Char('&')));
    auto *caption = new QLabel(label, this);
    caption->setBuddy(box);
    form->addRow(caption, box);
    return box;
}

Grid *Screen::makeGrid(const QString &accessibleName, QWidget *parent)
{
    auto *grid = new Grid(accessibleName, parent ? parent : this);
    connect(grid, &Grid::readFailed, this, [this](const QString &message) {
        if (db().serverLost())
            waitForServer(message);
        else
            m_services.unhandledError(message);
    });
    return grid;
}

QPushButton *Screen::makeCloseButton(const QString &caption, const QString &objectName)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(objectName);
    connect(button, &QPushButton::clicked, this, &Screen::closeScreen);
    return button;
}

void Screen::upperCaseTyping()
{
    new UpperCaseFilter(this);
}

} // namespace vantrel
