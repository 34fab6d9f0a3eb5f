#pragma once

#include "dialogs.h"

namespace vantrel {

// The message boxes of a screen: the program's own, except that while an action on the books
// runs (Screen::act) its information boxes are held, and shown in their order once the action
// has ended, so that no other counter waits on an operator reading one. Questions are asked
// before an action, never during one.
class HeldBoxes final : public Dialogs {
public:
    explicit HeldBoxes(Dialogs &program) : m_program(program) {}

    void hold() { m_holding = true; }
    // Ends the holding: the held boxes are shown when what they tell was KEPT, else dropped.
    void release(bool kept);

    void inform(const QString &message) override;
    bool ask(const QString &question) override { return m_program.ask(question); }
    int choose(const QString &question, const QStringList &items) override { return m_program.choose(question, items); }
    QDate askDate(const QString &question, const QDate &proposed) override { return m_program.askDate(question, proposed); }
    bool previewPrintout(const QString &document, const QStringList &lines) override { return m_program.previewPrintout(document, lines); }

private:
    Dialogs &m_program;
    bool m_holding = false;
    QStringList m_held;
};

} // namespace vantrel
