"""Every screen fits the main window at the screen size this run was given, Sales at start-up
included: each button, field and grid of a screen lies within the area the main window gives the
screens, with nothing behind a scroll bar, and the screens that show lists use the room there is.
Labels sit beside their fields, no layout moves when a list opens, a grid with the keyboard looks
different from one without.

Run once per size (tests/system/desktop PROGRAM_DIR test_layout.py 1024x768)."""

import pyatspi

from desk import ENTRIES, SHOP, Program, check, extents, inside, run, wait_for, walk


# The screens whose work is a list of documents, lines or rows: they grow with the window.
LIST_SCREENS = {"Sales", "Purchase", "Product Master", "Sales-Day Book", "Sales Datewise Report",
                "Partywise Sales Report", "Purchase Day Book", "Purchase Datewise Report",
                "Partywise Purchase Report", "Stock", "Ledger", "Receipt"}
CONTROLS = ("push button", "text", "table")


def display_size():
    return "%dx%d" % extents(pyatspi.Registry.getDesktop(0))[2:]


def showing(acc):
    return acc.getState().contains(pyatspi.STATE_SHOWING)


def misfits(p, caption):
    """What does not fit on the screen CAPTION as it opened: the screen must lie wholly inside the
    screens' area with no scroll bar around it, and so must every control it shows."""
    screen = wait_for("the screen " + caption, lambda: p.screen(caption))
    pane = p.screen_area()
    area = extents(pane)
    found = []
    if any(acc.getRoleName() == "scroll bar" and showing(acc) for acc in walk(pane)):
        found.append("scroll bars around the screens")
    frame = extents(screen)
    if not inside(frame, area):
        found.append("the screen %s lies outside the area %s" % (frame, area))
    for acc in walk(screen):
        if acc.getRoleName() in CONTROLS and showing(acc) and not inside(extents(acc), frame):
            found.append("%s %r at %s is cut off" % (acc.getRoleName(), acc.name, extents(acc)))
    if caption in LIST_SCREENS and frame[2] * frame[3] < 0.9 * area[2] * area[3]:
        found.append("uses %dx%d of the %dx%d there is" % (frame[2], frame[3], area[2], area[3]))
    found += labels_apart(screen)
    return ["%s: %s" % (caption, what) for what in found]


def labels_apart(screen):
    """Each field whose label bears its name must have that label just left of it, on its line.
    A label may be wider than its text: its text ends about ten pixels a character from its left."""
    shown = [acc for acc in walk(screen) if showing(acc)]
    labels = {acc.name: extents(acc) for acc in shown if acc.getRoleName() == "label"}
    found = []
    for field in (acc for acc in shown if acc.getRoleName() == "text" and acc.name in labels):
        lx, ly, lw, lh = labels[field.name]
        fx, fy, fw, fh = extents(field)
        gap = fx - (lx + min(lw, 10 * len(field.name)))
        if not (0 <= gap <= 200 and abs((ly + lh / 2) - (fy + fh / 2)) <= 8):
            found.append("the label %r at %s is not beside its field at %s" % (field.name, labels[field.name], (fx, fy, fw, fh)))
    return found


def every_screen_fits_when_it_opens(program_dir):
    size = display_size()
    p = Program(program_dir, SHOP)
    found = misfits(p, "Sales")
    p.screenshot("%s-start" % size)
    for menu, entry, caption in ENTRIES:
        if caption in ("Sales", None):
            continue
        p.choose_from_menu(entry, menu)
        wait_for("the keyboard in " + caption, lambda: p.focused_screen() == caption)
        found += misfits(p, caption)
        p.screenshot("%s-%s" % (size, caption.replace(" ", "-")))
    check(not found, "at %s:\n  " % size + "\n  ".join(found))


def no_field_moves_when_a_list_opens(program_dir):
    p = Program(program_dir, SHOP)
    for entry, keys, listed in (("Product master", ["alt+a"], "company list"), ("Sales", ["d", "r"], "party list")):
        caption = p.choose_from_menu(entry)
        wait_for("the keyboard in " + caption, lambda: p.focused_screen() == caption)
        screen = p.screen(caption)
        fields = lambda: {acc.name: extents(acc) for acc in walk(screen) if acc.getRoleName() == "text" and showing(acc)}
        before = fields()
        p.keys(*keys)
        wait_for("the " + listed, lambda: p.showing(listed, scope=screen))
        p.screenshot("%s-%s" % (display_size(), listed.replace(" ", "-")))
        p.app.clear_cache()
        after = fields()
        moved = [name for name in before if after.get(name) != before[name]]
        check(not moved, "fields moved when the %s opened: %s" % (listed, moved))


def a_grid_with_the_keyboard_looks_it(program_dir):
    p = Program(program_dir, SHOP)
    sales = p.sales
    p.run("type dr")
    wait_for("the party list", lambda: p.showing("party list", scope=sales))
    x, y, w, h = extents(p.widget("party list", "table", sales))
    without = p.pixel(x, y + h // 2)
    p.keys("Down")
    wait_for("the keyboard in the party list", lambda: p.focused_name() == "party list")
    with_keyboard = wait_for("the frame to change", lambda: p.pixel(x, y + h // 2) != without and p.pixel(x, y + h // 2), timeout=3)
    check(with_keyboard != without, "the party list's frame looks the same with the keyboard and without")
    p.screenshot("%s-party-list-with-the-keyboard" % display_size())
    p.keys("Return")
    wait_for("the party taken", lambda: p.text("Party:", sales) == "RAM")


if __name__ == "__main__":
    run([
        every_screen_fits_when_it_opens,
        no_field_moves_when_a_list_opens,
        a_grid_with_the_keyboard_looks_it,
    ])
