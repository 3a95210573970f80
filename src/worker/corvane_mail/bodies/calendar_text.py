"""What an invitation says (RFC 5545)."""

import re

LINE = re.compile(r"([A-Za-z-]+)((?:;[A-Za-z-]+=(?:\"[^\"\n]*\"|[^\":;\n]*))*):(.*)")
METHODS = {"CANCEL": "日程已取消", "REPLY": "日程答复", "COUNTER": "日程改期提议"}


def calendar_text(text):
    """Title, time, place, organiser and description of each event or task."""
    text = re.sub(r"\n[ \t]", "", text)
    method = re.search(r"(?m)^METHOD:([A-Z]+)", text[:2000])
    events = re.split(r"(?m)^BEGIN:(?:VEVENT|VTODO)[ \t]*$", text)[1:100]
    texts = [METHODS.get(method.group(1), "") if method else "", *map(event_text, events)]
    return "\n\n".join(filter(None, texts)) if events else ""


def event_text(event):
    fields = {}
    for line in re.split(r"(?m)^END:(?:VEVENT|VTODO)|^BEGIN:VALARM", event, maxsplit=1)[0].split("\n"):
        match = LINE.match(line)
        if match:
            value = re.sub(r"\\(.)", lambda sign: "\n" if sign.group(1) in "nN" else sign.group(1), match.group(3))
            fields.setdefault(match.group(1).upper(), (value.strip(), match.group(2)))

    def value(name):
        return fields.get(name, ("", ""))[0]
    named = re.search(r"CN=(?:\"([^\"]*)\"|([^;]+))", fields.get("ORGANIZER", ("", ""))[1])
    organizer = named.group(1) or named.group(2) if named else re.sub("(?i)^mailto:", "", value("ORGANIZER"))
    lines = (("日程：", value("SUMMARY")),
             ("时间：", " – ".join(filter(None, map(moment, (value("DTSTART"), value("DTEND") or value("DUE")))))),
             ("地点：", value("LOCATION")),
             ("组织者：", organizer), ("", value("DESCRIPTION")))
    return "\n".join(label + text for label, text in lines if text)


def moment(value):
    stamp = re.match(r"(\d{4})(\d\d)(\d\d)(?:T(\d\d)(\d\d))?", value)
    if not stamp:
        return ""
    day = "-".join(stamp.group(1, 2, 3))
    return day + " " + ":".join(stamp.group(4, 5)) + " UTC" * value.endswith("Z") if stamp.group(4) else day
