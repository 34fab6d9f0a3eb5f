"""Keyboard, focus and lists on a real desktop: the operator's day, keyed as a person keys it.

On a real X server with a window manager a key's release lands wherever the focus is by then,
message boxes take the activation and give it back, and a grid's own keys run first; the
offscreen unit tests cannot see any of that. Each case is steps (desk.Program.run) on the
shared shop."""

import os
import subprocess

from desk import SERVER, SHOP, Program, run

CASES = {
    "a credit sale keyed from the menu to the end": """
        menu Sales; focus C/D; nobox; field Invoice No :=; disabled Add
        type d; field Invoice No :=3; field C/D=D; focus Party:
        type rame; list party list; keys Down Return; field Party:=RAMESH; focus Product Name:; field Invoice No :=3
        type pa; list product/stock grid; keys Down Return; field Product Name:=PANADOL; focus Qty
        type 3; field Amount=37.5; keys F9; box balance counted=Return; box Party transcation completed=Return; focus Product Name:
        keys Tab; focus item code; type 8902; keys Return; field Product Name:=PANTOCID 40; focus Qty
        type 2; tab Add; keys Return; box balance counted=space; field Total Amount=207.5; nobox
        tab discount percent; type 10; keys Tab; box Discount Calculated on invoice=Return; field GRAND TOTAL=186.75
        keys alt+p; printed PANTOCID
        keys alt+e; box Are You Sure You Want To End Inventory=alt+y; box Invoice Amount Received=Return; focus C/D; nobox
        field Invoice No :=
        sql select prodname,qty,amount,status from sales where invoice='3' and trans='D' order by rowid => PANADOL,3,37.5,p | PANTOCID 40,2,170,p
        sql select party,netamt,dis,disamt,gd from salesmain where invoice=3 and trans='D' => RAMESH,207.5,10,20.75,186.75
        sql select refno,debit from ledger where type='payment' order by refno => 1,12.5 | 2,37.5 | 3,170
        sql select prodname,stk,usedqty from stock order by prodname, pono => PANADOL,7,3 | PANADOL,7,3 | PANTOCID 40,3,3 | SUNCROS,20,0
        sql select count(*) from salesmain => 4""",

    # Shift+Tab back to the mode field restarts nothing; its letter is selected, so one key
    # changes the mode.
    "changing C to D": """
        type c; field Invoice No :=2; focus Party:
        keys shift+Tab shift+Tab shift+Tab; focus C/D; field Invoice No :=2
        type d; field Invoice No :=3; field C/D=D; nobox""",

    # The box is up before the letter's release: the release must still count.
    "a wrong mode letter still starts its own series": """
        hold x; box Enter C/D only=Return; field Invoice No :=1; field C/D=X; enabled Add; focus Party:; nobox
        menu Purchase; focus C/D
        hold x; box Enter C/D only=Return; field Purchse Order No :=1; field C/D=X; enabled Add; focus Party:; nobox""",

    # Any typed key chooses in the product list; it must choose the row it went down on.
    "a typed letter in a list chooses the row it is on": """
        menu Purchase; focus C/D; nobox; field Purchse Order No :=
        type d; field Purchse Order No :=3; keys Tab; focus Product Name:
        type pa; list product stock grid; keys Down; focus product stock grid; type p; field Product Name:=PANADOL""",

    "another screen opened while the party list shows stays": """
        type d; focus Party:; type r; list party list
        menu Purchase; nobox; focus C/D; in Sales; enabled Add""",

    # "&Add" and "C&ancel" share Alt+A: the second press leaves the keyboard on "C&ancel".
    "a bare Enter on the cancel question deletes nothing": """
        menu Purchase; type d; focus Party:; backtab Purchse Order No :; keys ctrl+a; type 1; keys Return; field Total Amount=95
        keys alt+a alt+a; focus Cancel; keys Return; box Are You Sure You Want To Cancel Invoice=Return; nobox
        sql select count(*) from purchase where pono='1' and trans='D' => 1; sql select count(*) from purchasemain => 3
        sql select prodname,totqty,stk from stock order by prodname, pono => PANADOL,10,10 | PANADOL,4,4 | PANTOCID 40,6,5 | SUNCROS,20,20""",

    "Enter in the search lists takes the row and closes the list": """
        menu Stock Summary; tab Product Name; type pa; list product grid; keys Down Return; field Product Name=PANADOL; nobox
        nolist product grid
        menu Receipt; tab Account; type ra; list account search grid A; keys Down Return; field Account=RAM; nolist account search grid A
        menu Party master; tab Party Name :; type rav; list party list; keys Down Return; field Party ID=3
        field Party Name :=RAVI MEDICALS""",

    # Enter takes the last day proposed; the question's default is No: a bare Enter closes
    # nothing. Yes closes the year, and the keyboard is back in a fresh Sales screen.
    "closing the year from the keyboard": """
        keys F10 Right Right Right Right Right Return; box Close the books up to the last day of the year:=Return
        box Close the year 20...=Return; nobox; sql select count(*) from salesmain => 3
        keys F10 Right Right Right Right Right Return; box Close the books up to the last day of the year:=Return
        box Close the year 20...=alt+y; box The year 20...=Return; in Sales; focus C/D; nobox
        sql select count(*) from salesmain => 0""",

    # With End Inventory greyed, Alt+E is nobody's: it must not reach the mode field as an "E"
    # (the release of Alt itself is a key released there, as any key is).
    "an Alt letter that no button takes types nothing": """
        keys alt+e; nobox; field C/D=; backtab C/D; fast alt+e alt+q alt+z; nobox; field C/D=
        backtab C/D; type c; field Invoice No :=2; focus Party:; keys alt+q; nobox; field Party:=""",

    "Down enters the Product Master's lists": """
        menu Product master; focus Company Code; type pa; keys Down; focus product list; keys Return; field Product Name=PANADOL
        keys alt+a; focus search; type ci; keys Down; focus company list; keys Return; field Company Code=CIP
        keys alt+a ctrl+a; fast s u Down Return; field Company Code=SUN; nobox""",

    # Each section filled by its digits moves on: the separator after it must not skip the next.
    "a whole date typed into a date picker": """
        menu DateWise Sales Report; tab From; type 11/01/2026; field From=11/01/2026
        tab To; fast 1 2 slash 0 5 slash 2 0 2 6; field To=12/05/2026; nobox""",

    # The changes of today, narrowed to a party, printed, and exported with one key each way.
    "the edit log read, printed and exported from the keyboard": """
        menu Edit Log; focus From; tab Party; type ramesh; keys alt+s; nobox
        keys alt+p; printed suppname; printed RAMESH; status Edit Log; nobox
        keys F12; status .xlsx; keys shift+F12; status .csv; nobox""",

    # With the preview on, Enter prints what it shows and Escape drops it.
    "a printout previewed from the keyboard": """
        menu Settings...; tab Show each printout before it prints; keys space alt+s; box The settings are saved.=Return
        menu DateWise Sales Report; tab Print; keys Return; box Page 1 of 1=Return; status Printed Datewise; printed Datewise
        keys Return; box Page 1 of 1=Escape; status Not printed: Datewise; nobox""",

    # The status line tells the keys of the screen with the keyboard and what was printed.
    "the status line": """
        status F9 adds; menu Stock Summary; nostatus F9; keys ctrl+Tab; in Sales; focus C/D; status F9 adds
        type c; field Invoice No :=2; keys shift+Tab shift+Tab; focus Invoice No :; keys ctrl+a; type 1; keys Return
        field Total Amount=40; keys alt+p; printed Invoice No : 1; status Printed Sales invoice 1: 12 lines; nobox""",

    # Typed ahead of the screen: each key acts as it would have had it come after the screen.
    "a credit line typed ahead": """
        fast d r a m e Down Return p a Down Return 3 F9; box balance counted=Return; box Party transcation completed=Return
        sql select invoice,prodname,qty from sales where party='RAMESH' => 3,PANADOL,3""",

    # Another counter takes the number proposed; the line's "&Add" (typed ahead, F9 held as a
    # person holds it) takes the next, and says so before the line's own box.
    "an invoice number another counter took meanwhile": """
        type c; field Invoice No :=2; another insert into salesmain(invoice,dat,party,trans,netamt) values(2,'11/23/2026','RAM','C','5')
        fast r a m e Down Return p a Down Return 3; hold F9
        box Invoice 2 was taken at another counter...=Return; box Party transcation completed=Return; nobox; field Invoice No :=3
        sql select invoice,qty from sales where party='RAMESH' => 3,3""",

    # Another counter cancels the invoice's lines between two of them: the next line's "&Add"
    # (F9 held, then typed ahead) is refused with a box, and the keyboard goes on from there.
    "a line into an invoice another counter changed since its last line": """
        type c; field Invoice No :=2; fast r a m e Down Return p a Down Return 3; hold F9; box Party transcation completed=Return
        another delete from sales where invoice='2' and trans='C'; focus Product Name:
        type pa; list product/stock grid; keys Down Return; type 2; hold F9; box Invoice 2 was changed at another counter...=Return; nobox
        fast p a Down Return 1 F9; box Invoice 2 was changed at another counter...=Return; nobox
        sql select count(*) from sales where invoice='2' and trans='C' => 0""",

    "the purchase screen opened typed ahead": """
        fast F10 Right Down Return c; in Purchase; field Purchse Order No :=2""",
}

# What the keys do on a screen whatever the books hold: run on the file alone, not again on a server.
SCREEN_ALONE = ("changing C to D", "an Alt letter that no button takes types nothing", "a whole date typed into a date picker",
                "a printout previewed from the keyboard", "the status line")

# The year to close: everything settled and dated in March of the last complete year.
SETTLED = ("update sales set status='p'; update purchase set status='p'; update salesmain set dat='3/20/2026';"
           "update purchasemain set dat='3/20/2026'; update ledger set dat='3/20/2026';")


def case(name, steps):
    def run_case(program_dir):
        Program(program_dir, SHOP + (SETTLED if "closing the year" in name else "")).run(steps)
    run_case.__name__ = name.replace(" ", "_")
    return run_case


if __name__ == "__main__":
    # The soak (VANTREL_RUNS=50) runs the typed-ahead cases that many times while every core is kept busy.
    runs = int(os.environ.get("VANTREL_RUNS", "1"))
    only = os.environ.get("VANTREL_CASE", "")  # the cases whose name holds this text
    burners = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(os.cpu_count() if runs > 1 else 0)]
    try:
        run([case(name, steps) for _ in range(runs) for name, steps in CASES.items()
             if (runs == 1 or "typed ahead" in name) and not (SERVER and name in SCREEN_ALONE) and only in name])
    finally:
        for burner in burners:
            burner.kill()
