"""What can go wrong, and how it is told to the user in one sentence."""


class TilerError(Exception):
    """A failure whose text is the sentence for the user."""


class Stopped(BaseException):
    """The run was asked to end. Not an Exception: no handler for failures may swallow it."""


def one_line(text):
    return " ".join(str(text).split())


def reason_of(error):
    """The sentence that the log shows for an exception; always one line, never empty."""
    if isinstance(error, TilerError):
        reason = str(error)
    elif isinstance(error, (Stopped, KeyboardInterrupt)):
        reason = "the run was stopped before it was complete"
    elif isinstance(error, MemoryError):
        reason = "the computer has not enough free memory"
    elif isinstance(error, OSError) and error.strerror:
        reason = "%s: %s" % (error.filename or "a file", error.strerror)
    elif isinstance(error, RuntimeError):  # how GDAL reports its errors
        reason = "the image could not be read or tiled: %s" % error
    else:
        reason = "an unexpected error occurred (%s: %s)" % (type(error).__name__, error)
    return one_line(reason) or type(error).__name__
