#pragma once

#include "yearclose.h"

namespace vantrel {

// The financial year's start as the shop set it in the program's settings (Qt's own, never the
// shop's file): "years/financialYearStart" as "MM-dd", 1 April when unset or unreadable.
FinancialYear financialYearSetting();

} // namespace vantrel
