#include "settingsscreen.h"

#include "export/exportcommand.h"
#include "printing/printout.h"
#include "printing/printqueue.h"
#include "widgets/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

namespace vantrel {

namespace {

const char *const PrinterFile = "the printer file LPT1";
const char *const YearStartKey = "years/financialYearStart";

} // namespace

SettingsScreen::SettingsScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Settings"), parent)
{
    keepNaturalSize();
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    QSettings settings;
    m_yearStart = addField(form, QStringLiteral("Year starts (MM-DD)"));
    m_yearStart->setText(settings.value(QLatin1String(YearStartKey), QStringLiteral("04-01")).toString());

    const PrintSettings printing = PrintSettings::read();
    m_printer = addChoice(form, QStringLiteral("&Printer"));
    m_printer->addItem(QLatin1String(PrinterFile));
    m_printer->addItems(printQueues());
    if (!printing.queue.isEmpty() && m_printer->findText(printing.queue) < 0)
        m_printer->addItem(printing.queue); // a queue the print system does not offer now
    m_printer->setCurrentIndex(printing.queue.isEmpty() ? 0 : m_printer->findText(printing.queue));
    m_preview = new QCheckBox(QStringLiteral("Show each printout &before it prints"), this);
    m_preview->setChecked(printing.preview);
    form->addRow(QString(), m_preview);
    m_exportFolder = addField(form, QStringLiteral("Export folder"));
    m_exportFolder->setText(exportFolder(services));
    m_shopName = addField(form, QStringLiteral("Shop name on printouts"));
    m_shopName->setText(settings.value(QStringLiteral("shop/name")).toString());
    m_shopAddress = addField(form, QStringLiteral("Shop address on printouts"));
    m_shopAddress->setText(settings.value(QStringLiteral("shop/address")).toString());

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
    const QString start = m_yearStart->text().trimmed();
    if (!QDate::fromString(QStringLiteral("2000-") + start, QStringLiteral("yyyy-MM-dd")).isValid()) {
        dialogs().inform(QStringLiteral("The year's start is a month and a day, as 04-01 for the 1st of April."));
        m_yearStart->setFocus();
        return;
    }
    QSettings settings;
    settings.setValue(QLatin1String(YearStartKey), start);
    if (m_exportFolder->text().trimmed().isEmpty()) { // the default folder, shown again
        settings.remove(QStringLiteral("export/folder"));
        m_exportFolder->setText(exportFolder(services()));
    } else {
        settings.setValue(QStringLiteral("export/folder"), m_exportFolder->text().trimmed());
    }
    writeShopHeading(settings, m_shopName->text(), m_shopAddress->text());
    PrintSettings{m_printer->currentIndex() == 0 ? QString() : m_printer->currentText(), m_preview->isChecked()}.write(settings);
    settings.sync();
    dialogs().inform(settings.status() == QSettings::NoError ? QStringLiteral("The settings are saved.")
                                                             : QStringLiteral("The settings could not be saved."));
}

} // namespace vantrel
