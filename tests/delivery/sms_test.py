"""Short messages of a fire go through the real daemon to a phone that is a folder: Unicode, and two parts."""

import delivery
import service as rig

LONG = "Vadehavet " + "å" * 80


def daemon(path):
    base = f"{path}/"
    for name in ("in", "out", "sent", "err", *(f"sms/{i}" for i in range(1, 6))):
        (path / name).mkdir(parents=True)
    (path / "smsd.conf").write_text(
        f"[gammu]\nmodel=dummy\nconnection=none\ndevice={path}\n[smsd]\nservice=files\ninboxpath={base}in/\n"
        f"outboxpath={base}out/\nsentsmspath={base}sent/\nerrorsmspath={base}err/\noutboxformat=detail\nloopsleep=1\n"
        "commtimeout=1\nchecksecurity=0\n")
    return delivery.running(["gammu-smsd", "-c", path / "smsd.conf"], path / "daemon.log")


def sent(path, number):
    """The text that the phone sent to that number, and in how many parts."""

    def look():
        files = list((path / "sent").glob(f"*_{number}_*"))
        return files if files and not list((path / "out").glob(f"*_{number}_*")) else None

    files = rig.until(look, f"the phone sent to {number}")
    rig.require(len(files) == 1, f"sent {files}")
    text, parts = "", 0
    for section in files[0].read_text().replace("\r", "").split("[SMSBackup")[1:]:
        lines = section.splitlines()
        # the daemon's own note of what it has sent
        if "MessageReference = 255" in lines:
            continue
        parts += 1
        rig.require(f'Number = "{number}"' in lines, section)
        text += "".join(bytes.fromhex(line.split(" = ")[1]).decode("utf-16-be") for line in lines
                        if line.startswith("Text"))
    return text, parts


def arrives(path, station, parts):
    with daemon(path), rig.service() as it:
        delivery.settings(it, f'[sms]\nmethod = "gammu"\nconfig = "{path}/smsd.conf"\n')
        delivery.site(it, station, Text=(delivery.SMS, "4512345678"), Wrong=(delivery.SMS, "45;reboot"))
        it.start()
        record = delivery.attempts(it, "Text", ["succeeded"])[0]
        text = f"Vigil for {station}. ?????"
        rig.require(record["kind"] == "sms" and "gammu-smsd-inject took it" in record["detail"], str(record))
        rig.require(sent(path, "+4512345678") == (text, parts), f"the phone sent {sent(path, '+4512345678')}")
        tried = it.vigil_alone("test", "sms", "+4599")
        rig.require("It was sent" in tried.stdout, tried.stdout)
        rig.require(sent(path, "+4599")[0].startswith("Vigil test from "), str(sent(path, "+4599")))
        it.stop()
        rig.require(not it.actions("--monitor", "Wrong") and not list((path / "err").iterdir()), "something else was tried")


def main():
    delivery.needs("gammu-smsd", ["gammu-smsd", "--version"], ["gammu-smsd-inject", "--version"])
    for station, parts in (("Ærø \N{EURO SIGN} 'x' `y` $(z)", 1), (LONG, 2)):
        with delivery.folder() as path:
            arrives(path, station, parts)
            print(f"{station[:12]}: {parts} part(s)")


main()
