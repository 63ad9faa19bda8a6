"""One press of ENTER starts one flash, however a keyboard, a hand or a line repeats it."""

import time

from wait import require, wait_for


def require_enter_works(console, count):
    """After a person's quiet nothing more has started, and an ENTER starts one flash."""
    console.guest.quiet()
    require(f'{count} flashes were started, and not {console.guest.flashes()}',
            console.guest.flashes() == count)
    console.press('ret')
    wait_for('ENTER starts a flash', lambda: console.guest.flashes() > count)
    console.await_result(count + 1)


def held_after_a_flash(_, console):
    """ENTER ends the wait after a flash and is held down: no second flash, until ENTER is pressed anew."""
    console.start_menu()
    console.flash()
    console.hold_enter()
    require_enter_works(console, 1)


def held_at_a_warning(_, console):
    """ENTER ends a warning and is held down: no flash, until ENTER is pressed anew."""
    console.start_menu()
    console.move_to(2)
    console.press('x')
    console.see_text('Press ENTER to continue...')
    console.await_wait()
    console.hold_enter()
    require_enter_works(console, 0)


def held_on_a_flash(machine, console):
    """ENTER starts a flash and is held down beyond its end: no second flash, until ENTER is pressed anew."""
    console.start_menu()
    console.move_to(2)
    console.hold_enter()
    machine.guest.quiet()
    console.await_wait()
    if 'Done. ' in console.screen().text:  # not where the last repeats were slow
        console.press('ret')
    console.see_menu(highlighted=2)
    require_enter_works(console, 1)


def held_on_a_refusal(machine, console):
    """ENTER is held down on an entry that the core program refuses at once: it is started once."""
    console.start_menu()
    machine.guest.run('touch /run/refuse')
    console.move_to(2)
    console.hold_enter()
    machine.guest.quiet()
    require(f'the core program was started once, and not {machine.guest.flashes()} times',
            machine.guest.flashes() == 1)


def repeated_slowly(_, console):
    """A remote keyboard repeats ENTER after 660 ms, every 100 ms, at the end of a flash: no second flash."""
    console.start_menu()
    console.flash()
    console.hold_remote_enter(0.66, 0.1)
    require_enter_works(console, 1)


def repeated_very_slowly(_, console):
    """The same after 900 ms, every 500 ms."""
    console.start_menu()
    console.flash()
    console.hold_remote_enter(0.9, 0.5)
    require_enter_works(console, 1)


def knocked_after_a_flash(_, console):
    """ENTER is pressed five times, 0.4 s apart, to end the wait after a flash: no second flash."""
    console.start_menu()
    console.flash()
    knock(console, 5)
    require_enter_works(console, 1)


def knock(console, times):
    for _ in range(times):
        console.press('ret')
        time.sleep(0.4)


def knocked_during_a_flash(machine, console):
    """ENTER is pressed three times during a flash: its result stays, until ENTER is pressed anew."""
    console.start_menu()
    console.start_flash()
    knock(console, 3)
    machine.guest.let_go()
    console.await_result(1)
    console.press('ret')
    console.see_menu(highlighted=2)


def pressed_during_a_flash(machine, console):
    """ENTER is pressed once during a flash: the menu comes back by itself."""
    console.start_menu()
    console.start_flash()
    console.press('ret')
    machine.guest.let_go()
    console.see_menu(highlighted=2)
    console.require_flashes(1)


def pressed_after_another_key(_, console):
    """After a flash another entry is chosen by digit and ENTER, as fast as fingers can: that is done at once."""
    console.start_menu()
    console.flash()
    console.press('ret')
    console.see_menu(highlighted=2)
    console.flash(3)


def ended_by_cr_lf(machine, console):
    """A terminal that sends CR LF for ENTER: the result of a flash stays, until ENTER is pressed anew."""
    console.start_menu()
    console.move_to(2)
    console.type('\r\n')
    console.await_result(1)
    console.type('\r\n')
    console.see_menu(highlighted=2)
    console.require_flashes(1)


def line_dropped(machine, console):
    """The line drops during a flash, without a hang-up. Back at a blank screen, three ENTERs bring the menu."""
    console.start_menu()
    console.start_flash()
    console.drop()
    machine.guest.let_go()
    wait_for('the flash has ended', lambda: 'varnflash' not in machine.guest.programs(console.name))
    console.await_wait()
    console.come_back()
    knock(console, 3)
    console.see_menu(highlighted=2)
    require_enter_works(console, 1)


def note_pasted(machine, console):
    """A note of several lines, with numbers, is pasted at the menu, where a flash is highlighted: no flash."""
    console.start_menu()
    console.move_to(2)
    console.type('Flash 2 first\n2\nthen 3, reboot:\n7\n\n\nand 8 is the end\n')
    machine.guest.quiet()
    if 'Press ENTER to continue...' in console.screen().text:
        console.press('ret')
        console.see_menu(highlighted=2)
    console.require_flashes(0)
