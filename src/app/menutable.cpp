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

template <typename S>
Screen *make(Services &services)
{
    return new S(services);
}

// A screen of one design, made with the kind that KIND points to.
template <typename S, const auto *kind>
Screen *makeKind(Services &services)
{
    return new S(services, *kind);
}

} // namespace

// The captions keep their uneven capitals; two entries read "Day Book" and open two screens.
const QVector<Menu> &menuTable()
{
    static const QVector<Menu> menus = {
        {"bill", "File", {{"rcpt", "Receipt", make<ReceiptScreen>, nullptr, true}, {"led", "Ledger", make<LedgerScreen>, nullptr, true}}},
        {"trans", "Transaction",
         {{"sale", "Sales", make<SalesScreen>},
          {"pur", "Purchase", make<PurchaseScreen>},
          {"pm", "Product master", make<ProductMasterScreen>},
          {"sm", "Party master", make<PartyMasterScreen>},
          {"cmpmst", "Company Master", make<CompanyMasterScreen>}}},
        {"srpt", "Sales Report",
         {{"db", "Day Book", makeKind<DayBookScreen, &DayBookScreen::Sales>, nullptr, true},
          {"dwsrpt", "DateWise Sales Report", makeKind<RegisterScreen, &RegisterScreen::Sales>, nullptr, true},
          {"prsale", "Partywise sales Report", makeKind<PartyRegisterScreen, &PartyRegisterScreen::Sales>, nullptr, true}}},
        {"prpt", "Purchase Report",
         {{"pdb", "Day Book", makeKind<DayBookScreen, &DayBookScreen::Purchase>, nullptr, true},
          {"dtprpt", "DateWise Purchase Report", makeKind<RegisterScreen, &RegisterScreen::Purchase>, nullptr, true},
          {"prpur", "Partywise Purchase Report", makeKind<PartyRegisterScreen, &PartyRegisterScreen::Purchase>, nullptr, true}}},
        {"stk", "Stock", {{"stksum", "Stock Summary", make<StockScreen>, nullptr, true}}},
        // Added after the system's own menus.
        {"tools", "Tools", {{"closeyear", "Close Year...", nullptr, closeYearCommand}, {"pastyear", "Past Year...", nullptr, pastYearCommand},
                   {"editlog", "Edit Log", make<EditLogScreen>, nullptr, true},
                   {"exportxlsx", "Export to Excel", nullptr, exportToWorkbookCommand, true, "F12"},
                   {"exportcsv", "Export to CSV", nullptr, exportToCsvCommand, true, "Shift+F12"},
                   {"lastprint", "Last Printout", make<LastPrintoutScreen>, nullptr, true},
                   {"settings", "Settings...", make<SettingsScreen>},
                   {"datefix", "Correct a Date...", make<CorrectDateScreen>}}},
    };
    return menus;
}

} // namespace vantrel
