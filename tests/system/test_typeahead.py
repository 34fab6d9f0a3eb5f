"""Keys typed ahead of the screen, as a scanner or a fast typist types them: whole flows keyed with
no pause between keys, many times over, while both cores are kept busy on purpose. Each key must
act as it would have had it come after the screen caught up.

    tests/system/desktop PROGRAM_DIR test_typeahead.py [SIZE]      (VANTREL_RUNS sets the runs)"""

import os
import subprocess

from desk import SHOP, Program, equal, run, wait_for

RUNS = int(os.environ.get("VANTREL_RUNS", "5"))


def busy_cores():
    """Two processes that keep both cores busy until they are stopped."""
    return [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(os.cpu_count() or 2)]


def fast(p, *keys):
    subprocess.run(["xdotool", "key", "--delay", "0"] + list(keys), check=True)


def a_credit_line_keyed_ahead(p):
    fast(p, "d", "r", "a", "m", "e", "Down", "Return", "p", "a", "Down", "Return", "3", "F9")
    p.answer("balance counted", "Return")
    p.answer("Party transcation completed", "Return")
    equal(p.rows("select invoice,prodname,qty from sales where party='RAMESH'"), [("3", "PANADOL", "3")], "the line")


def purchase_opened_keyed_ahead(p):
    fast(p, "F10", "Right", "Down", "Return", "c")
    purchase = wait_for("the Purchase screen", lambda: p.screen("Purchase"))
    try:
        wait_for("the voucher number", lambda: p.text("Purchse Order No :", purchase) == "2")
    except Exception:
        raise AssertionError("mode %r, number %r, keyboard in %s %s, box %r" % (
            p.text("C/D", purchase), p.text("Purchse Order No :", purchase), p.focused_screen(), p.focused_name(), p.message_box()))


def flows(program_dir):
    burners = busy_cores()
    try:
        for i in range(RUNS):
            for flow in (a_credit_line_keyed_ahead, purchase_opened_keyed_ahead):
                p = Program(program_dir, SHOP)
                try:
                    flow(p)
                except Exception as error:
                    raise AssertionError("run %d, %s: %s" % (i + 1, flow.__name__, error))
                finally:
                    p.close()
    finally:
        for b in burners:
            b.kill()



if __name__ == "__main__":
    run([flows])
