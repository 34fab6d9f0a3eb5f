#pragma once

#include <QStringList>

class QWidget;

namespace vantrel {

// Shows a printout before it goes, over PARENT: Enter prints it (true), Escape drops it (false).
bool previewBeforePrinting(QWidget *parent, const QString &document, const QStringList &lines);

} // namespace vantrel
