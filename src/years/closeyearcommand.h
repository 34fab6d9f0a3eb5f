#pragma once

namespace vantrel {

class MainWindow;
struct Services;

// "Tools" > "Close Year...": refused while another copy has the shop open, while documents are
// open or while the check finds anything; otherwise says what the close will do and asks (No by
// default), closes the year with its progress shown, and starts again on a fresh Sales screen.
void closeYearCommand(MainWindow &window, Services &services);

} // namespace vantrel
