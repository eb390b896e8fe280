-- Statement 4 is superseded, 5 differs from 1 in h6 only.
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (1,'770101001','1','18210101011011000110','Налог на "прибыль"_ФБ','45286552000','01.01.2011','31.03.2011',1,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (2,'770101001','1','18210301000011000110','НДС','45286552000','01.01.2010','31.12.2010',2,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (3,'770201001','1','18210101011011000110','Налог на прибыль','46000000000','01.01.2011','30.06.2011',3,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (4,'770101001','1','18210101011011000110','НДС','45286552000','01.01.2009','31.12.2009',Null,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (5,'770101001','2','18210101011011000110','Налог на "прибыль"_ФБ','45286552000','01.01.2011','31.03.2011',4,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (6,'770101001',Null,'18210101011011000110','Транспортный & <иной>','45286552000','01.01.2011','30.06.2011',Null,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (7,'770101001',Null,'18210301000011000110','НДС','45286552000','01.01.2011','31.03.2011',Null,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (8,'770201001',Null,'18210101011011000110','Налог','46000000000','01.01.2010','31.12.2010',Null,'7701234567','ООО "Ромашка"');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (9,'770101001',Null,'18210301000011000110','НДС','45286552000','01.01.2008','31.12.2008',Null,'7701234567','ООО "Ромашка"');
-- Another taxpayer's: 11 has an odd code, and no h6.
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (10,'500101001','1','18210301000011000110','НДС','46000000000','01.01.2011','31.12.2011',5,'5001007322','АО');
insert into tav_operations_header (id,h2,h6,h7,h8,h10,perb,pere,vid,h1,h3) values (11,'500101001',Null,'короткий','НДС','46000000000','01.01.2012','31.12.2012',6,'5001007322','АО');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','налог','-1000,5');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','пеня','20');
insert into tav_operations (id,p1,p3,p9,p10,p14) values (1,'15.01.2011','Начислено','налог','1234567,8','-1235548,3');
insert into tav_operations (id,p1,p3,p9,p11,p14) values (1,'02.02.2011','Уплата','налог','2000000','764451,7');
insert into tav_operations (id,p1,p3,p9,p11,p14) values (3,'02.02.2011','Уплата','штраф','7','7');
-- Every summed field of act 6 is another power or multiple; 7 has debt against debt, 8 negatives; 9 is all Null.
insert into tav_acts (id,p11,p112,p113,p114,p115,p121,p125,p211,p215,p221,p225,p231,p233,p24,p244,p251,p255,p26,p27,p281,p284,p291,p295,p31,p32,p312,p314,p321,p325,p1111,p41) values (6,'0,1','0,2','1000','20000','300000','5','6','11,11','0,89','22','1','33','1','44','1','55','1','66','77','88','1','99','1','1000000','0,5','0,25','0,25','1000001','0,01','9999999','9999999');
insert into tav_acts (id,p11,p121,p211,p31,p321) values (7,'100','100','0,004','200','200');
insert into tav_acts (id,p121,p211,p26,p31,p321) values (8,'-3','-1234567,895','0','-5','-7');
insert into tav_acts (id) values (9);
