"""Which set bytes are written in, told by how usual the characters are that each set makes of them."""

import re
from functools import lru_cache

from .charset_codecs import strictly

# The commonest characters of running text and of mail. Text decoded by the right set is made of
# them to a half or more; read by a wrong set it is made of rare ones.
HAN = ("的一是不了在人有我他这个们中来上大为和国地到以说时要就出会可也你对生能而子那得于着下自之年过发后作里用道行"
       "所然家种事成方多经么去法学如都同现当没动面起看定天分还进好小部其些主样理心本前开但因只从想实日军者意无力它与"
       "长把机十民第公此已工使情明性知全三又关点正业外将两高间由问很最重并物手应战向头文体政美相见被利什二等产或新己"
       "制身果加西斯月话合回特代内信表化老给世位次度门任常先海通教儿原东声提立及比员解水名真论处走义各入几口认条平系"
       "气题活尔更别打四神总何电数安少报才结反受目太量再感建务做接必场件计管期市直德资命山金指许统区保至队形社便空决"
       "治展马科司五基眼书非则听白却界达光放强即像难且权思王完设式色路记南品住告类求据程北边死张该交规万取拉格望觉术"
       "领共确传师观清今切院让识候带导争运您请邮箱谢联系话价单附件简历知票档料订购案划谈客服务费优惠免验码密户银网站"
       "這個們來為國說時會對後裡過發經學現當沒動還進樣開從實軍無與長機業將兩間問應戰頭體見產話門東聲員論義幾認條氣題"
       "爾別總電數報結務場計資許統區隊則聽達強難權設記類據邊張該規萬覺術領確傳師觀讓識帶導爭運請郵謝聯繫價單簡歷檔訂"
       "購劃談費優驗碼戶銀網開会社様件願致申込先日本語文字化返信送受仕事業務連絡担当電話番号部課長株式")
KANA = "".join(map(chr, (*range(0x3041, 0x3094), *range(0x30A1, 0x30F7)))) + "ー、。"
HANGUL = ("이다는을의에가고하지니은를로한기도서어나사자시인대해일정있리수것들그게과부보아만스전제상주신여원장동안으요"
          "드합구라공문선계면비관소회경성용세무진습연입내오트없우조유미었개방음실되할간감확메발송님녕")

# Candidates for bytes whose label lies, with the pairs of bytes that make up nearly all text of some.
CANDIDATES = {"gb18030": rb"[\xa1-\xa3\xb0-\xd7][\xa1-\xfe]", "big5hkscs": rb"[\xa1-\xc6][\x40-\x7e\xa1-\xfe]",
              "euc_jp": None, "cp932": None, "cp949": rb"[\xa1-\xa3\xb0-\xc8][\xa1-\xfe]", "koi8_r": None, "cp1251": None}


@lru_cache(maxsize=None)
def common_characters(codec):
    """The characters to expect of a set; of "" those of any East Asian writing."""
    if codec in ("koi8_r", "cp1251"):
        return frozenset("оеаинтсрвлкмпд")
    japanese = HAN + KANA
    return frozenset({"": japanese + HANGUL, "cp949": HANGUL, "euc_jp": japanese, "cp932": japanese}.get(codec, HAN))


def likeness(text, codec, data=b""):
    """How much decoded text looks like writing of that set, 0 to about 1."""
    wide = [c for c in text[:400] if c > "\x7f"] or [c for c in text[:16384] if c > "\x7f"][:400]
    if not wide:
        return 0.0
    score = sum(map(common_characters(codec).__contains__, wide)) / len(wide)
    score -= len(re.findall("[\ue000-\uf8ff\ufffd\uff61-\uff9f]", "".join(wide))) / len(wide)
    if score < 0.3 and CANDIDATES.get(codec):
        pairs = re.findall(rb"[\x80-\xff].?", data[:1000], re.S)
        usual = sum(map(bool, map(re.compile(CANDIDATES[codec], re.S).fullmatch, pairs)))
        score += 0.15 if pairs and usual * 10 >= len(pairs) * 9 else 0
    return score


def guess(data, declared="", hint=""):
    """(text, likeness) by the likeliest set for bytes whose label is missing or lies, or None."""
    runs = [len(run) for run in re.findall(rb"[\x80-\xff]+", data[:16384])]
    if runs.count(1) * 10 >= len(runs) * 8 and not hint:
        return None
    sample = b" ".join(re.findall(rb"[\x80-\xff][\x40-\xff]*", data[:16384]))
    best, best_score = None, 0.22 if declared else 0.12
    for codec in CANDIDATES:
        if codec in ("koi8_r", "cp1251") and (declared or sum(run > 2 for run in runs) * 2 < len(runs)):
            continue
        text = strictly(sample, codec) or sample.decode(codec, "replace_bad")
        if text.count("\ufffd") * 20 > len(text):
            continue
        score = likeness(text, codec, sample) + (0.2 if codec == hint else 0)
        if score > best_score:
            best, best_score = codec, score
    return (data.decode(best, "replace_bad"), best_score) if best else None
