#pragma once

#include "app/mainwindow.h"
#include "support/testshop.h"
#include "support/ui.h"

#include <QApplication>

namespace vantrel::test {

using Rows = QList<QStringList>;

// The operator's desk: a fresh shop and the main window, shown and active, with no screen open.
struct Desk {
    TestShop shop;
    MainWindow window{shop.services()};

    explicit Desk(TestShop::Start start = TestShop::Empty) : shop(start)
    {
        window.show();
        QApplication::setActiveWindow(&window);
    }
    // Opens a screen from the menu as the operator does, by its entry's name.
    template <typename S>
    S *open(const char *entry)
    {
        window.findChild<QAction *>(entry)->trigger();
        return static_cast<S *>(window.screen(entry));
    }
};

} // namespace vantrel::test
