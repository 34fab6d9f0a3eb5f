#include "settingsscreen.h"

#include "data/programsettings.h"
#include "data/serverconnection.h"
#include "output/printqueue.h"
#include "widgets/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSysInfo>
#include <QVBoxLayout>

namespace vantrel {

namespace {

const char *const PrinterFile = "the printer file LPT1";

} // namespace

SettingsScreen::SettingsScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Settings"), parent)
{
    keepNaturalSize();
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    const ProgramSettings settings = ProgramSettings::read();
    m_yearStart = addField(form, QStringLiteral("Year starts (MM-DD)"));
    m_yearStart->setText(settings.yearStart);
    m_printer = addChoice(form, QStringLiteral("&Printer"));
    m_printer->addItem(QLatin1String(PrinterFile));
    m_printer->addItems(printQueues());
    if (!settings.printQueue.isEmpty() && m_printer->findText(settings.printQueue) < 0)
        m_printer->addItem(settings.printQueue); // a queue the print system does not offer now
    m_printer->setCurrentIndex(settings.printQueue.isEmpty() ? 0 : m_printer->findText(settings.printQueue));
    m_preview = new QCheckBox(QStringLiteral("Show each printout &before it prints"), this);
    m_preview->setChecked(settings.previewPrintouts);
    form->addRow(QString(), m_preview);
    m_exportFolder = addField(form, QStringLiteral("Export folder"));
    m_exportFolder->setText(settings.exportFolderIn(services.programDirectory));
    m_shopName = addField(form, QStringLiteral("Shop name on printouts"));
    m_shopName->setText(settings.shopName);
    m_shopAddress = addField(form, QStringLiteral("Shop address on printouts"));
    m_shopAddress->setText(settings.shopAddress);
    m_booksServer = addField(form, QStringLiteral("Books on a server (blank: the file)"));
    m_booksServer->setText(settings.booksServer);
    m_counterName = addField(form, QStringLiteral("This counter's name (blank: the computer's)"));
    m_counterName->setText(settings.counterName);
    m_counterName->setPlaceholderText(QSysInfo::machineHostName());

    auto *buttons = new QHBoxLayout;
    auto *save = new QPushButton(QStringLiteral("&Save"), this);
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(buttons);
    on(save, &QPushButton::clicked, &SettingsScreen::saveClicked);
    setKeysHint(QStringLiteral("Alt+S saves"));
}

void SettingsScreen::saveClicked()
{
    ProgramSettings settings;
    settings.yearStart = m_yearStart->text().trimmed();
    if (!QDate::fromString(QStringLiteral("2000-") + settings.yearStart, QStringLiteral("yyyy-MM-dd")).isValid()) {
        dialogs().inform(QStringLiteral("The year's start is a month and a day, as 04-01 for the 1st of April."));
        m_yearStart->setFocus();
        return;
    }
    settings.printQueue = m_printer->currentIndex() == 0 ? QString() : m_printer->currentText();
    settings.previewPrintouts = m_preview->isChecked();
    settings.exportFolder = m_exportFolder->text();
    settings.shopName = m_shopName->text();
    settings.shopAddress = m_shopAddress->text();
    settings.booksServer = m_booksServer->text().trimmed();
    settings.counterName = m_counterName->text().trimmed();
    if (!settings.booksServer.isEmpty() && !isServerConnection(settings.booksServer)) {
        dialogs().inform(QStringLiteral("The books' server is named as postgresql://role@host/database or service=NAME, or left "
                                        "blank for the file."));
        m_booksServer->setFocus();
        return;
    }
    const ProgramSettings before = ProgramSettings::read();
    const bool moved = settings.booksServer != before.booksServer, renamed = settings.counterName != before.counterName;
    const bool saved = settings.write();
    m_exportFolder->setText(settings.exportFolderIn(services().programDirectory)); // a cleared one shows the default
    if (!saved)
        dialogs().inform(QStringLiteral("The settings could not be saved."));
    else
        dialogs().inform(moved     ? QStringLiteral("The settings are saved. The books are opened from the new place at the next start.")
                         : renamed ? QStringLiteral("The settings are saved. The edit log names this counter so from the next start.")
                                   : QStringLiteral("The settings are saved."));
}

} // namespace vantrel
