"""What an invitation says."""

import re


def calendar_text(text):
    """What an invitation says: title, time, place, organiser, description of each event (RFC 5545)."""
    text = re.sub(r"\n[ \t]", "", text)
    return "\n\n".join(filter(None, map(event_text, text.split("BEGIN:VEVENT")[1:100])))


def event_text(event):
    fields = {}
    for line in event.partition("END:VEVENT")[0].split("\n"):
        name, _, value = line.partition(":")
        name, _, extra = name.partition(";")
        value = re.sub(r"\\(.)", lambda match: "\n" if match.group(1) in "nN" else match.group(1), value)
        fields.setdefault(name.strip().upper(), (value.strip(), extra))

    def moment(name):
        value = fields.get(name, ("",))[0]
        stamp = re.match(r"(\d{4})(\d\d)(\d\d)(?:T(\d\d)(\d\d))?", value)
        day = "-".join(stamp.group(1, 2, 3)) if stamp else ""
        return day + " " + ":".join(stamp.group(4, 5)) + " UTC" * value.endswith("Z") if stamp and stamp.group(4) else day
    organizer = re.search(r"CN=\"?([^\";:]+)", fields.get("ORGANIZER", ("", ""))[1])
    lines = (("日程：", fields.get("SUMMARY", ("",))[0]),
             ("时间：", " – ".join(filter(None, (moment("DTSTART"), moment("DTEND"))))),
             ("地点：", fields.get("LOCATION", ("",))[0]),
             ("组织者：", organizer.group(1) if organizer else ""), ("", fields.get("DESCRIPTION", ("",))[0]))
    return "\n".join(label + value for label, value in lines if value)
