-- The one shop every test starts from, C++ and desktop alike. Each row has a neighbour that a
-- too-wide WHERE would touch: document 1 in both modes and a second of the same mode, another
-- party's document, two products of one company and one of another, a second lot of PANADOL, a
-- product with no lot, receipts and payments sharing numbers, parties whose names start alike,
-- an earlier day (11/20) and a later month (12/01) around today, 11/23/2026.
insert into companymaster(companyname,cmpid) values ('CIPLA LTD','CIP'), ('SUN PHARMA','SUN');
insert into productmaster(cmpid,mfgname,psrno,prodname,model,rate,boxno) values
    ('CIP','CIPLA LTD',1,'PANADOL','8901',12.5,'B1'),
    ('CIP','CIPLA LTD',2,'PANTOCID 40','8902',85,'B2'),
    ('CIP','CIPLA LTD',3,'ZINCOVIT','8903',40,'B3'),
    ('SUN','SUN PHARMA',1,'SUNCROS','7701',30,'S1');
insert into stock(cmpid,pono,psrno,prodname,model,party,totqty,rate,amt,usedqty,stk) values
    ('CIP','1',1,'PANADOL','8901','RAM',10,9.5,95,0,10),
    ('CIP','2',1,'PANADOL','8901','RAVI MEDICALS',4,12.5,50,0,4),
    ('CIP','1',2,'PANTOCID 40','8902','RAM',6,80,480,1,5),
    ('SUN','1',1,'SUNCROS','7701','RAM',20,2,40,0,20);
insert into suppliermaster(ID,suppname,city) values (1,'RAM','PUNE'), (2,'RAMESH','PUNE'), (3,'RAVI MEDICALS','NASIK');
insert into salesmain(invoice,dat,party,trans,netamt) values
    (1,'11/20/2026','RAM','C',40), (1,'11/20/2026','RAM','D',12.5), (2,'12/01/2026','RAVI MEDICALS','D',80);
insert into sales(cmpid,psrno,invoice,prodname,party,model,qty,rate,amount,trans,status) values
    ('CIP',3,'1','ZINCOVIT','RAM','8903',1,40,40,'C','u'),
    ('CIP',1,'1','PANADOL','RAM','8901',1,12.5,12.5,'D','u'),
    ('CIP',3,'2','ZINCOVIT','RAVI MEDICALS','8903',2,40,80,'D','u');
insert into purchasemain(pono,dat,party,trans,netamt) values
    (1,'11/20/2026','RAM','C',40), (1,'11/20/2026','RAM','D',95), (2,'12/01/2026','RAVI MEDICALS','D',50);
insert into purchase(cmpid,psrno,pono,prodname,party,model,qty,rate,amount,trans,status) values
    ('SUN',1,'1','SUNCROS','RAM','7701',20,2,40,'C','u'),
    ('CIP',1,'1','PANADOL','RAM','8901',10,9.5,95,'D','u'),
    ('CIP',1,'2','PANADOL','RAVI MEDICALS','8901',4,12.5,50,'D','u');
insert into ledger(refno,dat,ac,debit,credit,accnm,type,balance) values
    (1,'11/20/2026','RAVI MEDICALS',null,100,'CASH','receipt',100),
    (1,'11/20/2026','RAM',12.5,null,null,'payment',87.5),
    (2,'12/01/2026','RAM',null,50,'CASH','receipt',137.5);
