#include "menutable.h"

#include "accounts/ledgerscreen.h"
#include "audit/editlogscreen.h"
#include "corrections/correctdatescreen.h"
#include "export/exportcommand.h"
#include "printing/lastprintoutscreen.h"
#include "settings/settingsscreen.h"
#include "accounts/receiptscreen.h"
#include "masters/companymasterscreen.h"
#include "masters/partymasterscreen.h"
#include "masters/productmasterscreen.h"
#include "purchase/purchasescreen.h"
#include "reports/daybookscreen.h"
#include "reports/partyregisterscreen.h"
#include "reports/registerscreen.h"
#include "reports/stockscreen.h"
#include "sales/salesscreen.h"
#include "years/closeyearcommand.h"
#include "years/pastyearcommand.h"

namespace vantrel {

namespace {

// An entry that opens the screen S, made for the services it is given.
template <typename S>
MenuEntry opens(const char *name, const char *caption)
{
    return {name, caption, [](Services &services) -> Screen * { return new S(services); }};
}

// An entry that opens a screen of one design, made with the kind that KIND points to.
template <typename S, const auto *kind>
MenuEntry opensKind(const char *name, const char *caption)
{
    return {name, caption, [](Services &services) -> Screen * { return new S(services, *kind); }};
}

// An entry that runs COMMAND instead of opening a screen.
MenuEntry runs(const char *name, const char *caption, MenuCommand command)
{
    return {name, caption, nullptr, command};
}

} // namespace

// The captions keep their uneven capitals; two entries read "Day Book" and open two screens.
const QVector<Menu> &menuTable()
{
    static const QVector<Menu> menus = {
        {"bill", "File", {opens<ReceiptScreen>("rcpt", "Receipt").readingOnly(), opens<LedgerScreen>("led", "Ledger").readingOnly()}},
        {"trans", "Transaction",
         {opens<SalesScreen>("sale", "Sales"), opens<PurchaseScreen>("pur", "Purchase"), opens<ProductMasterScreen>("pm", "Product master"),
          opens<PartyMasterScreen>("sm", "Party master"), opens<CompanyMasterScreen>("cmpmst", "Company Master")}},
        {"srpt", "Sales Report",
         {opensKind<DayBookScreen, &DayBookScreen::Sales>("db", "Day Book").readingOnly(),
          opensKind<RegisterScreen, &RegisterScreen::Sales>("dwsrpt", "DateWise Sales Report").readingOnly(),
          opensKind<PartyRegisterScreen, &PartyRegisterScreen::Sales>("prsale", "Partywise sales Report").readingOnly()}},
        {"prpt", "Purchase Report",
         {opensKind<DayBookScreen, &DayBookScreen::Purchase>("pdb", "Day Book").readingOnly(),
          opensKind<RegisterScreen, &RegisterScreen::Purchase>("dtprpt", "DateWise Purchase Report").readingOnly(),
          opensKind<PartyRegisterScreen, &PartyRegisterScreen::Purchase>("prpur", "Partywise Purchase Report").readingOnly()}},
        {"stk", "Stock", {opens<StockScreen>("stksum", "Stock Summary").readingOnly()}},
        // Added after the system's own menus.
        {"tools", "Tools",
         {runs("closeyear", "Close Year...", closeYearCommand), runs("pastyear", "Past Year...", pastYearCommand),
          opens<EditLogScreen>("editlog", "Edit Log").readingOnly(),
          runs("exportxlsx", "Export to Excel", exportToWorkbookCommand).readingOnly().withKey("F12"),
          runs("exportcsv", "Export to CSV", exportToCsvCommand).readingOnly().withKey("Shift+F12"),
          opens<LastPrintoutScreen>("lastprint", "Last Printout").readingOnly(), opens<SettingsScreen>("settings", "Settings..."),
          opens<CorrectDateScreen>("datefix", "Correct a Date...")}},
    };
    return menus;
}

} // namespace vantrel
