#include "menutable.h"

#include "accounts/ledgerscreen.h"
#include "accounts/receiptscreen.h"
#include "masters/companymasterscreen.h"
#include "masters/partymasterscreen.h"
#include "masters/productmasterscreen.h"
#include "purchase/purchasescreen.h"
#include "sales/salesscreen.h"

namespace vantrel {

namespace {

template <typename S>
Screen *make(Services &services)
{
    return new S(services);
}

} // namespace

// The captions keep their uneven capitals; two entries read "Day Book" and open two screens.
const QVector<Menu> &menuTable()
{
    static const QVector<Menu> menus = {
        {"bill", "File", {{"rcpt", "Receipt", make<ReceiptScreen>}, {"led", "Ledger", make<LedgerScreen>}}},
        {"trans", "Transaction",
         {{"sale", "Sales", make<SalesScreen>},
          {"pur", "Purchase", make<PurchaseScreen>},
          {"pm", "Product master", make<ProductMasterScreen>},
          {"sm", "Party master", make<PartyMasterScreen>},
          {"cmpmst", "Company Master", make<CompanyMasterScreen>}}},
        {"srpt", "Sales Report",
         {{"db", "Day Book", nullptr},
          {"dwsrpt", "DateWise Sales Report", nullptr},
          {"prsale", "Partywise sales Report", nullptr}}},
        {"prpt", "Purchase Report",
         {{"pdb", "Day Book", nullptr},
          {"dtprpt", "DateWise Purchase Report", nullptr},
          {"prpur", "Partywise Purchase Report", nullptr}}},
        {"stk", "Stock", {{"stksum", "Stock Summary", nullptr}}},
    };
    return menus;
}

} // namespace vantrel
