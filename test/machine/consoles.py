"""The consoles where a user meets the menu: keyboard and display, or a terminal on a serial line."""

import re
import time

import pyte

from screen import emulated_screen, vga_screen
from wait import NotSeen, require, wait_for


class Console:
    """What a user does and sees on either kind, which defines press(), type() and screen()."""

    def __init__(self, guest, name):
        self.guest = guest
        self.name = name

    def see(self, what, look, seconds=20):
        """Waits until look(screen) is true."""
        try:
            return wait_for(what, lambda: look(self.screen()), seconds)
        except NotSeen as error:
            raise NotSeen(f'{error}\n{self.name} shows:\n{self.screen().text.rstrip()}') from None

    def see_text(self, text):
        self.see(repr(text), lambda screen: text in screen.text)

    def see_menu(self, highlighted=None):
        self.see(f'one menu, highlighted: {highlighted}',
                 lambda screen: screen.has_menu(highlighted))
        self.await_wait()

    def await_wait(self):
        """What is typed before the menu waits for it may be thrown away."""
        wait_for('the menu waits for a key', lambda: self.guest.menu_waits(self.name))

    def log_in(self):
        """Ends whatever is at work on this console; init starts a new shell there."""
        self.guest.run(f'fresh {self.name}')
        self.see('a prompt', lambda screen: re.search(r'ready>$', screen.text.rstrip()))

    def start_menu(self, first=''):
        """After a first command."""
        self.log_in()
        self.type(f'{first}; ./varnmenu\n' if first else './varnmenu\n')
        self.see_menu()

    def move_to(self, number):
        self.press(str(number))
        self.see_menu(highlighted=number)

    def flash(self, number=2):
        """A whole flash or reboot, up to the wait for ENTER."""
        count = self.guest.flashes()
        self.start_flash(number)
        self.guest.let_go()
        self.await_result(count + 1)

    def start_flash(self, number=2):
        """Ends in the middle of the flash."""
        count = self.guest.flashes()
        self.guest.hold_flashes()
        self.move_to(number)
        self.press('ret')
        wait_for('a flash is started', lambda: self.guest.flashes() > count)

    def await_result(self, count):
        self.see_text('Done. ')
        self.await_wait()
        require(f'{count} flashes were started', self.guest.flashes() == count)

    def require_flashes(self, count):
        """Moves the highlight, so that all that was typed before has had its effect."""
        started = self.guest.flashes
        self.press('3')
        self.see(f'3 highlighted, or more than {count} flashes',
                 lambda screen: screen.highlights() == [3] or started() > count)
        require(f'{count} flashes were started, and not {started()}', started() == count)


def repeat(press, delay, period, seconds):
    """A key that is held: it is pressed again after the delay, and then once in each period."""
    end = time.monotonic() + seconds
    press()
    time.sleep(delay)
    while time.monotonic() < end:
        press()
        time.sleep(period)


class Vga(Console):
    names = {'/': 'slash', '.': 'dot', ' ': 'spc', '\n': 'ret'}

    def __init__(self, guest, monitor):
        super().__init__(guest, 'tty1')
        self.monitor = monitor

    def press(self, *names):
        self.monitor.press(*names)

    def type(self, text):
        for character in text:
            self.press(self.names.get(character, character))

    def hold_enter(self, seconds=2):
        """The kernel repeats it, after 250 ms and every 33 ms."""
        self.monitor.key(True, 'ret')
        time.sleep(seconds)
        self.monitor.key(False, 'ret')

    def hold_remote_enter(self, delay, period, seconds=3):
        """A keyboard far away repeats it."""
        setting = '/sys/bus/serio/drivers/atkbd/serio0/softrepeat'
        self.guest.run(f'echo 0 >{setting}')
        repeat(lambda: self.monitor.key(True, 'ret'), delay, period, seconds)
        self.monitor.key(False, 'ret')
        self.guest.run(f'echo 1 >{setting}')

    def screen(self):
        dump = self.guest.run('xxd -p /dev/vcsa1')
        return vga_screen(bytes.fromhex(dump.replace('\n', '')))

    def cursor_is_hidden(self):
        """The kernel hides it by letting it end before it starts."""
        start, end = (self.monitor.read_vga_register(index) & 31 for index in (10, 11))
        return end < start


class Terminal(Console):
    """A terminal of type xterm at the far end of a serial line."""
    bytes_of = {'ret': b'\r', 'up': b'\x1b[A', 'down': b'\x1b[B'}

    def __init__(self, guest, line, name):
        super().__init__(guest, name)
        self.line = line
        self.blank()

    def blank(self):
        self.emulator = pyte.Screen(80, 24)
        self.stream = pyte.ByteStream(self.emulator)

    def press(self, name):
        self.line.send(self.bytes_of.get(name, name.encode()))

    def type(self, text):
        self.line.send(text.encode())

    def hold_enter(self, seconds=2):
        """The terminal repeats it, as often as Linux does."""
        repeat(lambda: self.press('ret'), 0.25, 0.033, seconds)

    def screen(self):
        self.stream.feed(self.line.received())
        return emulated_screen(self.emulator)

    def cursor_is_hidden(self):
        self.screen()
        return self.emulator.cursor.hidden

    def drop(self):
        self.line.drop()

    def come_back(self):
        """To a blank screen."""
        self.line.connect()
        self.blank()
