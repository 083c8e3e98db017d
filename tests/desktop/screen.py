"""What the accessibility bus tells of one program, and a hand at its buttons. For tests that drive a real window; needs
a bus and a display."""

import time
import warnings

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi

warnings.simplefilter("ignore", DeprecationWarning)  # the older names are those of Debian 12
PATIENCE = 30


def wait_for(what, find):
    end = time.monotonic() + PATIENCE
    while True:
        try:
            found = find()
        except Exception:  # the bus answers so for what has gone meanwhile
            found = None
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.05)


class Screen:
    """What the accessibility bus tells of one program."""

    def __init__(self, pid):
        self.pid = pid
        self.program = wait_for("the window on the bus", self._program)

    def _program(self):
        desktop = Atspi.get_desktop(0)
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child and child.get_process_id() == self.pid:
                return child
        return None

    def every(self, role=None, name=None, inside=None, hidden=False):
        found, waiting = [], [inside or self.program]
        while waiting:
            one = waiting.pop(0)
            for i in range(one.get_child_count()):
                child = one.get_child_at_index(i)
                if child is None:
                    continue
                waiting.append(child)
                if role is not None and child.get_role() != role:
                    continue
                if name is not None and name not in (child.get_name(), child.get_description()):
                    continue
                if hidden or child.get_state_set().contains(Atspi.StateType.SHOWING):
                    found.append(child)
        return found

    def one(self, role, name, inside=None):
        return wait_for(f"{role.value_nick} \"{name}\"",
                        lambda: next(iter(self.every(role, name, inside)), None))

    def press(self, name, nth=0, role=None):
        role = role or Atspi.Role.PUSH_BUTTON
        button = wait_for(f"button \"{name}\" {nth}", lambda: self.every(role, name)[nth])
        assert button.get_action_iface().do_action(0), f"\"{name}\" cannot be pressed"

    def names(self, role):
        return [one.get_name() for one in self.every(role)]

    def retype(self, field, words):
        text = field.get_editable_text_iface()
        assert text and text.set_text_contents(words), "the field takes no text"

    def choose(self, box, wanted):
        """Opens the list, goes to the entry by keys, takes it."""
        if self.shown(box) == wanted:
            return
        assert box.get_action_iface().do_action(0), "the list does not open"
        entries = wait_for("the entries of the list", lambda: self.entries(box))
        assert wanted in entries, f"{wanted} is not offered: {entries}"
        time.sleep(0.1)  # a list that opens takes no keys yet
        key("Home")
        for _ in range(entries.index(wanted)):
            key("Down")
        key("Return")
        wait_for(f"{wanted} in the pop-up", lambda: self.shown(box) == wanted)

    @staticmethod
    def entries(box):
        shown = box.get_child_at_index(0)
        if not shown.get_state_set().contains(Atspi.StateType.SHOWING):
            return []
        return [shown.get_child_at_index(i).get_name() for i in range(shown.get_child_count())]

    def shown(self, box):
        box.clear_cache()
        name = box.get_name()
        text = box.get_text_iface()
        return text.get_text(0, -1) if text else name


KEYS = {"Down": 0xFF54, "Home": 0xFF50, "Return": 0xFF0D}


def key(name):
    Atspi.generate_keyboard_event(KEYS[name], None, Atspi.KeySynthType.SYM)
