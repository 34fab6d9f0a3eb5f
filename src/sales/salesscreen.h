#pragma once

#include "widgets/screen.h"

namespace vantrel {

// The "Sales" screen, where invoices are written. It opens at start-up.
class SalesScreen final : public Screen {
    Q_OBJECT
public:
    explicit SalesScreen(Services &services, QWidget *parent = nullptr);
};

} // namespace vantrel
