"""What the work on one request and one message may cost, and how it ends when it costs more."""

import time

MAX_DEPTH = 100
MAX_PARTS = 10_000
MAX_SEALED = 8
MAX_HEADER = 8 << 20
MAX_FIELD = 1 << 14
MAX_REQUEST = 64 << 20
DEFAULT_TEXT_BYTES = 2 << 20
DEFAULT_LIST_BYTES = 8 << 20
DEFAULT_DATA_BYTES = 200 << 20

# The client gives a preview and an attachment 4 s, a listing 20 s, a batch of 150 bodies 180 s.
SECONDS = {"preview": 3.0, "attachment_data": 3.6, "attachments": 15.0, "bodytext_batch": 3.0}
BATCH_SECONDS = 150.0


class Failure(Exception):
    """What the user is told about a request that can't be served."""


class TimeUp(BaseException):
    """Ends the work on one message; no handler of ordinary errors may swallow it."""


class Clock:
    """The time allowed for the message at work.

    Loops ask check(); where the system has interval timers, a signal ends what no loop of ours sees.
    """

    def __init__(self):
        self.until = None
        self.set_timer = lambda seconds: None

    def run(self, seconds, work, *arguments):
        try:
            try:
                self.until = time.monotonic() + seconds
                self.set_timer(seconds)
                return work(*arguments)
            finally:
                self.until = None
                self.set_timer(0)
        except TimeUp:
            raise Failure("处理这封邮件超时") from None

    def check(self):
        if self.until is not None and time.monotonic() > self.until:
            raise TimeUp

    def use_signals(self):
        try:
            import signal
            signal.signal(signal.SIGALRM, self._alarm)
            self.set_timer = lambda seconds: signal.setitimer(signal.ITIMER_REAL, seconds)
        except (ImportError, AttributeError, ValueError):
            pass

    def _alarm(self, _number, _frame):
        if self.until is not None:
            raise TimeUp


CLOCK = Clock()
