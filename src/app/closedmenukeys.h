#pragma once

#include <QObject>

namespace vantrel {

// Keys typed ahead of a menu. While a menu is open it holds the keyboard, so X addresses every
// key typed meanwhile to the menu, also those the program reads after the menu's Enter has
// closed it and opened a screen. Such a key goes where the keyboard is now, as it would have had
// it come after the screen caught up. Watches the whole application while it lives.
class ClosedMenuKeys final : public QObject {
public:
    explicit ClosedMenuKeys(QObject *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace vantrel
