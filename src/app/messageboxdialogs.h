#pragma once

#include "widgets/dialogs.h"

#include <QPointer>
#include <QWidget>

namespace vantrel {

inline constexpr const char *ProgramTitle = "Vantrel";

// Dialogs as QMessageBoxes without icon, titled with the program title, modal over the parent.
class MessageBoxDialogs final : public Dialogs {
public:
    void setParent(QWidget *parent) { m_parent = parent; }
    void inform(const QString &message) override;
    bool ask(const QString &question) override;
    int choose(const QString &question, const QStringList &items) override;
    QDate askDate(const QString &question, const QDate &proposed) override;
    bool previewPrintout(const QString &document, const QStringList &lines) override;

private:
    QPointer<QWidget> m_parent;
};

} // namespace vantrel
