#pragma once

#include "applicationfilter.h"

#include <QWidget>

namespace vantrel {

// Turns every character typed anywhere inside a screen to upper case before the field sees it.
// Letters change; digits, signs and keys without text pass as they are. It watches the whole
// application (so it also covers fields made later, and runs before any field's own watchers)
// and acts on key events for the scope widget and everything inside it. Owned by the scope.
class UpperCaseFilter final : public ApplicationFilter {
    Q_OBJECT
public:
    explicit UpperCaseFilter(QWidget *scope) : ApplicationFilter(scope), m_scope(scope) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_scope;
};

} // namespace vantrel
