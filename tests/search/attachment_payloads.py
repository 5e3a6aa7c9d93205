#!/usr/bin/env python3
"""Prints the SHA-256 of every part payload of the given mail files, decoded by Python's own
email package: mbox files, .eml files, and folders of Apple Mail .emlx files (whose
Attachments folders hold the parts that partial messages left out). The tests compare the
attachments the archive decodes with these digests."""
import email
import hashlib
import mailbox
import os
import sys


def print_parts(message):
    for part in message.walk():
        ctype = part.get_content_type()
        if not part.is_multipart():
            data = part.get_payload(decode=True)
        elif ctype.startswith("message/") and ctype != "message/rfc822":
            # Python reads a delivery status as header blocks; the part's body is its bytes.
            data = part.as_bytes().split(b"\n\n", 1)[-1]
        else:
            continue
        if data is not None:
            print(hashlib.sha256(data).hexdigest())


def print_emlx(raw):
    head, _, rest = raw.partition(b"\n")
    if head.strip().isdigit():
        rest = rest[: int(head.strip())]
    else:
        rest = raw
    print_parts(email.message_from_bytes(rest))


for path in sys.argv[1:]:
    if os.path.isdir(path):
        for root, _, files in os.walk(path, followlinks=True):
            for name in files:
                with open(os.path.join(root, name), "rb") as f:
                    raw = f.read()
                if "/Attachments/" in root + "/":
                    print(hashlib.sha256(raw).hexdigest())
                elif name.endswith(".emlx"):
                    print_emlx(raw)
    elif path.endswith(".mbox"):
        for message in mailbox.mbox(path):
            print_parts(email.message_from_bytes(message.as_bytes()))
    else:
        with open(path, "rb") as f:
            print_parts(email.message_from_bytes(f.read()))
