CREATE DATABASE IF NOT EXISTS chosen;
USE chosen;
CREATE TABLE IF NOT EXISTS email (id INTEGER PRIMARY KEY,from_fld varchar(127) NOT NULL,to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT NULL,mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT NULL,numAttach INTEGER NOT NULL DEFAULT 0);
CREATE TABLE IF NOT EXISTS attachments (id INT,type_fld varchar(127) NOT NULL,base64 INT,filename_fld varchar(127) NOT NULL,attach_fld LONGBLOB NOT NULL);
CREATE TABLE IF NOT EXISTS origemail (id INTEGER PRIMARY KEY,orig_fld LONGBLOB NOT NULL);
CREATE TABLE IF NOT EXISTS tags (id INTEGER PRIMARY KEY,cat_fld varchar(127) NOT NULL,key_fld varchar(127) NOT NULL,priority_fld INT DEFAULT 0,notes_fld mediumtext NOT NULL);
SET CHARACTER SET utf8;
INSERT INTO email VALUES(1000,'Ann Ö''Hara <ann@example.com>','Bob <bob@example.com>','Grüße, "quoted" and C:\\\\temp','2007-01-08 14:03:09','INBOX','ann@example.com','Hello Bob,
grüße from C:\\\\temp
',0);
INSERT INTO tags VALUES(1000,'Work','a ''quoted'' key',2,'note with \\\\ and "dq"');
INSERT INTO origemail VALUES(1000,'Return-Path: <ann@example.com>
From: Ann =?UTF-8?Q?=C3=96''Hara?= <ann@example.com>
To: Bob <bob@example.com>
Subject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?= "quoted"
Date: Mon, 8 Jan 2007 14:03:09 +0000

Hello Bob,
grüße — 😀 from C:\\\\temp
');
INSERT INTO email VALUES(1001,'carl@example.com','dev@lists.example.org','Release notes','2007-01-09 08:00:00','Lists/Dev','carl@example.com','Notes follow.
From the top, please.
',0);
INSERT INTO origemail VALUES(1001,'From carl@example.com Tue Jan  9 08:00:00 2007
From: carl@example.com
Subject: Release notes

Notes follow.
From the top, please.
');
INSERT INTO email VALUES(1002,'Dee \\ Backslash <dee@example.com>','ann@example.com','Tab	here','2007-01-10 09:15:00','Sent','dee@example.com','line one
line two
line three',0);
INSERT INTO tags VALUES(1002,'','',1,'');
INSERT INTO email VALUES(1003,'fay@example.com','ann@example.com','Two texts','2007-01-11 10:00:00','INBOX','fay@example.com','See attached.

',2);
INSERT INTO attachments VALUES(1003,'text/plain',0,'notes.txt','plain text with ''quote'' and \\\\');
INSERT INTO attachments VALUES(1003,'TEXT/HTML',0,'page.html','<p>Hi</p>');
INSERT INTO email VALUES(1004,'Eve "Quote" <eve@example.com>','ann@example.com','Ünïcödé 😀 subject','2007-02-28 23:59:59','INBOX','eve@example.com','',4);
INSERT INTO attachments VALUES(1004,'image/jpeg',1,'photo.jpg','MIME-Version: 1.0
Content-Type: image/jpeg; name="photo.jpg"
Content-Transfer-Encoding: Base64

/9j/4AAQ
SkZJRg==');
INSERT INTO attachments VALUES(1004,'application/octet-stream',0,'blob.bin','raw bytes');
INSERT INTO attachments VALUES(1004,'text/csv',0,'table "v2".csv','a,b
1,2');
INSERT INTO attachments VALUES(1004,'application/pdf',1,'odd.pdf','JVBER''i0x\\\\');
INSERT INTO email VALUES(1005,'gus@example.com','ann@example.com','No date','not a date','INBOX','gus@example.com','Body of six.',0);
INSERT INTO email VALUES(1006,'gus@example.com','ann@example.com','No date','not a date','INBOX','gus@example.com','Body of six.',0);
