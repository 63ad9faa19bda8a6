"""Waiting for what can be observed."""

import time


class NotSeen(Exception):
    """What a user must see was not seen, or something else was."""


def wait_for(what, look, seconds=20):
    """Calls look() until it returns something true, and returns that."""
    end = time.monotonic() + seconds
    while True:
        seen = look()
        if seen:
            return seen
        if time.monotonic() > end:
            raise NotSeen(f'not seen within {seconds} s: {what}')
        time.sleep(0.02)


def require(what, seen):
    if not seen:
        raise NotSeen(f'not so: {what}')
