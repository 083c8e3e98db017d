"""Mail of a fire arrives byte for byte, by STARTTLS and a login; a refusal for now is tried again after a crash, and one
that may have been sent is not."""

import email
import email.policy
import re
import time

import delivery
import service as rig

STATION = "Ærø <i>& \N{EURO SIGN} 'x' `y` $(z)"
ADDRESS = "ann@mail.example.org"


def toml(server, **more):
    rows = {"method": "smtp", "host": "127.0.0.1", "port": server.port, "security": "none", "from": "vigil@example.org",
            **more}
    return "[mail]\n" + "".join(f'{key} = {value if isinstance(value, int) else chr(34) + value + chr(34)}\n'
                                for key, value in rows.items())


def expected(headers, subject):
    """The whole mail."""
    return (f"Date: {headers['Date']}\r\nFrom: \"Vigil\"\r\n <vigil@example.org>\r\nTo: <{ADDRESS}>\r\n"
            f"Message-ID: {headers['Message-ID']}\r\nSubject: {subject}\r\nMIME-Version: 1.0\r\n"
            "Content-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: 7bit\r\n"
            "Auto-Submitted: auto-generated\r\n\r\n???\r\n").encode()


def arrives(path):
    with delivery.MailServer(path, "--security", "starttls", "--login", "ann", "pass word") as server, rig.service() as it:
        delivery.settings(it, toml(server, security="starttls", user="ann", secret="mail",
                                   **{"ca-file": str(path / "cert.pem")}), mail="pass word")
        delivery.site(it, STATION, Frost=(delivery.MAIL, ADDRESS), Two=(delivery.MAIL, f"{ADDRESS}, eve@example.org"))
        it.start()
        sent = delivery.attempts(it, "Frost", ["succeeded"])[0]
        raw, envelope = server.mail(1)
        mail = email.message_from_bytes(raw, policy=email.policy.default)
        rig.require(mail["Subject"] == f"Vigil for {STATION}", f"the subject is {mail['Subject']}")
        encoded = re.search(rb"\r\nSubject: (.*?)\r\nMIME", raw, re.S).group(1).decode()
        rig.require(raw == expected(mail, encoded), f"it came as {raw}")
        rig.require(all(len(line) <= 76 for line in raw.split(b"\r\n")), f"a line is too long: {raw}")
        rig.require(re.fullmatch(r"<vigil\.\w+\.\w+@example\.org>", mail["Message-ID"]), mail["Message-ID"])
        rig.require(abs(email.utils.parsedate_to_datetime(mail["Date"]).timestamp() - time.time()) < 600, mail["Date"])
        rig.require(envelope == {"from": "vigil@example.org", "to": [ADDRESS], "tls": True, "user": "ann"}, str(envelope))
        rig.require(sent["what"] == f"to {ADDRESS}: Vigil for {STATION}" and "250" in sent["detail"], str(sent))
        it.stop()
        rig.require(server.mails() == 1 and not it.actions("--monitor", "Two"), "two addresses in one row were taken")

        tried = it.vigil_alone("test", "mail", "bob@example.org")
        rig.require("It was sent" in tried.stdout and "250" in tried.stdout, tried.stdout)
        rig.require(server.mail(2)[1]["to"] == ["bob@example.org"], "the mail by hand went elsewhere")
        delivery.settings(it, toml(server, security="starttls", user="ann", secret="mail",
                                   **{"ca-file": str(path / "cert.pem")}), mail="wrong")
        tried = it.vigil_alone("test", "mail", "bob@example.org", status=1)
        rig.require("535" in tried.stdout and "trying again would not help" in tried.stdout, tried.stdout)


def is_tried_again(path):
    with delivery.MailServer(path, "--recipient", "451 4.7.1 come back later", "--times", "1") as server, \
            rig.service() as it:
        delivery.settings(it, toml(server))
        delivery.site(it, "Roof", Frost=(delivery.MAIL, ADDRESS))
        it.start()
        deferred = delivery.attempts(it, "Frost", ["deferred"])[0]
        rig.require("451 4.7.1 come back later" in deferred["detail"] and "tried again at" in deferred["detail"],
                    str(deferred))
        delivery.crash(it)
        delivery.let_time_pass(it, 3600)
        it.start()
        delivery.attempts(it, "Frost", ["deferred", "succeeded"])
        raw, _ = server.mail(1)
        mail = email.message_from_bytes(raw, policy=email.policy.default)
        rig.require(mail["Subject"] == "Vigil for Roof", mail["Subject"])
        it.stop()
        it.start()
        it.stop()
        delivery.attempts(it, "Frost", ["deferred", "succeeded"])
        rig.require(server.mails() == 1 and len(server.asked()) == 2, f"asked {server.asked()}")


def is_never_sent_twice(path):
    with delivery.MailServer(path, "--hang") as server, rig.service() as it:
        delivery.settings(it, toml(server))
        delivery.site(it, "Roof", Frost=(delivery.MAIL, ADDRESS))
        it.start()
        rig.until(server.asked, "the mail was under way")
        delivery.crash(it)
        it.start()
        open_one = delivery.attempts(it, "Frost", ["interrupted"])[0]
        rig.require("may have been sent" in open_one["detail"], str(open_one))
        delivery.let_time_pass(it, 3600)
        it.stop()
        rig.require(len(server.asked()) == 1, f"asked {server.asked()}")


def goes_nowhere(path):
    """A name with a quote in it, and nothing set up."""
    with delivery.MailServer(path) as server:
        for station, state, words in (('Roof", content:"x', "failed", "byte "), ("Roof", "not sent", "set up")):
            with rig.service() as it:
                delivery.settings(it, toml(server) if state == "failed" else "")
                delivery.site(it, station, Frost=(delivery.MAIL, ADDRESS), Text=(delivery.SMS, "4512345678"))
                it.start()
                for title, application in (("Frost", "Mail"), ("Text", "Messages")):
                    record = delivery.attempts(it, title, [state])[0]
                    rig.require(words in record["detail"] and f'tell application "{application}"' in record["detail"],
                                str(record))
                it.stop()
        rig.require(server.asked() == [], f"asked {server.asked()}")


def main():
    delivery.needs("python3-aiosmtpd", ["/usr/bin/python3", "-c", "import aiosmtpd"])
    delivery.needs("openssl", ["openssl", "version"])
    for part in (arrives, is_tried_again, is_never_sent_twice, goes_nowhere):
        with delivery.folder() as path:
            began = time.monotonic()
            part(path)
            print(f"{part.__name__}: {time.monotonic() - began:.1f} s")


main()
