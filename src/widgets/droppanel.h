#pragma once

class QWidget;

namespace vantrel {

// Shows a search list or panel directly under the field it serves, over the screen's other
// widgets. Both must be children (at any depth) of the same screen; the panel is a direct child.
void showBelow(QWidget *panel, QWidget *field);

// Gives the focus to a widget once the focus change now in progress (a Tab, a click) is over;
// set at once from a focus-out handler, it would be taken away again by that change.
void focusAfterwards(QWidget *widget);

} // namespace vantrel
