#!/usr/bin/python3
"""A mail server for tests, on a free port of 127.0.0.1, until it is ended.

    smtp_server.py FOLDER [options]

FOLDER/port holds its port once it listens. Each mail that it takes is FOLDER/N.eml, byte for byte, with its envelope in
FOLDER/N.json; FOLDER/asked gets a line for each recipient that it was asked about; FOLDER/hangs is there once it has taken
a mail that it will never answer.
"""

import argparse
import asyncio
import json
import os
import pathlib
import ssl
import subprocess

from aiosmtpd.smtp import SMTP, AuthResult, syntax


def parsed():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--security", choices=("plain", "starttls", "tls"), default="plain")
    parser.add_argument("--certificate-for", default="DNS:localhost,IP:127.0.0.1")
    parser.add_argument("--login", nargs=2, metavar=("USER", "SECRET"))
    parser.add_argument("--greet", help="the first line instead of 220")
    parser.add_argument("--recipient", help="the answer to RCPT")
    parser.add_argument("--data", help="the answer to the mail itself")
    parser.add_argument("--times", type=int, default=1 << 30, help="so often one of these two, then 250")
    parser.add_argument("--silent", action="store_true", help="says nothing at all")
    parser.add_argument("--drop", choices=("before-data", "at-data", "after-data"))
    parser.add_argument("--hang", action="store_true", help="takes the mail and never answers")
    return parser.parse_args()


class Handler:
    def __init__(self, options):
        self.options, self.left, self.count = options, options.times, 0

    def answer(self, given):
        if given and self.left > 0:
            self.left -= 1
            return given
        return None

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        with open(self.options.folder / "asked", "a", encoding="utf-8") as log:
            log.write(address + "\n")
        if answer := self.answer(self.options.recipient):
            return answer
        envelope.rcpt_tos.append(address)
        return "250 fine"

    async def handle_DATA(self, server, session, envelope):
        if self.options.drop == "after-data":
            server.transport.abort()
            return "250 nobody hears this"
        if self.options.hang:
            (self.options.folder / "hangs").touch()
            await asyncio.sleep(3600)
        if answer := self.answer(self.options.data):
            return answer
        self.count += 1
        target = self.options.folder / str(self.count)
        target.with_suffix(".json").write_text(json.dumps({
            "from": envelope.mail_from, "to": envelope.rcpt_tos, "tls": session.ssl is not None,
            "user": session.auth_data.decode() if session.auth_data else ""}))
        part = target.with_suffix(".part")
        part.write_bytes(envelope.original_content)
        part.rename(target.with_suffix(".eml"))
        return "250 taken as number " + str(self.count)


class Server(SMTP):
    def __init__(self, handler, options, **more):
        super().__init__(handler, hostname="mail.test", **more)
        self.options = options

    async def push(self, status):
        if self.options.greet and str(status).startswith("220 "):
            await super().push(self.options.greet)
            self.transport.close()
            return
        await super().push(status)

    @syntax("DATA")
    async def smtp_DATA(self, arg):
        if self.options.drop == "before-data":
            self.transport.abort()
            return
        if self.options.drop == "at-data":
            await self.push("354 go on")
            self.transport.abort()
            return
        await super().smtp_DATA(arg)


def context_of(options):
    if options.security == "plain":
        return None
    key, certificate = options.folder / "key.pem", options.folder / "cert.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                    "-keyout", key, "-out", certificate, "-days", "2", "-subj", "/CN=test",
                    "-addext", "subjectAltName=" + options.certificate_for],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    return context


class Login:
    def __init__(self, user, secret):
        self.user, self.secret = user.encode(), secret.encode()

    def __call__(self, server, session, envelope, mechanism, data):
        if data.login == self.user and data.password == self.secret:
            return AuthResult(success=True, auth_data=data.login)
        return AuthResult(success=False, handled=False)


async def serve(options):
    loop = asyncio.get_running_loop()
    context, handler = context_of(options), Handler(options)
    more = {"loop": loop}
    if options.security == "starttls":
        more |= {"tls_context": context, "require_starttls": True}
    if options.login:
        more |= {"authenticator": Login(*options.login), "auth_required": True,
                 "auth_require_tls": options.security == "starttls"}

    def made():
        return asyncio.Protocol() if options.silent else Server(handler, options, **more)

    server = await loop.create_server(made, "127.0.0.1", 0, ssl=context if options.security == "tls" else None)
    part = options.folder / "port.part"
    part.write_text(str(server.sockets[0].getsockname()[1]))
    os.rename(part, options.folder / "port")
    await server.serve_forever()


asyncio.run(serve(parsed()))
