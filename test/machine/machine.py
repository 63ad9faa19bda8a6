"""A machine in QEMU that runs the menu: how it is started, and what is at its consoles."""

import re
import subprocess

from consoles import Terminal, Vga
from guest import Guest
from line import Line
from monitor import Monitor
from wait import NotSeen, wait_for

# What differs: the program, what the serial lines of the user and of the agent are called, and whether there
# is a display.
ARCHITECTURES = {
    'amd64': (['qemu-system-x86_64', '-vga', 'std'], 'ttyS0', 'ttyS1', True),
    'arm64': (['qemu-system-aarch64', '-M', 'virt'], 'ttyAMA0', 'ttyS0', False),
}
COMMON = ['-accel', 'tcg,thread=multi', '-cpu', 'max', '-m', '512', '-display', 'none', '-nic', 'none',
          '-no-reboot', '-no-user-config', '-serial', 'chardev:line', '-device', 'pci-serial,chardev=agent']

# No console on a serial line: a BREAK there would be the SysRq key. The display repeats a held key itself,
# as QEMU's keyboard does not.
PARAMETERS = 'console=tty0 loglevel=4 atkbd.softrepeat=1 consoleblank=10 panic=-1'


class Machine:
    def __init__(self, architecture):
        """The working directory has a kernel and an initramfs."""
        program, line, agent, has_display = ARCHITECTURES[architecture]
        self.process = subprocess.Popen(
            program + COMMON + self.chardevs() +
            ['-kernel', 'kernel', '-initrd', 'initramfs',
             '-append', f'{PARAMETERS} line={line} agent={agent}'])
        try:
            self.monitor = self.connect(Monitor, 'monitor')
            self.guest = Guest(self.connect(Line, 'agent'))
            self.line = Terminal(self.guest, self.connect(Line, 'line'), line)
            self.display = Vga(self.guest, self.monitor) if has_display else None
        except BaseException:
            self.stop()
            raise

    @staticmethod
    def chardevs():
        arguments = ['-qmp', 'unix:monitor,server=on,wait=off']
        for name in ('agent', 'line'):
            arguments += ['-chardev', f'socket,id={name},path={name},server=on,wait=off']
        return arguments

    def connect(self, kind, name):
        def look():
            if self.process.poll() is not None:
                raise NotSeen(f'QEMU has ended with {self.process.returncode}')
            try:
                return kind(name)
            except (FileNotFoundError, ConnectionRefusedError):
                return None
        return wait_for(f'socket {name} of QEMU', look)

    def send_break(self):
        def count():
            return re.findall('brk:(.*?)( |$)', self.guest.run('cat /proc/tty/driver/*'), re.M)
        before = count()
        self.monitor.execute('chardev-send-break', id='line')
        wait_for('the kernel counts a BREAK', lambda: count() != before)

    def display_is_dark(self):
        self.monitor.execute('screendump', filename='display.ppm')
        with open('display.ppm', 'rb') as picture:
            return set(picture.read().split(b'\n', 3)[3]) == {0}

    def take_picture(self, name):
        self.monitor.execute('screendump', filename=name, format='png')

    def stop(self):
        self.process.kill()
        self.process.wait()
