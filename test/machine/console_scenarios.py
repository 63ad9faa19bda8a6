"""The menu on consoles of a real kernel."""

import re

from screen import HIGHLIGHT, NORMAL
from wait import require, wait_for


def walk(_, console):
    """Digits and arrows move the one highlight, which does not wrap around, through both menus to Exit."""
    console.start_menu()
    for key, number in (('down', 1), ('up', 1), ('down', 2), ('8', 8), ('down', 8), ('up', 7), ('6', 6)):
        console.press(key)
        console.see_menu(highlighted=number)
    console.press('ret')
    console.see_menu()
    console.see_text('#LEGAL DOCUMENTS')
    console.move_to(6)
    console.press('ret')
    console.see_menu(highlighted=6)
    console.move_to(8)
    console.press('ret')
    console.see('a prompt after the last line', lambda screen: re.search(
        r"Exitting program '.*' due to user normal exit\n.*ready>$", screen.text.rstrip()))
    require('the cursor is in sight', not console.cursor_is_hidden())
    require('the prompt has no colour', console.screen().style_of('ready>') == NORMAL)


def keypad(_, console):
    """The keypad works like digits and arrows, with and without Num Lock, and has an ENTER."""
    console.start_menu()
    for key, number in (('kp_2', 1), ('kp_2', 2), ('kp_8', 1)):
        console.press(key)
        console.see_menu(highlighted=number)
    console.press('num_lock')
    console.press('kp_6')
    console.see_menu(highlighted=6)
    console.press('num_lock')
    console.press('kp_enter')
    console.see_text('#LEGAL DOCUMENTS')


def colours(machine, console):
    """Colours, bold letters, a highlight in reverse; no cursor. A picture is taken of the display."""
    console.start_menu()
    console.move_to(4)
    screen = console.screen()
    for text, style in (('This tool will', 'bold white on blue'), ('[1] Normal', NORMAL),
                        ('Emergency Flash', HIGHLIGHT), ('Varn-FW: ', 'red on black'),
                        ('(c) ', 'blue on black'), ('> 4', 'bold white on black')):
        require(f'{text} is {style}, and not {screen.style_of(text)}', screen.style_of(text) == style)
    require('the cursor is hidden', console.cursor_is_hidden())
    if console is machine.display:
        machine.take_picture('menu.png')


def readme(_, console):
    """The readme file is shown by a pager, and q leads back to the menu, on which the cursor is hidden."""
    console.start_menu()
    console.move_to(5)
    console.press('ret')
    console.see_text('README')
    console.press('q')
    console.see_menu(highlighted=5)
    require('the cursor is hidden', console.cursor_is_hidden())


def kernel_message(machine, console):
    """A message of the kernel is printed over the menu; Ctrl-L draws one menu with one highlight anew."""
    console.start_menu()
    console.move_to(2)
    machine.guest.run("echo '<2>ata1: a message of the kernel' >/dev/kmsg")
    console.see_text('a message of the kernel')
    console.press('ctrl', 'l')
    console.see_menu(highlighted=2)


def other_terminal(machine, console):
    """The user looks at the second virtual terminal during a flash: it goes on, and its result is there."""
    active = '/sys/class/tty/tty0/active'
    console.start_menu()
    console.start_flash()
    for key, name in (('f2', 'tty2'), ('f1', 'tty1')):
        console.press('alt', key)
        wait_for(f'{name} is in sight', lambda: machine.guest.run(f'cat {active}').strip() == name)
        machine.guest.let_go()
        console.await_result(1)
    console.press('ret')
    console.see_menu(highlighted=2)


def blanked_display(machine, console):
    """The display goes dark when no key is pressed; the key that wakes it also acts."""
    console.start_menu()
    console.move_to(2)
    wait_for('the display is dark', machine.display_is_dark, 40)
    console.press('3')
    console.see_menu(highlighted=3)
    require('the display is on', not machine.display_is_dark())


def scroll_lock(machine, console):
    """Scroll Lock stops the output of a flash, and the flash once it prints; pressed again, it goes on."""
    console.start_menu()
    console.start_flash()
    console.press('scroll_lock')
    machine.guest.let_go()
    wait_for('the core program waits in write(2)', lambda: '1 0x1 ' in machine.guest.run(
        'for pid in $(pidof varnflash); do cat /proc/$pid/syscall; done'))
    require('nothing is printed', 'Done. ' not in console.screen().text)
    console.press('scroll_lock')
    console.await_result(1)


def secure_attention(machine, console):
    """SysRq-k in the middle of a flash kills the menu and the core program; the next user gets a prompt."""
    console.start_menu()
    console.start_flash()
    console.press('alt', 'sysrq', 'k')
    wait_for('menu and core program have ended', lambda: not {'varnmenu', 'varnflash'}.intersection(
        machine.guest.programs(console.name)))
    machine.guest.let_go()
    console.see_text('ready>')


def break_warns(machine, console):
    """A BREAK on the line, as it is after a login, is an invisible wrong key."""
    console.start_menu()
    machine.send_break()
    console.see_text('[WARN] Wrong input')


def break_interrupts(machine, console):
    """A BREAK on a line with brkint ends the menu like SIGINT, and a flash goes on to its end before that."""
    console.start_menu('stty brkint')
    console.start_flash()
    machine.send_break()
    require('the core program is at work', 'varnflash' in machine.guest.programs(console.name))
    machine.guest.let_go()
    console.see_text('ready>')
    console.see_text('Done. ')


def enter_without_icrnl(_, console):
    """On a line with -icrnl ENTER is a wrong key, even at the warning; Ctrl-J is ENTER there."""
    console.start_menu('stty -icrnl')
    console.move_to(6)
    console.press('ret')
    console.see_text('[WARN] Wrong input')
    console.await_wait()
    console.press('ret')
    console.press('\n')
    console.see_menu(highlighted=6)
    console.press('\n')
    console.see_text('#LEGAL DOCUMENTS')


def two_menus(machine, console):
    """A menu on each console: while one flashes, the other one says so and starts nothing."""
    other = machine.line
    console.start_menu()
    other.start_menu()
    console.start_flash()
    for number in (2, 7):
        other.move_to(number)
        other.press('ret')
        other.see_text('Another flash or reboot is at work on this server')
        other.await_wait()
        other.press('ret')
        other.see_menu(highlighted=number)
    machine.guest.let_go()
    console.await_result(1)
    other.flash(3)
