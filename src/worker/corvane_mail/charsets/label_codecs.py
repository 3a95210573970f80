"""Codecs for the charset labels of mail, and what they do with bytes they do not hold."""

import codecs
import re
from functools import lru_cache

# Codec: the labels of mail it reads, without signs and a leading "x". Declared sets are widened to
# what is really written under their names, as the WHATWG encoding standard does: gb2312 is GB 18030,
# iso-8859-1 is windows-1252. A label that says nothing has the codec "". Other labels ask Python.
CODECS = {label: codec for codec, labels in {
    "gb18030": "gb2312 gbk gb18030 gb231280 cngb gb cp936 ms936 windows936 euccn chinese gb2312charset macchinesesimp",
    "hz": "hzgb2312 hz",
    "cp950": "big5 cp950 windows950 cnbig5 big5eten macchinesetrad",
    "big5hkscs": "big5hkscs",
    "cp932": "shiftjis sjis cp932 ms932 windows932 windows31j mskanji macjapanese",
    "euc_jp": "eucjp eucjpms cp51932 ujis",
    "cp949": "euckr ksc56011987 ksc5601 ksc56011989 cp949 windows949 uhc korean ks mackorean",
    "iso2022": "iso2022jp iso2022jpms iso2022jp1 iso2022jp2 iso2022jp3 iso2022jp2004 iso2022jpext cp50220 cp50221"
               " jis iso2022kr iso2022cn iso2022cnext",
    "utf-8": "utf8 unicode11utf8 utf8mb4",
    "utf-7": "utf7 unicode11utf7 unicode20utf7",
    "utf-16": "utf16 unicode ucs2 iso10646ucs2", "utf-16-le": "utf16le", "utf-16-be": "utf16be",
    "": "usascii ascii ansix341968 646 unknown8bit unknown default defaultcharset 8bit binary none userdefined",
    "cp1252": "iso88591 latin1 88591 ansi windows1252 l1 iso885911987",
    "cp1254": "iso88599 latin5", "cp874": "iso885911 tis620 windows874 dos874",
    "iso8859_8": "iso88598i", "iso8859_6": "iso88596i",
    "mac_roman": "macroman macintosh", "mac_cyrillic": "maccyrillic", "mac_latin2": "macce",
    "mac_iceland": "macicelandic", "koi8_r": "koi8",
}.items() for label in labels.split()}
SHIFTED = frozenset("iso2022 hz utf-7 utf-16 utf-16-le utf-16-be utf-32 utf-32-le utf-32-be".split())
EAST_ASIAN = frozenset(("gb18030", "cp950", "big5hkscs", "cp932", "euc_jp", "cp949", "johab"))
# UTF-8 of the accented letters and the punctuation of Western writing, and of anything of three bytes.
WESTERN_UTF8 = rb"((?:\xc2[\xa0-\xbf]|\xc3[\x80-\xbf]|\xe2[\x80-\x82][\x80-\xbf]|[\xe3-\xe9][\x80-\xbf]{2})+)"
# Characters of GBK that its codec leaves in the private area: the blank A3A0, vertical punctuation, later additions.
VENDOR_SIGNS = {0xE5E5: 0x3000, 0xE7C7: 0x1E3F, **dict(zip(range(0xE78D, 0xE797), (
    0xFE10, 0xFE12, 0xFE11, 0xFE13, 0xFE14, 0xFE15, 0xFE16, 0xFE17, 0xFE18, 0xFE19))), **dict(zip(
        (0xE81E, 0xE826, 0xE82B, 0xE82C, 0xE832, 0xE843, 0xE854, 0xE864), range(0x9FB4, 0x9FBC)))}


@lru_cache(maxsize=256)
def codec_for(label):
    """Codec for a declared charset; "" when it says nothing or nothing known."""
    name = label.decode("latin-1").lower().split("*")[0].strip()[:40]
    plain = re.sub(r"[^a-z0-9]", "", name)
    for candidate in (plain, re.sub("^(?:x|cs)", "", plain)):
        if candidate in CODECS:
            return CODECS[candidate]
    try:
        info = codecs.lookup(re.sub(r"^x-", "", name))
    except (LookupError, ValueError, ImportError):
        return ""
    pseudo = ("idna", "punycode", "undefined", "mbcs", "oem", "unicode_escape", "raw_unicode_escape",
              "unicode-escape", "raw-unicode-escape")
    return info.name if info._is_text_encoding and info.name not in pseudo else ""


def replace_bad(error):
    """Replaces what a set doesn't hold; a pair of high bytes goes as one, so that the rest stays in step."""
    data, start = error.object, error.start
    if data[start] == 0x80:
        return "€", start + 1
    pair = 0x81 <= data[start] < 0xFF and data[start + 1:start + 2] >= b"\xa1"
    return "\ufffd", start + 1 + pair


def replace_lone(error):
    """A byte that isn't UTF-8 and stands alone is a sign of windows-1252 (a dash, a quote, an accent)."""
    data, start = error.object, error.start
    around = data[start - 1:start] + data[start + 1:start + 2]
    lone = start > 0 and around.isascii()
    return data[start:start + 1].decode("cp1252", "replace") if lone else "\ufffd", start + 1


def high_controls(error):
    """A byte that windows-1252 doesn't hold, as the control character that it is elsewhere."""
    return error.object[error.start:error.start + 1].decode("latin-1"), error.start + 1


codecs.register_error("high_controls", high_controls)
codecs.register_error("replace_bad", replace_bad)
codecs.register_error("replace_lone", replace_lone)


def strictly(data, codec):
    """Text of data, where a last character that a size limit may have cut doesn't count; None when invalid."""
    try:
        return data.decode(codec)
    except UnicodeDecodeError as error:
        head = data[:error.start]
        if error.start < len(data) - 3 or head.isascii():
            return None
    try:
        return head.decode(codec)
    except UnicodeDecodeError:
        return None


def utf8(data):
    """Text of data that is UTF-8 (if cut, up to its last whole character), else None."""
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError as error:
        head = data[:error.start]
        cut = error.reason == "unexpected end of data" and not head.isascii()
        return head.decode("utf-8") if cut else None


def western_text(data):
    """Windows-1252 in which some stretches may be UTF-8, as where a program put texts of others together."""
    pieces = re.split(WESTERN_UTF8, data)
    return "".join(piece.decode("utf-8" if at & 1 else "cp1252", "high_controls") for at, piece in enumerate(pieces))
