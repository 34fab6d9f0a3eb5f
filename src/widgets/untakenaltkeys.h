#pragma once

#include "applicationfilter.h"

namespace vantrel {

// Alt with a letter, digit or sign that no shortcut took (its button greyed, or none has it)
// types nothing in the program's fields and lists. Qt's fields would otherwise take it as the
// bare character, and a field that acts on every key (the mode field) would act on it. Both its
// press and its release are held back. Watches the whole application while it lives.
class UntakenAltKeys final : public ApplicationFilter {
    Q_OBJECT
public:
    explicit UntakenAltKeys(QObject *parent) : ApplicationFilter(parent) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace vantrel
