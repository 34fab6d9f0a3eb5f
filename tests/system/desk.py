"""The operator's desk for system tests: the real program on a real X server with a window
manager, driven by real key presses and releases (xdotool, through XTest), read through the
accessibility bus (what a screen reader sees) and through its database file.

Every wait polls for a condition with a time limit: nothing here times the program."""

import itertools
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import traceback

import pyatspi

WAIT = 10.0  # seconds a condition may take before the check fails

# The shop every test starts from, the C++ tests' own.
SHOP = open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support", "shop.sql")).read()
_running = []  # the programs a case started; closed when it ends


# The menu bar as the keyboard walks it (F10 opens "File", Right moves to the next menu, Down to the
# next entry): each menu's entries as "Entry>Caption of the screen it opens" ("Entry" alone where
# the caption is the entry's; "Entry>" for a command with no screen of its own).
MENUS = {"File": "Receipt|Ledger", "Transaction": "Sales|Purchase|Product master>Product Master|Party master>Suppliermaster|Company Master",
         "Sales Report": "Day Book>Sales-Day Book|DateWise Sales Report>Sales Datewise Report|Partywise sales Report>Partywise Sales Report",
         "Purchase Report": "Day Book>Purchase Day Book|DateWise Purchase Report>Purchase Datewise Report|Partywise Purchase Report",
         "Stock": "Stock Summary>Stock",
         "Tools": "Close Year...>|Past Year...>|Edit Log|Export to Excel>|Export to CSV>|Last Printout|Settings...>Settings|Correct a Date...>Correct a Date"}
ENTRIES = [(menu, entry, (caption or None) if sep else entry)
           for menu, entries in MENUS.items() for entry, sep, caption in (e.partition(">") for e in entries.split("|"))]


class Failure(Exception):
    pass


def wait_for(what, condition, timeout=WAIT):
    """Polls CONDITION until it returns something true; returns that, or fails naming WHAT."""
    end = time.monotonic() + timeout
    while True:
        try:
            value = condition()
        except Exception:  # the accessible tree changes under us while screens open and close
            value = None
        if value:
            return value
        if time.monotonic() > end:
            raise Failure("timed out waiting for " + what)
        time.sleep(0.05)


def check(condition, message):
    if not condition:
        raise Failure(message)


def equal(actual, expected, what):
    check(actual == expected, "%s: expected %r, got %r" % (what, expected, actual))


def extents(acc):
    """Where ACC lies on the X screen: (x, y, width, height)."""
    box = acc.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return (box.x, box.y, box.width, box.height)


def inside(inner, outer):
    """Whether the rectangle INNER lies wholly within OUTER."""
    x, y, w, h = inner
    ox, oy, ow, oh = outer
    return ox <= x and oy <= y and x + w <= ox + ow and y + h <= oy + oh


def walk(acc):
    yield acc
    for child in acc:
        if child is not None:
            yield from walk(child)


# With VANTREL_TEST_SERVER (a test server's folder, tests/support/pgserver) each run keeps its
# books in a database of its own there instead of a file.
SERVER = os.environ.get("VANTREL_TEST_SERVER")
_databases = itertools.count(1)


def psql(books, sql, *options):
    return subprocess.run(["psql", books, "-Xq", "-v", "ON_ERROR_STOP=1", *options, "-c", sql], check=True,
                          stdout=subprocess.PIPE, text=True).stdout


class Program:
    """One run of the real program in a program directory of its own, on fresh books holding SEED:
    a database file (SQL run by the engine's stock library, so the guards of the file apply), or
    a database of the test server's."""

    def __init__(self, program_dir, seed=""):
        self.dir = tempfile.mkdtemp(prefix="vantrel desk-")
        shutil.copy(os.path.join(program_dir, "vantrel"), self.dir)
        self.db_path = os.path.join(self.dir, "vantrel.accdb")
        self.books = self.db_path
        if SERVER:
            self.admin = open(os.path.join(SERVER, "uri")).read().strip()
            self.database = "desk_%d_%d" % (os.getpid(), next(_databases))
            psql(self.admin, "create database " + self.database)
            self.books = self.admin.replace("/postgres?", "/%s?" % self.database)
        subprocess.run([os.path.join(program_dir, "vantrel-initdb"), self.books], check=True, stdout=subprocess.DEVNULL)
        if seed and SERVER:
            psql(self.books, seed)
        elif seed:
            with sqlite3.connect(self.db_path) as db:
                db.executescript(seed)
        env = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1", LC_ALL="C.UTF-8",
                   XDG_CONFIG_HOME=self.dir)  # the program's settings its own, not the machine user's
        if SERVER:
            env["VANTREL_BOOKS"] = self.books
        env.pop("QT_QPA_PLATFORM", None)
        self.log = open(os.path.join(self.dir, "program.log"), "w")
        _running.append(self)
        self.process = subprocess.Popen([os.path.join(self.dir, "vantrel")], env=env, stdout=self.log,
                                        stderr=subprocess.STDOUT)
        self.app = wait_for("the program on the accessibility bus", self._find_app, timeout=30)
        self.sales = wait_for("the Sales screen", lambda: self.screen("Sales"))
        wait_for("the keyboard in C/D", lambda: self.focused_name() == "C/D")

    def _find_app(self):
        desktop = pyatspi.Registry.getDesktop(0)
        return next((app for app in desktop if app is not None and app.get_process_id() == self.process.pid), None)

    def close(self):
        self.process.kill()
        self.process.wait()
        self.log.close()
        shutil.rmtree(self.dir, ignore_errors=True)
        if SERVER:
            psql(self.admin, "drop database %s with (force)" % self.database)

    # --- the keyboard -------------------------------------------------------------------------

    def keys(self, *names):
        """Presses and releases each key in turn, as a person would ("Return", "alt+a", "F10")."""
        subprocess.run(["xdotool", "key", "--delay", "120"] + list(names), check=True)

    def choose_from_menu(self, entry, menu=None):
        """Opens the menu entry ENTRY (of MENU, where two menus have one) with F10, arrows and
        Enter, and returns the caption of the screen it opens."""
        menu, caption = next((m, c) for m, e, c in ENTRIES if e == entry and menu in (None, m))
        index = [e for m, e, c in ENTRIES if m == menu].index(entry)
        self.keys("F10", *["Right"] * list(MENUS).index(menu))
        self.keys(*["Down"] * index, "Return")
        return caption

    # --- what the screens show ----------------------------------------------------------------

    def screen(self, caption):
        """The frame of the screen with CAPTION inside the main window, or None."""
        return next((acc for acc in walk(self.app) if acc.name == caption and self._is_screen(acc)), None)

    @staticmethod
    def _is_screen(acc):
        """A screen's window inside the main window: a named frame below the program's own."""
        return acc.getRoleName() == "frame" and bool(acc.name) and acc.parent is not None \
            and acc.parent.getRoleName() != "application"

    def widget(self, name, role, scope=None):
        for acc in walk(scope or self.app):
            if acc.name == name and acc.getRoleName() == role:
                return acc
        raise Failure("no %s named %r" % (role, name))

    def text(self, label, scope=None):
        """The text a field or a date picker shows."""
        for acc in walk(scope or self.app):
            if acc.name == label and acc.getRoleName() in ("text", "spin button"):
                return acc.queryText().getText(0, -1)
        raise Failure("no field named %r" % label)

    def showing(self, name, role="table", scope=None, state=pyatspi.STATE_SHOWING):
        self.app.clear_cache()  # states are cached and not every change is announced
        return self.widget(name, role, scope).getState().contains(state)

    def screen_area(self):
        """The main window's area for screens (the pane that holds them)."""
        self.app.clear_cache()
        window = next(acc for acc in walk(self.app) if acc.getRoleName() == "frame" and acc.parent.getRoleName() == "application")
        return next(acc for acc in walk(window) if acc.getRoleName() == "layered pane")

    def status_line(self):
        """The text of the main window's status line."""
        self.app.clear_cache()
        bar = next(acc for acc in walk(self.app) if acc.getRoleName() == "status bar")
        return " | ".join(acc.name for acc in walk(bar) if acc.getRoleName() == "label" and acc.name)

    def focused(self):
        self.app.clear_cache()  # states are cached and not every change is announced
        for acc in walk(self.app):
            # A grid's current cell reads as focused whether or not the grid has the keyboard.
            if acc.getState().contains(pyatspi.STATE_FOCUSED) and acc.getRoleName() not in ("frame", "table cell"):
                return acc
        return None

    def focused_name(self):
        return getattr(self.focused(), "name", None)

    def focused_screen(self):
        """The caption of the screen that holds the keyboard."""
        acc = self.focused()
        while acc is not None and not self._is_screen(acc):
            acc = acc.parent
        return acc.name if acc is not None else None

    def message_box(self):
        """The text of the message box that is up, or None."""
        box = self._box_window()
        return next((acc.name for acc in walk(box) if acc.getRoleName() == "label" and acc.name), None) if box else None

    def _box_window(self):
        return next((window for window in self.app if window is not None and window.getRoleName() in ("dialog", "alert")
                     and window.getState().contains(pyatspi.STATE_SHOWING)), None)

    def screenshot(self, name):
        """Saves what the X server shows as NAME.png in the folder of the test's pictures."""
        folder = os.environ.get("VANTREL_SHOTS")
        if folder:
            os.makedirs(folder, exist_ok=True)
            subprocess.run("xwd -root -silent | /usr/bin/convert xwd:- '%s/%s.png'" % (folder, name), shell=True)

    def pixel(self, x, y):
        """The colour the X server shows at (X, Y), as (red, green, blue)."""
        out = subprocess.run("xwd -root -silent | /usr/bin/convert xwd:- -crop 1x1+%d+%d -depth 8 txt:-" % (x, y),
                             shell=True, capture_output=True, text=True, check=True).stdout
        colour = out.splitlines()[1].split("#")[1][:6]  # a heading, then "0,0: (r,g,b)  #RRGGBB  name"
        return tuple(int(colour[i:i + 2], 16) for i in (0, 2, 4))

    # --- cases as steps -----------------------------------------------------------------------

    def run(self, steps):
        """Runs STEPS, one a line or several joined by "; ", each waiting for what it expects:
            menu ENTRY [| MENU] the entry by F10, arrows and Enter; its screen is then the scope
            in CAPTION          the screen the next steps read          focus NAME (of the scope)
            keys K...           fast K... (no pause)  type TEXT    hold KEY (0.1 s)    tab NAME / backtab NAME
            field LABEL=TEXT    list NAME (shown)   nolist NAME
            enabled CAPTION / disabled CAPTION      box TEXT=KEY...      nobox
            sql QUERY => a,b | c,d                  printed TEXT (in the printer file)
            another SQL         a write of another counter's, on the same books
            status TEXT / nostatus TEXT (on the status line)"""
        self.scope = getattr(self, "scope", self.sales)
        for step in (s.strip() for line in steps.strip().split("\n") for s in line.split("; ")):
            verb, _, arg = step.partition(" ")
            name, _, value = arg.partition("=")
            if verb == "menu":
                caption = self.choose_from_menu(*arg.split(" | "))
                self.scope = wait_for("the screen " + caption, lambda: self.screen(caption))
                wait_for("the keyboard in " + caption, lambda: self.focused_screen() == caption)
            elif verb == "in":
                self.scope = wait_for("the screen " + arg, lambda: self.screen(arg))
            elif verb == "keys":
                self.keys(*arg.split())
            elif verb == "fast":  # typed ahead of the screen, as a scanner types
                subprocess.run(["xdotool", "key", "--delay", "0"] + arg.split(), check=True)
            elif verb == "type":
                subprocess.run(["xdotool", "type", "--delay", "120", arg], check=True)
            elif verb == "hold":  # a person's keystroke: its release comes after what the press brought up
                subprocess.run(["xdotool", "keydown", arg], check=True)
                time.sleep(0.1)
                subprocess.run(["xdotool", "keyup", arg], check=True)
            elif verb in ("tab", "backtab"):
                self.tab_to(arg, "Tab" if verb == "tab" else "shift+Tab")
            elif verb == "field":
                wait_for("%s to read %r (it reads %r)" % (name, value, self.text(name, self.scope)),
                         lambda: self.text(name, self.scope) == value)
            elif verb == "focus":
                wait_for("the keyboard in %s of %s (it is in %s of %s)" % (arg, self.scope.name, self.focused_name(), self.focused_screen()),
                         lambda: self.focused_name() == arg and self.focused_screen() == self.scope.name)
            elif verb in ("list", "nolist"):
                wait_for(step, lambda: self.showing(arg, scope=self.scope) == (verb == "list"))
            elif verb in ("enabled", "disabled"):
                equal(self.showing(arg, "push button", self.scope, pyatspi.STATE_SENSITIVE), verb == "enabled", arg + " enabled")
            elif verb == "box":  # the box NAME (or one that begins so, NAME ending in "..."), answered with keys; it must go
                box = wait_for("the message box %r" % name, self._box_window)
                shown = wait_for("the message box's text", self.message_box)
                equal(shown[:len(name) - 3] + "..." if name.endswith("...") else shown, name, "message box")
                self.keys(*value.split())
                wait_for("the message box %r to close" % name, lambda: self._box_window() != box)
            elif verb == "nobox":  # watched for a second: a box that comes late fails too
                end = time.monotonic() + 1.0
                while time.monotonic() < end:
                    shown = self.message_box()
                    check(shown is None, "a message box %r appeared after the step before" % shown)
                    time.sleep(0.05)
            elif verb == "sql":
                query, _, rows = arg.partition(" => ")
                expected = [tuple(row.strip().split(",")) for row in rows.split(" | ")] if rows.strip() else []
                equal(self.rows(query), expected, query)
            elif verb == "another":
                self.write(arg)
            elif verb in ("status", "nostatus"):
                wait_for("%s on the status line (%r)" % (arg, self.status_line()), lambda: (arg in self.status_line()) == (verb == "status"))
            elif verb == "printed":
                printer = os.path.join(self.dir, "LPT1")
                wait_for("%r in the printout" % arg, lambda: arg in open(printer, "rb").read().decode())
            else:
                raise Failure("a step the desk does not know: " + step)

    def tab_to(self, name, key="Tab"):
        """Presses KEY until the keyboard is in the widget NAME (twenty times at most). A date's
        own sections take a Tab each before the keyboard leaves it."""
        for _ in range(20):
            if self.focused_name() == name:
                return
            before = self.focused()
            self.keys(key)
            try:
                within = before is not None and before.getRoleName() == "spin button"
                wait_for("the keyboard to move", lambda: self.focused() != before, timeout=0.3 if within else 2)
            except Failure:
                pass
        raise Failure("%s never reached %r" % (key, name))

    # --- the books ----------------------------------------------------------------------------

    def write(self, sql):
        if SERVER:
            psql(self.books, sql)
            return
        with sqlite3.connect(self.db_path, timeout=10) as db:
            db.execute(sql)

    def rows(self, sql):
        if SERVER:
            return [tuple(line.split("\x1f")) for line in psql(self.books, sql, "-At", "-F", "\x1f").splitlines()]
        with sqlite3.connect(self.db_path) as db:
            return [tuple("" if v is None else (str(int(v)) if isinstance(v, float) and v == int(v) else str(v)) for v in row)
                    for row in db.execute(sql)]


def run(cases):
    """Runs each case (a function taking the program's directory) and prints the tally."""
    program_dir = os.path.abspath(sys.argv[1])
    # The accessibility bus, then the window manager, for the whole run.
    helpers = []
    for command in (["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"], ["openbox"]):
        helpers.append(subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        time.sleep(0.5)
    passed = failed = 0
    try:
        for case in cases:
            started = time.monotonic()
            try:
                case(program_dir)
                passed += 1
                print("PASS %s (%.1f s)" % (case.__name__, time.monotonic() - started), flush=True)
            except Exception as error:
                failed += 1
                if _running:
                    _running[-1].screenshot("fail-" + case.__name__)
                print("FAIL %s: %s" % (case.__name__, error), flush=True)
                if not isinstance(error, Failure):
                    traceback.print_exc()
            while _running:
                _running.pop().close()
    finally:
        for helper in reversed(helpers):
            helper.terminate()
            helper.wait()
    print("%d passed, %d failed" % (passed, failed))
    sys.exit(1 if failed else 0)
