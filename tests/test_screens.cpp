// Every screen driven as the operator drives it, case by case on the shared shop: the keys and
// clicks, then what the fields, the grids, the messages and the file show.
#include "support/steps.h"
#include "support/testmain.h"

using namespace vantrel;

namespace {

struct Case {
    const char *name;
    const char *steps;
};

// A new credit invoice (number 3) for RAMESH, who has nothing open.
#define NEW_CREDIT_SALE "open sale\ntype C/D=D\npick Party:=RAME>party list\n"
#define NEW_CASH_SALE "open sale\ntype C/D=C\npick Party:=RAME>party list\n"
#define LINE(code, qty) "type item code=" code "\nkey item code=Return\ntype Qty=" qty "\nclick &Add\n"
#define REOPEN_SALE(mode, number) "open sale\ntype C/D=" mode "\nclear Invoice No :\ntype Invoice No :=" number "\nkey Invoice No :=Return\n"
#define NEW_CASH_PURCHASE "open pur\ntype C/D=C\npick Party:=RAME>party grid\n"
#define PLINE(code, qty) "type Item code=" code "\nkey Item code=Return\ntype Qty=" qty "\nclick &Add\n"
#define REOPEN_PURCHASE(mode, number) "open pur\ntype C/D=" mode "\nclear Purchse Order No :\ntype Purchse Order No :=" number "\nkey Purchse Order No :=Return\n"

const Case Sales[] = {
    {"opening", R"(open sale
field Date :=11/23/2026
enabled &Add=no
enabled &End Inventory=no
enabled C&ancel=no
enabled &Print=no
enabled &Close=yes
focused C/D)"},
    {"a credit sale: payment and overall balance, every lot, the header", NEW_CREDIT_SALE R"(field C/D=D
field Invoice No :=3
field Party:=RAMESH
)" LINE("8901", "3") R"(said balance counted | Party transcation completed
changed ledger +1, sales +1, salesmain +1, stock ~2
sql select refno,dat,ac,debit,balance from ledger where type='payment' and refno=2 => 2,11/23/2026,RAMESH,37.5,100
sql select distinct stk,usedqty from stock where prodname='PANADOL' => 7,3
sql select invoice,dat,party,trans,netamt from salesmain where party='RAMESH' => 3,11/23/2026,RAMESH,D,37.5
sql select cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status from sales where party='RAMESH' => CIP,1,3,PANADOL,RAMESH,8901,3,12.5,37.5,D,u
field Total Amount=37.5
field Product Name:=
field cmpid=CIP
focused Product Name:
pick Product Name:=PANT>product/stock grid
field item code=8902
field Rate=85
type Qty=2
field Amount=170
click &Add
said balance counted
changed ledger +1, sales +1, salesmain ~1, stock ~1
sql select debit,balance from ledger where refno=3 => 170,70
sql select netamt from salesmain where party='RAMESH' => 207.5
grid lines grid=0,0=Item
rows lines grid=3)"},
    {"payments above receipts: the balance is their difference", NEW_CREDIT_SALE LINE("8901", "20") R"(sql select debit,balance from ledger where refno=2 and type='payment' => 250,112.5)"},
    {"a lower-case d is credit too", NEW_CREDIT_SALE "set C/D=d\n" LINE("8901", "2") R"(sql select ac,debit from ledger where refno=2 and type='payment' => RAMESH,25
sql select trans from sales where party='RAMESH' => d)"},
    {"a cash sale books no payment", NEW_CASH_SALE LINE("8901", "2") R"(said Party transcation completed
changed sales +1, salesmain +1, stock ~2)"},
    {"editing the rate leaves the amount", NEW_CASH_SALE R"(type item code=8901
key item code=Return
type Qty=2
field Amount=25
clear Rate
type Rate=20
field Amount=25
click &Add
sql select rate,amount from sales where party='RAMESH' => 20,25)"},
    {"a key in C/D starts afresh", NEW_CASH_SALE LINE("8901", "2") R"(type Product Name:=ZIN
type Qty=3
set Rate=9
set Amount=27
field Total Amount=25
clear C/D
type C/D=C
field Invoice No :=3
field Party:=
field Product Name:=
field Qty=
field Rate=
field Amount=
field Total Amount=)"},
    {"the party's open invoice of the mode comes back", R"(open sale
type C/D=D
pick Party:=RAM>party list
field Invoice No :=1
grid lines grid=1,0=PANADOL
field Total Amount=12.5
enabled C&ancel=yes
exec insert into sales(invoice,prodname,party,qty,rate,amount,trans,status) values('7','PANADOL','RAMESH','1','12.5','12.5','D','u')
clear Party:
pick Party:=RAME>party list
field Invoice No :=7
field Total Amount=)"},
    {"a settled invoice does not come back", R"(exec update sales set status='p' where invoice='1' and trans='D'
open sale
type C/D=D
pick Party:=RAM>party list
field Party:=RAM
field Invoice No :=3
rows lines grid=1)"},
    {"a line, the discount and the settling touch only their own invoice", REOPEN_SALE("D", "1") R"(field Total Amount=12.5
)" LINE("8901", "2") R"(said balance counted
changed ledger +1, sales +1, salesmain ~1, stock ~2
sql select invoice,trans,netamt from salesmain order by trans,invoice => 1,C,40 | 1,D,37.5 | 2,D,80
sql select balance from ledger where refno=2 and type='payment' => 112.5
type discount percent=10
focus item code
said Discount Calculated on invoice
changed salesmain ~1
sql select dis,disamt,gd from salesmain where invoice=1 and trans='D' => 10,3.75,33.75
yes
click &End Inventory
said Are You Sure You Want To End Inventory | Invoice Amount Received
changed sales ~2
sql select count(*) from sales where status='p' and invoice='1' and trans='D' => 2)"},
    {"cancel takes only its own invoice and its own products", REOPEN_SALE("D", "1") R"(yes
click C&ancel
said Are You Sure You Want To Cancel Invoice | Stock Returned Successfully | Invoice Cancelled Successfully
changed sales -1, salesmain -1, stock ~2
sql select distinct stk,usedqty from stock where prodname='PANADOL' => 11,-1
sql select count(*) from ledger => 3)"},
    {"a mode other than C/D is reported but numbered", R"(open sale
type C/D=x
said Enter C/D only
field C/D=X
field Invoice No :=1
enabled &Add=yes)"},
    {"adding before the mode only consumes stock", R"(open sale
force &Add
)" LINE("8901", "1") R"(changed stock ~2)"},
    {"a large total is kept to seven digits", NEW_CASH_SALE R"(pick Product Name:=ZINC>product/stock grid
set Rate=123456.78
type Qty=1
click &Add
field Total Amount=123456.8
sql select netamt from salesmain where party='RAMESH' => 123456.8)"},
    {"Enter on a number re-opens it, with or without a header", R"(exec update salesmain set dis=10,disamt=1.25,gd=11.25 where invoice=1 and trans='D'
exec insert into sales(invoice,prodname,qty,rate,amount,trans,status) values('6','SUNCROS','1','30','30','D','u')
open sale
type C/D=D
set Invoice No :=1
key Invoice No :=Return
rows lines grid=2
grid lines grid=1,0=PANADOL
field Total Amount=12.5
field discount percent=10
field discount amount=1.25
field GRAND TOTAL=11.25
enabled &End Inventory=yes
enabled C&ancel=yes
set Invoice No :=6
key Invoice No :=Return
grid lines grid=1,0=SUNCROS
field Total Amount=
field discount percent=
field discount amount=
field GRAND TOTAL=)"},
    {"the discount is stored when the percent is left, to every digit", NEW_CASH_SALE R"(type item code=8903
key item code=Return
set Rate=1234
type Qty=1
click &Add
said Party transcation completed
type discount percent=7.5
focus GRAND TOTAL
field discount amount=92.55
field GRAND TOTAL=1141.45
said Discount Calculated on invoice
sql select netamt,dis,disamt,gd from salesmain where party='RAMESH' => 1234,7.5,92.55,1141.45
clear discount percent
focus discount percent
focus GRAND TOTAL
field discount amount=0
field GRAND TOTAL=1234
sql select dis,disamt,gd from salesmain where party='RAMESH' => ,0,1234
type discount percent=3.3333
focus GRAND TOTAL
field discount amount=41.132922
field GRAND TOTAL=1192.867078)"},
    {"a discount before any line is only shown", R"(open sale
type C/D=C
set Total Amount=999
type discount percent=3
focus GRAND TOTAL
field discount amount=29.97
field GRAND TOTAL=969.03
said
changed)"},
    {"End Inventory settles on Yes only and clears the invoice's figures", NEW_CREDIT_SALE LINE("8901", "4") R"(type discount percent=10
focus item code
type item code=89
field GRAND TOTAL=45
changed ledger +1, sales +1, salesmain +1, stock ~2
said balance counted | Party transcation completed | Discount Calculated on invoice
no
click &End Inventory
said Are You Sure You Want To End Inventory
changed
field Invoice No :=3
yes
click &End Inventory
said Are You Sure You Want To End Inventory | Invoice Amount Received
changed sales ~1
field C/D=D
field Party:=
field Invoice No :=
field item code=
field Total Amount=
field GRAND TOTAL=
field discount percent=
field discount amount=
rows lines grid=2)"},
    {"cancel gives each line back, rounded half to even, and keeps the payments", NEW_CREDIT_SALE LINE("8901", "2.5") LINE("7701", "2.5") R"(exec update stock set stk='7' where prodname='PANADOL'
exec update stock set stk='6' where prodname='SUNCROS'
type item code=8903
type Amount=40
changed ledger +2, sales +2, salesmain +1, stock ~3
yes
click C&ancel
said balance counted | Party transcation completed | balance counted | Are You Sure You Want To Cancel Invoice | Stock Returned Successfully | Stock Returned Successfully | Invoice Cancelled Successfully
changed sales -2, salesmain -1, stock ~3
sql select prodname,stk,usedqty from stock where pono='2' or prodname='SUNCROS' order by prodname => PANADOL,10,0 | SUNCROS,8,0
enabled C&ancel=no
enabled &Print=no
field Invoice No :=
field item code=
field Amount=
field Total Amount=
rows lines grid=1)"},
    {"cancel on No keeps the invoice; a settled one cancels alike; its number comes again", NEW_CASH_SALE LINE("8901", "1") R"(no
click C&ancel
grid lines grid=0,1=code
changed sales +1, salesmain +1, stock ~2
exec update sales set status='p' where party='RAMESH'
yes
click C&ancel
changed sales -1, salesmain -1, stock ~2
clear C/D
type C/D=C
field Invoice No :=2)"},
    {"print writes the invoice as the screen shows it", R"(exec update productmaster set prodname='PARACETAMOL 500 TABLETS', rate='12500' where model='8901'
)" NEW_CASH_SALE LINE("8901", "2") R"(type item code=8903
key item code=Return
set Rate=1234.5
type Qty=1
click &Add
click &Print
printed           COMPANY NAME |           ADDRESS | ========================= | Invoice No : 2   Date :   11/23/2026 | Party:   RAMESH | ========================= | Item      qty   rate amount | ------------------------- | PARACETAMOL 500 2   1250  25000   | ZINCOVIT        1   1234  1234.5  | ------------------------- |         Total Amount      26234.5 | =========================
cell lines grid=1,0
click &Print
printed           COMPANY NAME |           ADDRESS | ========================= | Invoice No : 2   Date :   11/23/2026 | Party:   RAMESH | ========================= | cmpid      code   item qty | ------------------------- | CIP             890 PARA  2       | CIP             890 ZINC  1       | ------------------------- |         Total Amount      26234.5 | =========================
status Printed Sales invoice 2: 13 lines)"},
    {"a pick on a heading or a third column is refused", R"(open sale
type Product Name:=PA
rows product/stock grid=3
grid product/stock grid=1,1=14
grid product/stock grid=2,1=5
cell product/stock grid=0,0
cell product/stock grid=1,2
said Wrong Selection | Wrong Selection
field Product Name:=PA
cell product/stock grid=1,0
field Product Name:=PANADOL
field Rate=12.5
shown product/stock grid=no)"},
    {"Escape hides the lists, a click shows them, the keyboard reaches them", R"(open sale
type C/D=D
type Party:=R
shown party list=yes
key Party:=Escape
shown party list=no
tap Party:
shown party list=yes
key Party:=Tab
focused party list
key Party:=Down
focused party list
type Product Name:=P
shown product/stock grid=yes
key Product Name:=Escape
shown product/stock grid=no
tap Product Name:
shown product/stock grid=yes)"},
};

const Case Purchases[] = {
    {"the first purchase of a product makes its lot", R"(open pur
enabled &Add=no
type C/D=c
pick Party:=RAME>party grid
field Purchse Order No :=2
type Item code=8903
key Item code=Return
set Rate=9.5
type Qty=10
click &Add
said  stock added successfully | Party transcation completed
changed purchase +1, purchasemain +1, stock +1
sql select pono,party,totqty,rate,amt,usedqty,stk from stock where prodname='ZINCOVIT' => 2,RAMESH,10,9.5,95,,10
sql select cmpid,psrno,pono,prodname,party,model,qty,rate,amount,trans,status from purchase where party='RAMESH' => CIP,3,2,ZINCOVIT,RAMESH,8903,10,9.5,95,C,u
sql select pono,dat,party,trans,netamt from purchasemain where party='RAMESH' => 2,11/23/2026,RAMESH,C,95
grid lines grid=0,0=prodname
field Total Amount=95
focused Product Name:)"},
    {"later purchases raise the one lot, sold quantities kept", R"(open pur
type C/D=D
pick Party:=RAME>party grid
field Purchse Order No :=3
type Item code=8901
key Item code=Return
set Rate=11
type Qty=4
click &Add
said Stock Updated Successfully | Party transcation completed
changed purchase +1, purchasemain +1, stock ~2
sql select pono,party,totqty,rate,amt,usedqty,stk from stock where prodname='PANADOL' => 1,RAM,14,9.5,95,0,14 | 2,RAVI MEDICALS,14,12.5,50,0,14
grid lines grid=0,0=Item
)" PLINE("8902", "5") R"(sql select totqty,usedqty,stk from stock where prodname='PANTOCID 40' => 11,1,10
sql select pono,trans,netamt from purchasemain where party='RAMESH' => 3,D,469)"},
    {"each mode has its own series", R"(open pur
type C/D=d
field Purchse Order No :=3
clear C/D
type C/D=c
field Purchse Order No :=2
clear C/D
type C/D=x
said Enter C/D only
field Purchse Order No :=1)"},
    {"a supplier's open voucher comes back by Enter or a click", R"(open pur
type C/D=C
pick Party:=RAM>party grid
field Purchse Order No :=1
grid lines grid=0,3=amount
field Total Amount=40
cell party grid=1,0
grid lines grid=0,2=model
set Purchse Order No :=17
clear Party:
pick Party:=RAME>party grid
field Party:=RAMESH
field Purchse Order No :=17
field Total Amount=)"},
    {"End Inventory marks the voucher paid and sets cash mode", "open pur\ntype C/D=D\npick Party:=RAME>party grid\n" PLINE("8901", "3") R"(changed purchase +1, purchasemain +1, stock ~2
yes
click &End Inventory
said Stock Updated Successfully | Party transcation completed | Are You Sure You Want To End Inventory | Voucher Paid Successfully
changed purchase ~1
field C/D=C
field Purchse Order No :=
field Party:=)"},
    {"cancel takes the quantities back out, rounded", NEW_CASH_PURCHASE PLINE("8903", "10") PLINE("8902", "2.5") R"(exec update stock set totqty='10',stk='10' where prodname='PANTOCID 40'
exec update stock set usedqty='12',stk='-2' where prodname='ZINCOVIT'
changed purchase +2, purchasemain +1, stock +1 ~1
said  stock added successfully | Party transcation completed | Stock Updated Successfully
yes
click C&ancel
said Are You Sure You Want To Cancel Invoice | Stock Returned Successfully | Stock Returned Successfully | Invoice Cancelled Successfully
changed purchase -2, purchasemain -1, stock ~2
sql select totqty,usedqty,stk from stock where prodname='ZINCOVIT' => 0,12,-12
sql select totqty,stk from stock where prodname='PANTOCID 40' => 8,8
enabled C&ancel=no
field Total Amount=)"},
    {"lines and settling touch only their own voucher and product", REOPEN_PURCHASE("D", "1") R"(field Total Amount=95
)" PLINE("8903", "3") PLINE("8901", "2") R"(changed purchase +2, purchasemain ~1, stock +1 ~2
sql select pono,trans,netamt from purchasemain order by trans,pono => 1,C,40 | 1,D,240 | 2,D,50
sql select prodname,totqty,usedqty,stk from stock order by rowid => PANADOL,12,0,12 | PANADOL,12,0,12 | PANTOCID 40,6,1,5 | SUNCROS,20,0,20 | ZINCOVIT,3,,3
yes
click &End Inventory
changed purchase ~3
sql select pono,trans,status from purchase where status='p' group by pono,trans => 1,D,p)"},
    {"cancel takes only its own voucher and its own products", REOPEN_PURCHASE("D", "1") R"(yes
click C&ancel
changed purchase -1, purchasemain -1, stock ~2
sql select distinct totqty,stk from stock where prodname='PANADOL' => 0,0
sql select pono,trans from purchasemain order by trans,pono => 1,C | 2,D)"},
    {"Escape hides the lists", R"(open pur
type C/D=C
type Party:=RA
shown party grid=yes
key Party:=Escape
shown party grid=no
field Party:=RA
type Product Name:=PA
shown product stock grid=yes
key Purchse Order No :=Escape
shown product stock grid=no
field Product Name:=PA)"},
    {"a typed key in the product grid chooses; arrows move", R"(open pur
type Product Name:=PA
key Product Name:=Down
key product stock grid=Down
field Product Name:=PA
key product stock grid=Space
field Product Name:=PANTOCID 40
field Rate=85
shown product stock grid=no)"},
    {"print writes the voucher layout", R"(exec update productmaster set prodname='PARACETAMOL 500 TABLETS', rate='12500' where model='8902'
)" NEW_CASH_PURCHASE PLINE("8902", "2") PLINE("8902", "1") R"(click &Print
status Printed Purchase order 2: 13 lines
printed           COMPANY NAME |           ADDRESS | ======================================= | Purchse Order No : 2   Date :11/23/2026 | Party:   RAMESH | ======================================= | Item      qty   rate amount | --------------------------------------- | PARACETAMOL 500 2   1250  25000   | PARACETAMOL 500 1   1250  12500   | --------------------------------------- |         Total Amount      37500 | =======================================)"},
    {"buying, selling and cancelling both move the one stock row", NEW_CASH_PURCHASE PLINE("8903", "10") R"(open sale
type C/D=D
pick Party:=RAME>party list
)" LINE("8903", "3") R"(sql select totqty,usedqty,stk from stock where prodname='ZINCOVIT' => 10,3,7
yes
click C&ancel
sql select totqty,usedqty,stk from stock where prodname='ZINCOVIT' => 10,0,10
open pur
enabled C&ancel=no
set C/D=C
set Purchse Order No :=2
key Purchse Order No :=Return
field Total Amount=400
yes
click C&ancel
sql select totqty,usedqty,stk from stock where prodname='ZINCOVIT' => 0,0,0
sql select count(*) from purchase where pono='2' and trans='C' => 0)"},
};

const Case Masters[] = {
    {"a company code is taken once", R"(open cmpmst
type Company Code=zyd
type Company Name=zydus
type Short Name=zy
type Address=mumbai
type Pin=400001
click Save
said Company Added Successfully
changed companymaster +1
sql select companyname,cmpid,shortname,address,pin from companymaster where cmpid='ZYD' => ZYDUS,ZYD,ZY,MUMBAI,400001
field Company Code=
field Company Name=
field Pin=
focused Company Code
type Company Code=CIP
type Company Name=ANOTHER
click Save
said company id already used try another id
field Company Name=ANOTHER
click Edit
click Delete
said
changed)"},
    {"products are numbered per company", R"(open pm
enabled &Save=no
enabled &Update=no
enabled &Delete=no
click &Add
type search=ci
cell company list=1,0
field Company Code=CIP
field Mfg Name=CIPLA LTD
field Product Sr. No=4
focused Product Name
type Product Name=panadol plus
type Item Code=8911
type MRP=25
type Sales Rate=22.5
click &Save
said Saved successfully
changed productmaster +1
sql select cmpid,mfgname,psrno,prodname,model,mrp,rate from productmaster where model='8911' => CIP,CIPLA LTD,4,PANADOL PLUS,8911,25,22.5
field Company Code=
click &Add
clear search
type search=SU
cell company list=1,0
field Company Code=SUN
field Product Sr. No=2)"},
    {"a product's name or code in use is refused, the name first", R"(open pm
click &Add
type search=CI
cell company list=1,0
type Product Name=PANADOL
type Item Code=7701
click &Save
said Product already exist and assign to other product please choose another
clear Product Name
type Product Name=PANADOL EXTRA
click &Save
said Item Code already exist and assign to other product please choose another
changed
field Product Name=PANADOL EXTRA)"},
    {"a company picked by its name is refused", R"(open pm
click &Add
type search=C
cell company list=1,1
said Wrong Selection
field Company Code=)"},
    {"the company code field searches products; an update needs the true code", R"(exec update productmaster set shortname='PAN',mrp=25,wr=20 where model='8901'
changed productmaster ~1
open pm
type Company Code=pa
shown product list=yes
rows product list=3
grid product list=1,1=PAN
key Company Code=Escape
shown product list=no
clear Company Code
type Company Code=PAN
cell product list=1,0
field Company Code=CIPLA LTD
field Product Sr. No=1
field Sales Rate=12.5
field Boxno=B1
enabled &Update=yes
set Sales Rate=30
click &Update
said product updated successfully
changed
field Sales Rate=
type Company Code=PAN
cell product list=1,0
set Company Code=CIP
set Sales Rate=30
click &Update
changed productmaster ~1
sql select cmpid,mfgname,psrno,prodname,shortname,rate from productmaster where model='8901' => CIP,CIPLA LTD,1,PANADOL,PAN,30)"},
    {"parties are numbered from one above the highest", R"(open sm
field Party ID=4
type Party Name :=ravi stores
type Short Name:=rs
type City :=pune
type C/B/S/O=c
choose Acc Type=Asset
click &Save
said party added successfully
changed suppliermaster +1
sql select ID,suppname,shortname,city,cbso,acctype from suppliermaster where ID=4 => 4,RAVI STORES,RS,PUNE,C,Asset
field Party ID=5
field Party Name :=
field Short Name:=RS
exec insert into suppliermaster(ID,suppname) values(7,'GAP')
type Party Name :=zen
click &Save
sql select ID from suppliermaster where ID>3 order by ID => 4 | 5 | 7
field Party ID=8)"},
    {"a picked party fills the fields but not its heading; update and delete", R"(exec update suppliermaster set address='MG ROAD',pin='411001',cbso='S',acctype='Liability' where ID=1
open sm
type Party Name :=ra
cell party list=0,0
said  Wrong selection
field Party ID=4
cell party list=1,1
field Party ID=1
field Party Name :=RAM
field Address :=MG ROAD
field Pin Code :=411001
field C/B/S/O=
set City :=MUMBAI
click &Update
said party updated successfully
changed suppliermaster ~1
sql select ID,city,cbso from suppliermaster where ID=1 => 1,MUMBAI,
set Party ID=2
no
click &Delete
changed
yes
click &Delete
said Are You Sure | Are You Sure | Supplier deleted
changed suppliermaster -1
sql select ID from suppliermaster order by ID => 1 | 3)"},
    {"after Cancel, Update and Delete fail", R"(open sm
click Ca&ncel
field Party ID=
click &Update
ended near ",": syntax error
yes
click &Delete
ended incomplete input
changed)"},
    {"typing arrives in capitals on every master", R"(open cmpmst
type Company Name=mg road 5
field Company Name=MG ROAD 5
open pm
type Product Name=mg road 5
field Product Name=MG ROAD 5
open sm
type Address :=mg road 5
field Address :=MG ROAD 5)"},
};

// Receipts 1 and 2 of CASH and payment 1 are in the shop; a payment 3 shares a receipt's number.
#define RECEIPT(account, name, amount) "set Account=" account "\nset Name Of Account=" name "\nset Amount=" amount "\nclick &Save\n"
const Case Accounts[] = {
    {"a receipt: its own series, the shop's overall balance, the list of its receiving account",
     R"(exec insert into ledger(refno,ac,debit,type,balance) values(3,'RAM',400,'payment',0)
changed ledger +1
open rcpt
field Receipt No=3
)" RECEIPT("RAMESH", "CASH", "250") R"(said balance counted | Item Added successfully
changed ledger +1
sql select refno,dat,ac,credit,accnm,type,balance from ledger where refno=3 and type='receipt' => 3,11/23/2026,RAMESH,250,CASH,Receipt,12.5
sql select balance from ledger where refno=3 and type='payment' => 0
field Receipt No=4
field Total Amount=400
grid receipt list=0,0=refno
grid receipt list=0,1=Date1
grid receipt list=0,2=Name_of_Account
grid receipt list=0,3=Amount
)" RECEIPT("RAMESH", "CASH", "600") R"(sql select balance from ledger where refno=4 => 587.5
)" RECEIPT("RAM", "", "20") R"(field Total Amount=20
rows receipt list=2
)" RECEIPT("RAM", "NOBODY", "") RECEIPT("RAM", "NOBODY", "ten") R"(sql select refno,credit from ledger where accnm='NOBODY' order by refno => 6, | 7,ten
field Total Amount=0)"},
    {"the two search lists behave differently", R"(exec insert into suppliermaster(ID,suppname) values(4,'CASH')
open rcpt
type Account=ra
shown account search grid A=yes
key Account=Escape
shown account search grid A=yes
cell account search grid A=1,0
field Account=RAM
shown account search grid A=no
type Name Of Account=CA
shown account search grid B=yes
key Name Of Account=Down
key account search grid B=Return
field Name Of Account=CASH
grid receipt list=0,0=receipt
rows receipt list=3
field Total Amount=150)"},
    {"a ledger shows the exact account in a span of month-first texts", R"(exec insert into ledger(refno,dat,ac,credit,debit,type) values(11,'01/15/2024','RAM',100,null,'receipt'),(12,'01/15/2023','RAM',50,null,'receipt'),(13,'02/10/2024','RAM',null,30,'payment'),(14,'12/20/2023','RAM',70,null,'receipt'),(15,'01/20/2024','RAMESH',90,null,'receipt')
open led
date From Date=01/01/2024
date To Date=02/28/2024
type Account Name=RAM
key account search grid=Return
rows ledger grid=4
grid ledger grid=0,4=balance
shown account search grid=no
date To Date=01/31/2024
clear Account Name
type Account Name=RAM
key account search grid=Return
rows ledger grid=3
date From Date=12/01/2023
clear Account Name
type Account Name=RAM
key account search grid=Return
rows ledger grid=1
grid ledger grid=0,0=dat
exec update ledger set dat='SOMEDAY' where refno=14
date From Date=01/01/2024
clear Account Name
type Account Name=RAM
key account search grid=Return
ended Data type mismatch in criteria expression.)"},
};

// Headers dated today (11/23/2026) beside the shop's of 11/20 and 12/01.
#define TODAYS_HEADERS "exec insert into salesmain(invoice,dat,party,trans,netamt,gd) values(5,'11/23/2026','RAM','C',100,90),(6,'11/23/2026','RAMESH','D',25.5,null),(7,'2026-11-23','OTHER','C',1000,null),(8,'11/22/2026','OLD','C',1,null)\n" \
    "exec insert into purchasemain(pono,dat,party,trans,netamt) values(8,'11/23/2026','RAM','D',300),(9,'11/22/2026','RAM','C',40),(10,'11/23/2026','RAMESH','C',60),(11,'12/2/2026','RAM','C',5)\n"
const Case Reports[] = {
    {"the day books list today's headers by their exact date text", R"(open db
grid day book grid=0,1=Date
grid day book grid=0,7=gd
rows day book grid=1
field Total (Rs.)=0
)" TODAYS_HEADERS R"(open sale
open db
list day book grid=5,11/23/2026,RAM,C,,,100,90 | 6,11/23/2026,RAMESH,D,,,25.5,
field Total (Rs.)=125.5
open pdb
grid day book grid=0,0=pono
list day book grid=8,11/23/2026,RAM,D,300 | 10,11/23/2026,RAMESH,C,60
field Total (Rs.)=360)"},
    {"a register lists a span of month-first texts", R"(exec insert into salesmain(invoice,dat,party,trans,netamt) values(3,'11/10/2025','RAM','C',7),(4,'12/30/2025','RAM','C',9)
open dwsrpt
date From=11/01/2026
date To=11/30/2026
click &Show
grid register grid=0,0=
grid register grid=0,1=invoice
list register grid=,1,11/20/2026,RAM,C,40 | ,1,11/20/2026,RAM,D,12.5 | ,3,11/10/2025,RAM,C,7
field Total (Rs.)=59.5
date From=12/01/2025
date To=01/31/2026
click &Show
rows register grid=1
field Total (Rs.)=0)"},
    {"an empty register prints its frame", R"(open dtprpt
date From=01/01/2026
date To=01/02/2026
click &Show
click Print
printed                COMPANY NAME |  |                ADDRESS |  | ============================================== | Datewise Purchase Register | From 1/1/2026   To 1/2/2026 | ============================================== | pono   Date     party       trans  netamt | ---------------------------------------------- | ---------------------------------------------- | Total (Rs.)                            0 | ==============================================
status Printed Datewise Purchase Register 1/1/2026 to 1/2/2026: 13 lines)"},
    {"printed cells are cut and the amount right-justified", R"(exec delete from salesmain
exec insert into salesmain(invoice,dat,party,trans,netamt) values(123456,'11/23/2026','SIDDHIVINAYAK MEDICOS','D',12345678),(7,'11/22/2026','RAM','C',37.5)
open dwsrpt
date From=11/22/2026
date To=11/23/2026
click &Show
click Print
line 5=Datewise Sales Register
line 6=From 11/22/2026   To 11/23/2026
line 8=invoice   Date     party       trans  netamt
line 10=  12345 11/23/2026 SIDDHIVINAYAK M D 1234567
line 11=  7     11/22/2026 RAM             C    37.5
line 13=Total (Rs.)                            12345715.5)"},
    {"a clicked cell goes to the invoice screen, as typed", TODAYS_HEADERS R"(open sale
open dwsrpt
click &Show
cell register grid=1,4
open sale
field Invoice No :=C
field C/D=RAM
said Enter C/D only
open dwsrpt
cell register grid=1,1
open sale
field Invoice No :=5
field C/D=
open pur
open dtprpt
click &Show
cell register grid=1,5
open pur
field Purchse Order No :=300
field C/D=D)"},
    {"a party register filters by party and prints it", R"(exec insert into salesmain(invoice,dat,party,trans,netamt) values(3,'11/10/2025','RAM','C',7),(4,'12/30/2025','RAMESH','C',9)
open prsale
type Party:=ra
shown party search grid=yes
cell party search grid=1,0
field Party:=RAM
shown party search grid=no
date From Date=11/01/2025
date To Date=12/31/2025
set Party:=ram
click &Show
list register grid=,1,11/20/2026,RAM,C,40 | ,1,11/20/2026,RAM,D,12.5 | ,3,11/10/2025,RAM,C,7
field Total (Rs.)=59.5
click Print
line 5=Partywise Sales Register
line 6=Party: ram
line 7=From Date 11/1/2025   To Date 12/31/2025)"},
    {"Escape in the sales party register hides its grid for good", TODAYS_HEADERS R"(open prsale
type Party:=R
key Party:=Escape
shown register grid=no
shown party search grid=yes
set Party:=RAM
click &Show
shown register grid=no
rows register grid=2
open prpur
type Party:=R
key Party:=Escape
shown register grid=yes
set Party:=RAM
click &Show
list register grid=,8,11/23/2026,RAM,D,300)"},
    {"the purchase reports read the purchases", TODAYS_HEADERS R"(open dtprpt
date From=11/01/2026
date To=11/30/2026
click &Show
list register grid=,1,11/20/2026,RAM,C,40 | ,1,11/20/2026,RAM,D,95 | ,8,11/23/2026,RAM,D,300 | ,9,11/22/2026,RAM,C,40 | ,10,11/23/2026,RAMESH,C,60
field Total (Rs.)=535
click Print
line 5=Datewise Purchase Register
open prpur
date From Date=11/01/2026
date To Date=11/30/2026
set Party:=RAM
click &Show
list register grid=,1,11/20/2026,RAM,C,40 | ,1,11/20/2026,RAM,D,95 | ,8,11/23/2026,RAM,D,300 | ,9,11/22/2026,RAM,C,40
field Total (Rs.)=475
click Print
line 5=Partywise Purchase Register
line 6=Party: RAM)"},
    {"stock shows a product's figures, its codes, and nothing for one never bought", R"(open stksum
type Product Name=pa
field Product Name=PA
rows product grid=3
cell product grid=0,0
cell product grid=1,2
said  Wrong selection | Wrong Selection
cell product grid=1,0
field Product Id=1
field Company Name=CIPLA LTD
field company code=CIP
field Total Stock:=14
field Used Stock:=0
field Available Stock:=14
rows item-code grid=3
cell item-code grid=1,0
field Item Code=8901
field MRP=9.5
clear Product Name
type Product Name=ZIN
cell product grid=1,1
field Product Name=ZINCOVIT
field Total Stock:=
field Used Stock:=
field Available Stock:=
rows item-code grid=1)"},
    {"Enter on a stock product takes its name only", R"(open stksum
type Product Name=Z
key Product Name=Down
key product grid=Return
field Product Name=ZINCOVIT
field Product Id=
shown product grid=no)"},
};

// Whatever is typed reaches the file as typed; nothing typed breaks a series or a figure.
#define MISMATCH "ended Data type mismatch in criteria expression.\n"
const Case Inputs[] = {
    {"a join typed into a name is stored as typed", R"(open sale
type C/D=D
set Party:=SRI NEW RIGHT JOIN ST STORE ON MAIN
)" LINE("8901", "1") R"(sql select party from salesmain where invoice=3 and trans='D' => SRI NEW RIGHT JOIN ST STORE ON MAIN
sql select ac from ledger where refno=2 and type='payment' => SRI NEW RIGHT JOIN ST STORE ON MAIN)"},
    {"a receipt number empty or beyond sixteen bits fails; the series goes on", R"(open rcpt
set Receipt No=
)" RECEIPT("RAM", "CASH", "30") MISMATCH R"(set Receipt No=40000
)" RECEIPT("RAM", "CASH", "30") R"(ended Overflow
changed
set Receipt No=-32768
)" RECEIPT("RAM", "CASH", "30") R"(sql select refno,credit from ledger where refno<0 => -32768,30)"},
    {"a word in the invoice number is refused before the header", R"(open sale
type C/D=D
set Party:=RAMESH
set Invoice No :=9-1
)" LINE("8901", "1") MISMATCH R"(sql select invoice,typeof(invoice) from salesmain where trans='D' order by invoice => 1,real | 2,real
clear C/D
type C/D=D
field Invoice No :=3)"},
    {"empty or wordy master numbers are refused", R"(open sm
clear Party ID
type Party Name :=NEW PARTY
click &Save
)" MISMATCH R"(open pm
click &Add
type search=CIP
cell company list=1,0
field Product Sr. No=4
set Product Sr. No=2A
type Product Name=CROCIN
type Item Code=8911
click &Save
)" MISMATCH R"(changed)"},
    {"a huge quantity overflows before its step writes, and no figure is infinite", NEW_CREDIT_SALE LINE("8901", "1E39") R"(ended Overflow
sql select stk,usedqty from stock where prodname='PANADOL' => 10,0 | 4,0
sql select count(*) from sales where party='RAMESH' => 1
type item code=8901
key item code=Return
set Rate=1E300
clear Qty
type Qty=1E10
ended Overflow
sql select count(*) from (select qty||amount as v from sales union all select stk||usedqty from stock union all select debit||balance from ledger) where v like '%inf%' => 0)"},
    {"a second statement is refused with its reason", R"(open cmpmst
type Company Code=x'; delete from sales; --
click Save
ended Unable to execute multiple statements at a time
changed)"},
    {"widths go to the columns they mean", R"(open rcpt
)" RECEIPT("RAM", "CASH", "5") R"(width receipt list=Name_of_Account=3000
open db
width day book grid=party=3000
open prsale
type Party:=RAM
width party search grid=suppname=3000)"},
};

} // namespace

class ScreensTest : public QObject {
    Q_OBJECT
private slots:
    // Each case on a fresh copy of the shared shop, named by its table and its own name
    // ("test_screens 'cases:sales: opening'" runs one).
    void cases_data()
    {
        QTest::addColumn<QString>("steps");
        const auto add = [](const char *table, const auto &cases) {
            for (const Case &c : cases)
                QTest::addRow("%s: %s", table, c.name) << QString::fromUtf8(c.steps);
        };
        add("sales", Sales);
        add("purchases", Purchases);
        add("masters", Masters);
        add("accounts", Accounts);
        add("reports", Reports);
        add("inputs", Inputs);
    }
    void cases()
    {
        QFETCH(QString, steps);
        test::StepDesk desk;
        desk.run(steps);
    }
};

VANTREL_TEST_MAIN(ScreensTest)
#include "test_screens.moc"
