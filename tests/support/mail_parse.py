#!/usr/bin/python3
"""Reads one message file the way a mail program would (Python's email package)
and prints what a reader sees of it, one "key=value" per line, for the tests to
compare: decoded headers, the text part's type, charset, transfer encoding and
decoded text, and each attachment's decoded name, size and SHA-256."""
import email
import email.policy
import hashlib
import sys

with open(sys.argv[1], "rb") as source:
    message = email.message_from_binary_file(source, policy=email.policy.default)

for name in ("From", "To", "Cc", "Bcc", "Subject", "Organization", "X-Priority", "Importance",
             "MIME-Version", "Message-ID", "Date"):
    if message[name] is not None:
        print(f"header.{name}={str(message[name])}")
if message["From"] is not None:
    address = message["From"].addresses[0]
    print(f"from.name={address.display_name}")
    print(f"from.address={address.addr_spec}")
print(f"defects={len(message.defects)}")

index = 0
for part in message.walk():
    if part.is_multipart():
        continue
    if part.get_content_disposition() == "attachment":
        data = part.get_payload(decode=True)
        print(f"attachment.{index}.name={part.get_filename()}")
        print(f"attachment.{index}.size={len(data)}")
        print(f"attachment.{index}.sha256={hashlib.sha256(data).hexdigest()}")
        index += 1
    else:
        print(f"text.type={part.get_content_type()}")
        print(f"text.charset={part.get_content_charset()}")
        print(f"text.cte={part['Content-Transfer-Encoding']}")
        text = part.get_content().replace("\r\n", "\n")
        print("text.body=" + text.replace("\\", "\\\\").replace("\n", "\\n"))
print(f"attachments={index}")
