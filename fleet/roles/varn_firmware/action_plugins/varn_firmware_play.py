"""Tells how the play goes through its hosts, which no variable does."""

from ansible.plugins.action import ActionBase


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        block = self._task._parent
        while not getattr(block, "_play", None):
            block = block._parent
        result.update(changed=False, strategy=block._play.strategy)
        return result
