"""The parts of the window as a person knows them, over what the accessibility bus tells."""

from screen import Atspi, wait_for


class Window:
    def __init__(self, screen):
        self.screen = screen

    def readings(self):
        return self.screen.names(Atspi.Role.TABLE_CELL)

    def reading(self, name):
        """Its cell's words, once it is there."""
        return wait_for(f"the reading {name}", lambda: next(
            (words for words in self.readings() if words.lower().startswith(name.lower())), None))

    def labels_that_begin(self, *words):
        return [name for name in self.screen.names(Atspi.Role.LABEL) if name.startswith(words)]

    def menu(self, name):
        """Takes an entry of a menu that need not be open."""
        entry = wait_for(f"the menu's {name}", lambda: next(iter(
            self.screen.every(Atspi.Role.MENU_ITEM, name, hidden=True)
            + self.screen.every(Atspi.Role.CHECK_MENU_ITEM, name, hidden=True)), None))
        assert entry.get_action_iface().do_action(0), f"{name} cannot be taken"

    def unnamed_buttons(self):
        return [one for one in self.screen.every(Atspi.Role.PUSH_BUTTON) if not one.get_name()]


class Condition:
    """The condition of the monitor that is shown."""

    def __init__(self, screen):
        self.screen = screen
        self.whole = screen.one(Atspi.Role.TEXT, "The whole condition as text").get_text_iface()

    def text(self):
        """Asks the window each time."""
        return self.whole.get_text(0, -1)

    def rows(self):
        return len(self.screen.every(name="Comparison"))

    def wait_for_rows(self, count):
        wait_for(f"{count} comparisons", lambda: self.rows() == count)

    def add_group(self):
        before = self.rows()
        self.screen.press("Add a group to this group")
        self.wait_for_rows(before + 1)

    def add_comparison(self, group):
        before = self.rows()
        self.screen.press("Add a comparison to this group", nth=group)
        self.wait_for_rows(before + 1)

    def set_connective(self, group, words):
        box = wait_for("a group's words",
                       lambda: self.screen.every(Atspi.Role.COMBO_BOX, "Of the rows below")[group])
        self.screen.choose(box, words)

    def set_reading(self, row, name):
        self.screen.choose(self.screen.every(Atspi.Role.COMBO_BOX, "Reading")[row], name)

    def set_operator(self, row, words):
        self.screen.choose(self.screen.every(Atspi.Role.COMBO_BOX, "Comparison")[row], words)

    def set_number(self, nth, number):
        self.screen.retype(self.screen.every(Atspi.Role.TEXT, "Value")[nth], number)

    def set_text(self, nth, text):
        place = wait_for("a place for a text", lambda: self.screen.every(Atspi.Role.COMBO_BOX, "Value")[nth]
                         .get_child_at_index(1))
        self.screen.retype(place, text)


class Actions:
    """What the monitor that is shown does."""

    def __init__(self, screen):
        self.screen = screen

    def texts(self):
        return sorted(one.get_text_iface().get_text(0, -1)
                      for one in self.screen.every(Atspi.Role.TEXT, "Text of the action"))

    def set_text(self, row, text):
        field = wait_for(f"the text of action {row}",
                         lambda: self.screen.every(Atspi.Role.TEXT, "Text of the action")[row])
        self.screen.retype(field, text)

    def add(self, text):
        count = len(self.texts())
        self.screen.press("Add an action")
        self.set_text(count, text)


class Switch:
    def __init__(self, screen):
        self.screen = screen

    def turn(self):
        self.screen.press("Activate", role=Atspi.Role.CHECK_BOX)

    def is_on(self):
        return self.screen.one(Atspi.Role.CHECK_BOX, "Activate").get_state_set().contains(Atspi.StateType.CHECKED)
