"""The far end of a serial line of the machine."""

import queue
import socket
import threading


class Line:
    def __init__(self, path):
        self.path = path
        self.connect()

    def connect(self):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(self.path)
        self.parts = queue.SimpleQueue()
        # All the time, as QEMU sends single bytes, and the socket has room for 280 of them.
        threading.Thread(target=self.read, args=(self.socket, self.parts), daemon=True).start()

    @staticmethod
    def read(source, parts):
        while part := source.recv(65536):
            parts.put(part)

    def drop(self):
        """The machine is not told: what it sends from now on is lost."""
        self.socket.shutdown(socket.SHUT_RDWR)
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def received(self):
        """What has come since the last call."""
        data = b''
        while not self.parts.empty():
            data += self.parts.get()
        return data
