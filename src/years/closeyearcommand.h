#pragma once

namespace vantrel {

class Workspace;
struct Services;

// "Tools" > "Close Year...": refused while another copy may have the shop open; asks for the last
// day of the year to close (proposing the end of the last complete financial year), is refused
// for a day that is no year's end, a year closed already, unreadable dates, open documents up to
// it or the check's findings; otherwise says what the close will do and asks (No by default),
// closes the year with its progress shown, and starts again on a fresh Sales screen.
void closeYearCommand(Workspace &workspace, Services &services);

} // namespace vantrel
