#pragma once

class QWidget;

namespace vantrel {

class FieldEvents;

// Shows a search list or panel directly under the field it serves, over the screen's other
// widgets. Both must be children (at any depth) of the same screen; the panel is a direct child.
void showBelow(QWidget *panel, QWidget *field);

// Lays a hidden search list or panel out once while the program is idle, shown off the screen
// and hidden again: its first showing costs its layout and its grid's first sizes (some 5 ms),
// which the first keystroke in its field would otherwise wait for.
void prepareWhileIdle(QWidget *panel);

// Hides a search list or panel after a choice. When the focus was inside it, it goes on to
// NEXTFIELD; left to itself it would fall back to the screen's first field, and the release of
// the Enter that chose would land there.
void hideAfterChoice(QWidget *panel, QWidget *nextField);

// Down pressed in a search field takes the keyboard into its list, while the list shows.
void enterListOnDown(int key, QWidget *list);
// The same, for every key pressed in the field that EVENTS watches.
void downEntersList(FieldEvents *events, QWidget *list);

// Gives the focus to a widget once the focus change now in progress (a Tab, a click) is over;
// set at once from a focus-out handler, it would be taken away again by that change.
void focusAfterwards(QWidget *widget);

} // namespace vantrel
