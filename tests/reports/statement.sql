-- Statement 1 has balances of all three kinds and operations of every sort, statement 2 neither.
insert into tav_operations_header (id,filename,h1,h2,h3,h6,h7,h8,h10,h11,perb,pere,vid) values (1,'a.rtf','7701234567','770101001','ООО "Рога & Копыта"','x','18210101011011000110','Налог на прибыль','45286552000','рубль','01.01.2011','31.03.2011','1');
insert into tav_operations_header (id,filename,h1,h2,h3,h6,h7,h8,h10,h11,perb,pere) values (2,'b.rtf','1','2','#b <i>','x','3','4','5','6','01.04.2011','30.06.2011');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','налог','-1000,5');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','пеня','20');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.01.2011','штраф','0');
insert into tav_operations (id,p3,p9,p13) values (1,'Сальдо на 01.04.2011','налог','77777');
insert into tav_operations (id,p1,p2,p3,p6,p7,p9,p10,p14) values (1,'15.01.2011','28.01.2011','Начислено','17','14.01.2011','налог','1234567,8','-1235568,3');
insert into tav_operations (id,p1,p2,p3,p6,p7,p9,p11,p14) values (1,'02.02.2011','','Уплата <срочно>','18','01.02.2011','налог','2000000','764431,7');
insert into tav_operations (id,p1,p3,p9,p10,p11,p14) values (1,'03.02.2011','Пеня','пеня','35,25','5','764401,45');
insert into tav_operations (id,p1,p3,p9,p10,p11,p14) values (1,'04.02.2011','Прочее','проценты','1','0','764400,45');
