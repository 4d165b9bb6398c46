#!/usr/bin/python3
"""An SMTP server for the tests that keeps what it receives: each message goes
to <folder>/<n>.eml, its envelope to <folder>/<n>.envelope (MAIL FROM on the
first line, then one recipient per line). Options: STARTTLS or implicit TLS
with a given certificate, AUTH (PLAIN and/or LOGIN) with one user and password,
addresses refused at RCPT. Writes <folder>/ready when it listens; ends on
SIGTERM."""
import argparse
import asyncio
import os
import signal
import ssl
import threading

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

parser = argparse.ArgumentParser()
parser.add_argument("--port", type=int, required=True)
parser.add_argument("--folder", required=True)
parser.add_argument("--tls", choices=["none", "starttls", "implicit"], default="none")
parser.add_argument("--cert")
parser.add_argument("--key")
parser.add_argument("--user")
parser.add_argument("--password")
parser.add_argument("--mechanisms", default="PLAIN,LOGIN")
parser.add_argument("--refuse", action="append", default=[])
options = parser.parse_args()


class Keeper:
    def __init__(self):
        self.count = 0
        self.lock = threading.Lock()

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address.lower() in (a.lower() for a in options.refuse):
            return "550 5.1.1 <%s>: Recipient address rejected" % address
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        with self.lock:
            self.count += 1
            number = self.count
        base = os.path.join(options.folder, "%d" % number)
        with open(base + ".eml.part", "wb") as out:
            out.write(envelope.original_content)
        with open(base + ".envelope", "w") as out:
            out.write("\n".join([envelope.mail_from] + envelope.rcpt_tos) + "\n")
        os.rename(base + ".eml.part", base + ".eml")
        return "250 Message accepted for delivery"


def authenticator(server, session, envelope, mechanism, auth_data):
    if not isinstance(auth_data, LoginPassword):
        return AuthResult(success=False, handled=False)
    good = (auth_data.login.decode() == options.user and
            auth_data.password.decode() == options.password)
    # handled=False: the server itself answers a refusal with its 535.
    return AuthResult(success=good, handled=False)


tls_context = None
if options.tls != "none":
    tls_context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    tls_context.load_cert_chain(options.cert, options.key)

auth = options.user is not None
excluded = [m for m in ("PLAIN", "LOGIN") if m not in options.mechanisms.split(",")]


class Server(Controller):
    def factory(self):
        return SMTP(self.handler,
                    hostname="test.smtp.local",
                    tls_context=tls_context if options.tls == "starttls" else None,
                    require_starttls=options.tls == "starttls",
                    authenticator=authenticator if auth else None,
                    auth_required=auth,
                    auth_require_tls=False,
                    auth_exclude_mechanism=excluded,
                    data_size_limit=200 * 1024 * 1024,
                    enable_SMTPUTF8=True)


controller = Server(Keeper(), hostname="127.0.0.1", port=options.port,
                    ssl_context=tls_context if options.tls == "implicit" else None,
                    ready_timeout=10)
controller.start()
open(os.path.join(options.folder, "ready"), "w").close()
stop = threading.Event()
signal.signal(signal.SIGTERM, lambda *_: stop.set())
signal.signal(signal.SIGINT, lambda *_: stop.set())
while not stop.wait(1):
    pass
controller.stop()
