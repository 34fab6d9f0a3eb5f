#include "lastprintoutscreen.h"

#include "data/programsettings.h"
#include "output/listfile.h"
#include "output/printout.h"
#include "printoutpages.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>

namespace vantrel {

LastPrintoutScreen::LastPrintoutScreen(Services &services, QWidget *parent) : Screen(services, QStringLiteral("Last Printout"), parent)
{
    auto *layout = new QVBoxLayout(this);
    m_pages = new PrintoutPages(this);
    layout->addWidget(m_pages, 1);
    m_saved = new QLabel(this);
    m_saved->setObjectName(QStringLiteral("saved"));
    layout->addWidget(m_saved);
    auto *buttons = new QHBoxLayout;
    auto *again = new QPushButton(QStringLiteral("Print &Again"), this);
    auto *pdf = new QPushButton(QStringLiteral("Save as P&DF"), this);
    auto *text = new QPushButton(QStringLiteral("Save as &Text"), this);
    buttons->addWidget(again);
    buttons->addWidget(pdf);
    buttons->addWidget(text);
    buttons->addStretch();
    buttons->addWidget(makeCloseButton(QStringLiteral("&Close")));
    layout->addLayout(buttons);
    on(again, &QPushButton::clicked, &LastPrintoutScreen::printAgainClicked);
    on(pdf, &QPushButton::clicked, &LastPrintoutScreen::savePdfClicked);
    on(text, &QPushButton::clicked, &LastPrintoutScreen::saveTextClicked);
    setKeysHint(QStringLiteral("Page Up, Page Down turn the pages \u00b7 Alt+A prints again \u00b7 Alt+D PDF \u00b7 Alt+T text"));
}

// The printout as it stands when the screen comes to the front: a later printout shows.
void LastPrintoutScreen::activated()
{
    m_lines = lastPrintout(services().programDirectory);
    m_pages->setLines(m_lines);
}

void LastPrintoutScreen::printAgainClicked()
{
    if (!m_lines.isEmpty())
        printLines(QStringLiteral("the last printout again"), m_lines);
}

void LastPrintoutScreen::savePdfClicked()
{
    const QString folder = ProgramSettings::read().exportFolderIn(services().programDirectory);
    const QString path = freeExportPath(folder, QStringLiteral("Last printout"), QStringLiteral(".pdf"));
    tellSaved(path, QDir().mkpath(folder) ? writePrintoutPdf(path, QStringLiteral("Last printout"), m_lines) : QStringLiteral("no folder"));
}

void LastPrintoutScreen::saveTextClicked()
{
    const QString folder = ProgramSettings::read().exportFolderIn(services().programDirectory);
    const QString path = freeExportPath(folder, QStringLiteral("Last printout"), QStringLiteral(".txt"));
    QSaveFile file(path);
    const bool saved = QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && file.write(Printout(m_lines).bytes()) >= 0 && file.commit();
    tellSaved(path, saved ? QString() : file.errorString());
}

void LastPrintoutScreen::tellSaved(const QString &path, const QString &failure)
{
    m_saved->setText(failure.isEmpty() ? QStringLiteral("Saved as %1").arg(QDir::toNativeSeparators(path))
                                       : QStringLiteral("Not saved: %1").arg(failure));
}

} // namespace vantrel
