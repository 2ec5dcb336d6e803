"""The other end of the message form tests: Python's standard email package.

  message_form_peer.py write        prints a multipart/form-data message
  message_form_peer.py read FILE    parses FILE, prints one line per part:
                                    name|filename|content type|hex of the bytes
"""
import email.parser
import email.policy
import sys
from email.message import EmailMessage
from email.mime.multipart import MIMEMultipart

POLICY = email.policy.default.clone(linesep="\r\n")


def write():
    form = MIMEMultipart("form-data", policy=POLICY)
    text = EmailMessage(policy=POLICY)
    text.set_content("h\u00e9llo world", disposition="form-data")
    text.set_param("name", "greeting", header="Content-Disposition")
    form.attach(text)
    blob = EmailMessage(policy=POLICY)
    blob.set_content(bytes(b for b in range(256) if b not in (10, 13)) * 2, "application", "octet-stream", cte="binary",
                     disposition="form-data", filename="\u20ac data.bin")
    blob.set_param("name", "blob", header="Content-Disposition")
    form.attach(blob)
    b64 = EmailMessage(policy=POLICY)
    b64.set_content(b"\x00\xff--\r\n", "image", "png", disposition="form-data", filename="p.png")
    b64.set_param("name", "picture", header="Content-Disposition")
    form.attach(b64)
    sys.stdout.buffer.write(form.as_bytes())


def read(path):
    with open(path, "rb") as f:
        message = email.parser.BytesParser(policy=POLICY).parse(f)
    for part in message.iter_parts():
        name = part.get_param("name", header="content-disposition")
        print("%s|%s|%s|%s" % (name, part.get_filename() or "", part.get("content-type", ""),
                               part.get_payload(decode=True).hex()))


if __name__ == "__main__":
    write() if sys.argv[1] == "write" else read(sys.argv[2])
