"""Reads an mbox file with Python's mailbox module and prints, as JSON, the sender (the
whole From header and its address alone) and the subject of every message it finds, as a
mail program shows them: encoded words decoded (a byte that its charset does not know
becomes U+FFFD), 8-bit header text read as UTF-8, white space collapsed."""
import email.header
import email.utils
import json
import mailbox
import sys


def decoded(value):
    if value is None:
        return ""
    text = ""
    for part, charset in email.header.decode_header(value):
        if isinstance(part, bytes):
            if charset in (None, "unknown-8bit"):
                charset = "utf-8"
            part = part.decode(charset, errors="replace")
        else:
            # 8-bit bytes arrive escaped as surrogates.
            part = part.encode("utf-8", "surrogateescape").decode("utf-8", "replace")
        text += part
    return " ".join(text.split())


def main(path):
    messages = []
    for message in mailbox.mbox(path):
        sender = decoded(message["from"])
        messages.append({"from": sender, "address": email.utils.parseaddr(sender)[1],
                         "subject": decoded(message["subject"])})
    json.dump(messages, sys.stdout, ensure_ascii=False)


if __name__ == "__main__":
    main(sys.argv[1])
