"""QEMU's monitor: keys of the keyboard, breaks on a line, pictures of the screen."""

import json
import socket
import time


class Monitor:
    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(30)
        self.socket.connect(path)
        self.answers = self.socket.makefile('r', encoding='utf-8')
        json.loads(self.answers.readline())  # the greeting
        self.execute('qmp_capabilities')

    def execute(self, command, **arguments):
        request = {'execute': command, 'arguments': arguments}
        self.socket.sendall(json.dumps(request).encode())
        while True:
            answer = json.loads(self.answers.readline())
            if 'error' in answer:
                raise RuntimeError(f'QEMU refuses {command}: {answer["error"]["desc"]}')
            if 'return' in answer:  # all else is an event
                return answer['return']

    def key(self, down, name):
        """Keys have the names of QEMU's QKeyCode."""
        key = {'down': down, 'key': {'type': 'qcode', 'data': name}}
        self.execute('input-send-event', events=[{'type': 'key', 'data': key}])

    def press(self, *names):
        """Keys that are pressed one after the other and released together, at a person's pace."""
        for down, order in ((True, names), (False, reversed(names))):
            for name in order:
                self.key(down, name)
                time.sleep(0.02)

    def read_vga_register(self, index):
        """A register of the display's CRT controller."""
        self.execute('human-monitor-command', **{'command-line': f'o /b 0x3d4 {index}'})
        answer = self.execute('human-monitor-command', **{'command-line': 'i /b 0x3d5'})
        return int(answer.split('=')[1], 16)
