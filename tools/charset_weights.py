#!/usr/bin/env python3
"""Measures the weights of the mail worker's charset guess: how often a text of a known set is read rightly without a
label, and with the right one, which the weights must not doubt. Run it before and after a change of a weight.

The sample is made text: the sentences and subjects of the sample store for Chinese and Japanese, and the ones below for
the other languages, each in every set that its mail comes in. A text counts as read when what comes out is the text,
by whatever set. The first characters of each are measured by themselves, since names of files are short."""

import argparse
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "src" / "worker"), str(ROOT / "tools")]

from corvane_mail.charsets.decoding import decode_text  # noqa: E402
from samplestore import vocabulary  # noqa: E402

SENTENCES = {
    "ko": ["첨부한 자료를 확인하시고 의견을 보내 주시기 바랍니다.", "회의는 다음 주 수요일 오전으로 옮겼습니다.",
           "견적서 한 부를 다시 보내 주실 수 있을까요?", "지난번 사진은 공유 폴더에 넣어 두었습니다.", "감사합니다. 좋은 하루 되세요."],
    "ru": ["Добрый день, высылаю вам договор и счёт за прошлый месяц.", "Встречу перенесли на среду, место прежнее.",
           "Пришлите, пожалуйста, фотографии ещё раз: старый файл не открылся.", "Спасибо, с уважением, Анна", "Список гостей"],
    "el": ["Καλημέρα, σας στέλνω το συμβόλαιο και το τιμολόγιο του μήνα.", "Η συνάντηση μεταφέρθηκε την Τετάρτη.",
           "Μπορείτε να στείλετε ξανά τις φωτογραφίες;", "Ευχαριστώ πολύ για τη βοήθεια"],
    "he": ["שלום, מצורף החוזה של החודש שעבר.", "הפגישה נדחתה ליום רביעי בבוקר.", "אפשר לשלוח שוב את התמונות?", "תודה רבה על העזרה"],
    "ar": ["مرحبا، أرسل لكم العقد والفاتورة للشهر الماضي.", "تم نقل الاجتماع إلى يوم الأربعاء.", "هل يمكن إرسال الصور مرة أخرى؟", "شكرا على المساعدة"],
    "th": ["สวัสดีครับ ผมส่งสัญญาและใบแจ้งหนี้ของเดือนที่แล้วมาให้", "เลื่อนการประชุมไปวันพุธตอนเช้า", "ช่วยส่งรูปภาพอีกครั้งได้ไหมครับ"],
    "western": ["Schöne Grüße aus München, die Übersicht für März hängt an.", "Le musée a fermé l’été dernier; voilà les reçus.",
                "El informe del año pasado está en la página señalada.", "Até amanhã, a reunião começa às nove – não é “cedo”?",
                "Mötet är på tisdag, kaffe från åtta.", "Über das Café"],
}
SETS = {"zh": ("gb18030",), "tw": ("cp950", "gb18030"), "ja": ("cp932", "euc_jp"), "ko": ("cp949",),
        "ru": ("koi8_r", "cp1251", "iso8859_5", "cp866", "mac_cyrillic"), "el": ("cp1253",), "he": ("cp1255",),
        "ar": ("cp1256",), "th": ("cp874",), "western": ("cp1252",)}
# Column: characters of each text (all of them where there is none), and whether it comes with its label.
COLUMNS = {"whole": (None, False), "12 characters": (12, False), "6 characters": (6, False), "labelled": (None, True),
           "6, labelled": (6, True)}


def texts(language):
    if language in SENTENCES:
        return SENTENCES[language]
    words = {name: values[0] for name, values in vocabulary.FILLERS[language].items()}
    patterns = vocabulary.SENTENCES[language] + vocabulary.SUBJECTS[language]
    return [pattern.format(num=2024, few=3, amount=1280, **words) for pattern in patterns]


def samples(language, codec, length):
    """Beginnings of the texts with their bytes, without those that are ASCII."""
    for text in (text[:length] for text in texts(language)):
        if not text.isascii():
            yield text, text.encode(codec)


def measure(language, codec, length, is_labelled):
    """The texts that are read wrongly, as they are read, and the number of texts."""
    cases = list(samples(language, codec, length))
    read = [(text, decode_text(data, codec.encode() if is_labelled else b"")) for text, data in cases]
    return [(text, wrong) for text, wrong in read if wrong != text], len(cases)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--misses", action="store_true", help="print each text that is read wrongly")
    options = parser.parse_args()
    print(f"{'':20}" + "".join(f"{name:>16}" for name in COLUMNS))
    sums = {name: [0, 0] for name in COLUMNS}
    for language, codec in ((language, codec) for language, codecs in SETS.items() for codec in codecs):
        line = f"{language + ' ' + codec:20}"
        for name, (length, is_labelled) in COLUMNS.items():
            misses, count = measure(language, codec, length, is_labelled)
            sums[name] = [sums[name][0] + count - len(misses), sums[name][1] + count]
            line += f"{f'{count - len(misses)} of {count}':>16}"
            for text, wrong in misses if options.misses else ():
                print(f"    {codec}, {name}: {text} -> {wrong}")
        print(line)
    print(f"{'all':20}" + "".join(f"{f'{hits / count:.1%} of {count}':>16}" for hits, count in sums.values()))


if __name__ == "__main__":
    main()
