#pragma once

namespace vantrel {

class Workspace;
struct Services;

// "Tools" > "Past Year...": the closed years to choose from; the chosen one opens, read only, in
// a window of its own with the system's report screens and the year in its title.
void pastYearCommand(Workspace &workspace, Services &services);

} // namespace vantrel
