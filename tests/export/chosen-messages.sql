-- Messages chosen for the edges of the export formats, put into an archive as they stand:
-- raw sources with and without their own "From " line, non-ASCII, a plist trailer,
-- backslashes (the archive holds every backslash of the mail twice) and both kinds of quote,
-- tabs and CR LF line ends, multipart/alternative and multipart/mixed attachments, base64
-- data with a quote in it, tags rows with all, some or none of their values, a date that
-- does not parse, and message 7, whose email row the tests delete once it is listed.
BEGIN TRANSACTION;
-- A raw source without its own "From " line, with non-ASCII and a plist trailer; tagged.
INSERT INTO email VALUES(1,'Ann Ö''Hara <ann@example.com>','Bob <bob@example.com>',
  'Grüße, "quoted" and C:\\temp','2007-01-08 14:03:09','INBOX','ann@example.com',
  'Hello Bob,
grüße from C:\\temp
',0);
INSERT INTO origemail VALUES(1,'Return-Path: <ann@example.com>
From: Ann =?UTF-8?Q?=C3=96''Hara?= <ann@example.com>
To: Bob <bob@example.com>
Subject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?= "quoted"
Date: Mon, 8 Jan 2007 14:03:09 +0000

Hello Bob,
grüße — 😀 from C:\\temp
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict><key>flags</key><integer>8590195713</integer></dict></plist>
');
INSERT INTO tags VALUES(1,'Work','a ''quoted'' key',2,'note with \\ and "dq"');
-- A raw source that is its own separator, with a "From " line in its body.
INSERT INTO email VALUES(2,'carl@example.com','dev@lists.example.org','Release notes',
  '2007-01-09 08:00:00','Lists/Dev','carl@example.com','Notes follow.
From the top, please.
',0);
INSERT INTO origemail VALUES(2,'From carl@example.com Tue Jan  9 08:00:00 2007
From: carl@example.com
Subject: Release notes

Notes follow.
From the top, please.
');
-- Rebuilt: a tab in the subject, CR LF line ends, a backslash in the sender; a tags row with
-- a priority alone.
INSERT INTO email VALUES(3,'Dee \\ Backslash <dee@example.com>','ann@example.com',
  'Tab' || char(9) || 'here','2007-01-10 09:15:00','Sent','dee@example.com',
  'line one' || char(13,10) || 'line two' || char(13,10) || 'line three',0);
INSERT INTO tags VALUES(3,'','',1,'');
-- Rebuilt with two plain text attachments: multipart/alternative.
INSERT INTO email VALUES(4,'fay@example.com','ann@example.com','Two texts',
  '2007-01-11 10:00:00','INBOX','fay@example.com','See attached.

ATTACHMENTS:
notes.txt
page.html
',2);
INSERT INTO attachments VALUES(4,'text/plain','notes.txt',0,'  plain text with ''quote'' and \\

');
INSERT INTO attachments VALUES(4,'TEXT/HTML','page.html',0,'<p>Hi</p>
');
-- Rebuilt, the attachment list alone as body, four attachments: multipart/mixed; a tags row
-- whose values are all empty.
INSERT INTO email VALUES(5,'Eve "Quote" <eve@example.com>','ann@example.com',
  'Ünïcödé 😀 subject','2007-02-28 23:59:59','INBOX','eve@example.com','ATTACHMENTS:
photo.jpg
blob.bin
table.csv
odd.pdf
',4);
INSERT INTO attachments VALUES(5,'image/jpeg','photo.jpg',1,'/9j/4AAQ
SkZJRg==
');
INSERT INTO attachments VALUES(5,'application/octet-stream','blob.bin',0,'raw bytes');
INSERT INTO attachments VALUES(5,'text/csv','table "v2".csv',0,'a,b
1,2
');
INSERT INTO attachments VALUES(5,'application/pdf','odd.pdf',1,'JVBER''i0x\\');
INSERT INTO tags VALUES(5,'','','','');
-- Rebuilt with a date that does not parse.
INSERT INTO email VALUES(6,'gus@example.com','ann@example.com','No date','not a date','INBOX',
  'gus@example.com','Body of six.',0);
-- Listed, then gone from the archive before the export.
INSERT INTO email VALUES(7,'hal@example.com','ann@example.com','Gone','2007-03-01 00:00:00',
  'INBOX','hal@example.com','Body of seven.',0);
COMMIT TRANSACTION;
