"""Turns message files into readable text and attachments for a program that talks JSON to it.

One request from standard input until its end, one answer to standard output; with --serve one
request and one answer a line until "shutdown". An answer holds "ok" and either the fields of its
command (preview, bodytext_batch, attachments, attachment_data) or "error", a text for the user.

Messages are hostile. Whatever one of them holds costs that message alone: parts, depth, header
size, bytes read and time are bounded, every step is linear in its input, and nothing is fetched,
run or written. It runs isolated (python3 -I -B, standard library, Python 3.9 or later) and starts
fast, since most runs live for 150 messages: what only odd mail needs is imported, and its patterns
compiled, when they are needed.
"""

import os
import sys

# Isolated mode leaves this folder out.
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from corvane_mail.protocol import main  # noqa: E402

if __name__ == "__main__":
    main(sys.argv[1:])
