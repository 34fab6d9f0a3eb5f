"""Keyboard, focus and lists on a real desktop: the operator's day, keyed as a person keys it.

On a real X server with a window manager a key's release lands wherever the focus is by then,
message boxes take the activation and give it back, and a grid's own keys run first; the
offscreen unit tests cannot see any of that."""

from desk import SHOP, Program, check, equal, run, wait_for


def tab_to(p, name, key="Tab"):
    """Presses KEY until the keyboard is in the widget NAME (twenty times at most)."""
    for _ in range(20):
        if p.focused_name() == name:
            return
        before = p.focused()
        p.keys(key)
        try:
            wait_for("the keyboard to move", lambda: p.focused() != before, timeout=2)
        except Exception:
            pass
    raise AssertionError("Tab never reached %r" % name)


def program(program_dir):
    return Program(program_dir, SHOP)


def a_credit_sale_keyed_from_the_menu_to_the_end(program_dir):
    p = program(program_dir)
    sales = p.sales
    # The Enter that picks "Sales" is released in the mode field: it starts nothing.
    p.choose_from_menu("Sales")
    wait_for("the keyboard back in C/D", lambda: p.focused_name() == "C/D")
    p.no_message_box("the menu's Enter")
    equal(p.text("Invoice No :", sales), "", "number after the menu's Enter")
    check(not p.enabled("Add", sales), "Add is enabled before a mode was typed")

    p.type("d")
    wait_for("the next credit number", lambda: p.text("Invoice No :", sales) == "3")
    equal(p.text("C/D", sales), "D", "mode")
    wait_for("the keyboard in Party:", lambda: p.focused_name() == "Party:")

    p.type("rame")
    wait_for("the party list", lambda: p.showing("party list", scope=sales))
    p.keys("Down", "Return")
    wait_for("the party taken", lambda: p.text("Party:", sales) == "RAMESH")
    wait_for("the keyboard in Product Name:", lambda: p.focused_name() == "Product Name:")
    equal(p.text("Invoice No :", sales), "3", "number after the party's Enter")

    # One product from its list, added with F9.
    p.type("pa")
    wait_for("the product list", lambda: p.showing("product/stock grid", scope=sales))
    p.keys("Down", "Return")
    wait_for("the product taken", lambda: p.text("Product Name:", sales) == "PANADOL")
    wait_for("the keyboard in Qty", lambda: p.focused_name() == "Qty")
    p.type("3")
    wait_for("the amount", lambda: p.text("Amount", sales) == "37.5")
    p.keys("F9")
    p.answer("balance counted", "Return")
    p.answer("Party transcation completed", "Return")
    wait_for("the keyboard in Product Name:", lambda: p.focused_name() == "Product Name:")

    # One product by its item code, added with Enter on the focused "&Add".
    p.keys("Tab")
    wait_for("the keyboard in item code", lambda: p.focused_name() == "item code")
    p.type("8902")
    p.keys("Return")
    wait_for("the product by code", lambda: p.text("Product Name:", sales) == "PANTOCID 40")
    wait_for("the keyboard in Qty", lambda: p.focused_name() == "Qty")
    p.type("2")
    tab_to(p, "Add")
    p.keys("Return")
    p.answer("balance counted", "space")
    wait_for("the total", lambda: p.text("Total Amount", sales) == "207.5")
    p.no_message_box("the second line")

    tab_to(p, "discount percent")
    p.type("10")
    p.keys("Tab")
    p.answer("Discount Calculated on invoice", "Return")
    equal(p.text("GRAND TOTAL", sales), "186.75", "grand total")

    p.keys("alt+p")
    wait_for("the printout", lambda: "PANTOCID" in (p.printed() or ""))

    p.keys("alt+e")
    p.answer("Are You Sure You Want To End Inventory", "alt+y")
    p.answer("Invoice Amount Received", "Return")
    wait_for("the keyboard in C/D", lambda: p.focused_name() == "C/D")
    p.no_message_box("the settling box's Enter")
    equal(p.text("Invoice No :", sales), "", "number after the settling box's Enter")

    equal(p.rows("select prodname,qty,amount,status from sales where invoice='3' and trans='D' order by rowid"),
          [("PANADOL", "3", "37.5", "p"), ("PANTOCID 40", "2", "170", "p")], "lines")
    equal(p.rows("select party,netamt,dis,disamt,gd from salesmain where invoice=3 and trans='D'"),
          [("RAMESH", "207.5", "10", "20.75", "186.75")], "header")
    equal(p.rows("select refno,debit from ledger where type='payment' order by refno"),
          [("1", "12.5"), ("2", "37.5"), ("3", "170")], "payments")
    equal(p.rows("select prodname,stk,usedqty from stock order by prodname, pono"),
          [("PANADOL", "7", "3"), ("PANADOL", "7", "3"), ("PANTOCID 40", "3", "3"), ("SUNCROS", "20", "0")], "stock")
    equal(p.rows("select count(*) from salesmain"), [("4",)], "headers")


def changing_c_to_d(program_dir):
    p = program(program_dir)
    sales = p.sales
    p.type("c")
    wait_for("the next cash number", lambda: p.text("Invoice No :", sales) == "2")
    wait_for("the keyboard in Party:", lambda: p.focused_name() == "Party:")
    # Shift+Tab back to the mode field restarts nothing; its letter is selected, so one key
    # changes the mode.
    p.keys("shift+Tab", "shift+Tab", "shift+Tab")
    wait_for("the keyboard in C/D", lambda: p.focused_name() == "C/D")
    equal(p.text("Invoice No :", sales), "2", "number after Shift+Tab")
    p.type("d")
    wait_for("the next credit number", lambda: p.text("Invoice No :", sales) == "3")
    equal(p.text("C/D", sales), "D", "mode")
    p.no_message_box("changing the mode")


def a_wrong_mode_letter_still_starts_its_own_series(program_dir):
    p = program(program_dir)
    for caption, number in (("Sales", "Invoice No :"), ("Purchase", "Purchse Order No :")):
        if caption == "Purchase":
            p.choose_from_menu("Purchase")
            wait_for("the keyboard in Purchase", lambda: p.focused_screen() == "Purchase" and p.focused_name() == "C/D")
        screen = p.screen(caption)
        p.hold("x")
        p.answer("Enter C/D only", "Return")
        wait_for(caption + ": the number of the X series", lambda: p.text(number, screen) == "1")
        equal(p.text("C/D", screen), "X", caption + ": mode")
        check(p.enabled("Add", screen), caption + ": Add is disabled after the wrong letter")
        wait_for(caption + ": the keyboard in Party:", lambda: p.focused_name() == "Party:")
        p.no_message_box(caption + ": the box's Enter")


def start_a_purchase(p):
    """Opens Purchase from the menu and types D; the menu's Enter itself starts nothing."""
    p.choose_from_menu("Purchase")
    purchase = wait_for("the Purchase screen", lambda: p.screen("Purchase"))
    wait_for("the keyboard in Purchase", lambda: p.focused_screen() == "Purchase" and p.focused_name() == "C/D")
    p.no_message_box("the menu's Enter")
    equal(p.text("Purchse Order No :", purchase), "", "number after the menu's Enter")
    p.type("d")
    return purchase


def a_typed_letter_in_a_list_chooses_the_row_it_is_on(program_dir):
    p = program(program_dir)
    purchase = start_a_purchase(p)
    wait_for("the next voucher number", lambda: p.text("Purchse Order No :", purchase) == "3")
    p.keys("Tab")
    wait_for("the keyboard in Product Name:", lambda: p.focused_name() == "Product Name:")
    p.type("pa")
    wait_for("the product list", lambda: p.showing("product stock grid", scope=purchase))
    p.keys("Down")
    wait_for("the keyboard in the list", lambda: p.focused_name() == "product stock grid")
    # Any typed key chooses here; it must choose PANADOL, the row it went down on.
    p.type("p")
    wait_for("a product taken", lambda: p.text("Product Name:", purchase) != "PA")
    equal(p.text("Product Name:", purchase), "PANADOL", "product chosen by a typed letter")


def another_screen_opened_while_the_party_list_shows_stays(program_dir):
    p = program(program_dir)
    sales = p.sales
    p.type("d")
    wait_for("the keyboard in Party:", lambda: p.focused_name() == "Party:")
    p.type("r")
    wait_for("the party list", lambda: p.showing("party list", scope=sales))
    p.choose_from_menu("Purchase")
    wait_for("the keyboard in Purchase", lambda: p.focused_screen() == "Purchase")
    p.no_message_box("opening Purchase")
    equal(p.focused_screen(), "Purchase", "screen with the keyboard a moment later")
    check(p.enabled("Add", sales), "Sales was activated again behind Purchase")


def a_bare_enter_on_the_cancel_question_deletes_nothing(program_dir):
    p = program(program_dir)
    purchase = start_a_purchase(p)
    wait_for("the keyboard in Party:", lambda: p.focused_name() == "Party:")
    tab_to(p, "Purchse Order No :", "shift+Tab")
    p.keys("ctrl+a")
    p.type("1")
    p.keys("Return")
    wait_for("the voucher's total", lambda: p.text("Total Amount", purchase) == "95")
    # "&Add" and "C&ancel" share Alt+A: the second press leaves the keyboard on "C&ancel".
    p.keys("alt+a", "alt+a")
    wait_for("the keyboard on Cancel", lambda: p.focused_name() == "Cancel")
    p.keys("Return")
    p.answer("Are You Sure You Want To Cancel Invoice", "Return")
    p.no_message_box("answering No")
    equal(p.rows("select count(*) from purchase where pono='1' and trans='D'"), [("1",)], "lines of voucher 1")
    equal(p.rows("select count(*) from purchasemain"), [("3",)], "headers")
    equal(p.rows("select prodname,totqty,stk from stock order by prodname, pono"),
          [("PANADOL", "10", "10"), ("PANADOL", "4", "4"), ("PANTOCID 40", "6", "5"), ("SUNCROS", "20", "20")], "stock")


def pick_from_list(p, entry, caption, field, typed, list_name):
    """Opens the screen of menu ENTRY, types TYPED into FIELD and picks the first row of its list
    with Down and Enter. Returns the screen."""
    p.choose_from_menu(entry)
    screen = wait_for("the screen " + caption, lambda: p.screen(caption))
    wait_for("the keyboard in " + caption, lambda: p.focused_screen() == caption)
    tab_to(p, field)
    p.type(typed)
    wait_for("the list " + list_name, lambda: p.showing(list_name, scope=screen))
    p.keys("Down", "Return")
    return screen


def enter_in_the_search_lists_takes_the_row_and_closes_the_list(program_dir):
    p = program(program_dir)
    stock = pick_from_list(p, "Stock Summary", "Stock", "Product Name", "pa", "product grid")
    wait_for("the name taken", lambda: p.text("Product Name", stock) == "PANADOL")
    p.no_message_box("Enter on the product grid")
    check(not p.showing("product grid", scope=stock), "the product grid showed again after Enter")

    receipt = pick_from_list(p, "Receipt", "Receipt", "Account", "ra", "account search grid A")
    wait_for("the account taken", lambda: p.text("Account", receipt) == "RAM")
    check(not p.showing("account search grid A", scope=receipt), "the account list stayed")

    parties = pick_from_list(p, "Party master", "Suppliermaster", "Party Name :", "rav", "party list")
    wait_for("the party taken", lambda: p.text("Party ID", parties) == "3")
    equal(p.text("Party Name :", parties), "RAVI MEDICALS", "party picked")


if __name__ == "__main__":
    run([
        a_credit_sale_keyed_from_the_menu_to_the_end,
        changing_c_to_d,
        a_wrong_mode_letter_still_starts_its_own_series,
        a_typed_letter_in_a_list_chooses_the_row_it_is_on,
        another_screen_opened_while_the_party_list_shows_stays,
        a_bare_enter_on_the_cancel_question_deletes_nothing,
        enter_in_the_search_lists_takes_the_row_and_closes_the_list,
    ])
