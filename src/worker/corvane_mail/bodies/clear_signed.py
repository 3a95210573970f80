"""Text that is signed by OpenPGP in place (RFC 4880, 7)."""

import re

SIGNED = re.compile("(?m)^-----BEGIN PGP SIGNED MESSAGE-----[ \t]*\n(?:[A-Za-z]+: [^\n]*\n)*[ \t]*\n")
SIGNATURE = "\n-----BEGIN PGP SIGNATURE-----"
END = re.compile("\n-----END PGP SIGNATURE-----[ \t]*")


def without_armor(text):
    """The text as its author wrote it, without the lines of the signature; as it stands where they are incomplete."""
    pieces, at = [], 0
    for head in SIGNED.finditer(text):
        if head.start() < at:
            continue
        signature = text.find(SIGNATURE, head.end() - 1)
        end = END.search(text, signature) if signature >= 0 else None
        if not end:
            break
        pieces += text[at:head.start()], re.sub("(?m)^- ", "", text[head.end():signature])
        at = end.end()
    return "".join(pieces) + text[at:]
