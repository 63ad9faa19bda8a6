"""Asks the machine what cannot be seen from outside: a shell there answers on a line of its own."""

import re

from wait import NotSeen, wait_for


class Guest:
    def __init__(self, line):
        self.line = line
        self.said = b''
        self.await_answer('the agent is ready', rb'READY\n', 120)

    def await_answer(self, what, pattern, seconds):
        def look():
            self.said += self.line.received()
            return re.search(pattern, self.said)
        try:
            return wait_for(what, look, seconds)
        except NotSeen as error:  # nothing can be seen any more
            raise RuntimeError(f'{error}; the machine has said {self.said[-500:]!r}') from None

    def run(self, command, seconds=30):
        """The output of a shell command."""
        self.said = b''
        self.line.send(command.encode() + b'\n')
        answer = self.await_answer(f'the end of {command}', rb'END (\d+)\n$', seconds)
        output = self.said[:answer.start()].decode()
        if answer[1] != b'0':
            raise NotSeen(f'{command} fails: {output}')
        return output

    def flashes(self):
        """How often the core program was started to flash or to reboot."""
        return int(self.run('cat /run/runs 2>/dev/null | wc -l'))

    def hold_flashes(self):
        """From now on the core program stays at work, until let_go()."""
        self.run('touch /run/hold')

    def let_go(self):
        self.run('rm -f /run/hold')

    def menu_waits(self, console):
        """Whether the menu on a console waits for a key, however long it takes."""
        return self.run(f'waits {console}').strip() == 'waits'

    def programs(self, console):
        """The names of what runs on a console."""
        return self.run(f'at {console}').split()[1::2]

    def quiet(self, seconds=1.3):
        """A person's pause, by the machine's clock."""
        self.run(f'sleep {seconds}')
