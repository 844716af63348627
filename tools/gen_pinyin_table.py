#!/usr/bin/env python3
"""Generates common/pinyin_table.cc, the characters read with each syllable.

Source: Unicode's Unihan database as Debian ships it (package unicode-data,
/usr/share/unicode/Unihan_Readings.txt.bz2). A character's readings are the
union of its kMandarin and kXHC1983 fields: every syllable either field
gives it. Characters: U+3007 and U+4E00..U+9FFF (nothing outside the Basic
Multilingual Plane); SUPPLEMENT fills in U+3007 where Unihan has no reading. Each reading loses its tone mark, "ü" is written "v",
and it is filed under one of the 421 syllable names below, whose order is
fixed (a character with several readings ends up with the last of them).
Readings that are not among the 421 names are mapped by ALIASES; one that is
neither stops the generator, so a new Unihan release cannot slip in a
syllable silently. Within a row, characters are in code point order.

Usage: python3 tools/gen_pinyin_table.py [--check] [--output PATH]
(UNIHAN_READINGS in the environment names another Unihan_Readings.txt.bz2.)
"""
import bz2
import os
import re
import sys
import unicodedata

sys.dont_write_bytecode = True  # keep tools/ free of __pycache__
import table_output  # noqa: E402

UNIHAN_READINGS = "/usr/share/unicode/Unihan_Readings.txt.bz2"
SOURCE_PACKAGE = "unicode-data"
FIELDS = ("kMandarin", "kXHC1983")

SYLLABLES = """
A Ai An Ang Ao Ba Bai Ban Bang Bao Bei Ben Beng Bi Bian Biao Bie Bin Bing Bo Bu Ca Cai Can Cang
Cao Ce Cen Ceng Cha Chai Chan Chang Chao Che Chen Cheng Chi Chong Chou Chu Chua Chuai Chuan
Chuang Chui Chun Chuo Ci Cong Cou Cu Cuan Cui Cun Cuo Da Dai Dan Dang Dao De Dei Den Deng Di Dia
Dian Diao Die Ding Diu Dong Dou Du Duan Dui Dun Duo E Ei En Eng Er Fa Fan Fang Fei Fen Feng Fiao
Fo Fou Fu Ga Gai Gan Gang Gao Ge Gei Gen Geng Gong Gou Gu Gua Guai Guan Guang Gui Gun Guo Ha Hai
Han Hang Hao He Hei Hen Heng Hm Hng Hong Hou Hu Hua Huai Huan Huang Hui Hun Huo Ji Jia Jian
Jiang Jiao Jie Jin Jing Jiong Jiu Ju Juan Jue Jun Ka Kai Kan Kang Kao Ke Kei Ken Keng Kong Kou Ku
Kua Kuai Kuan Kuang Kui Kun Kuo La Lai Lan Lang Lao Le Lei Leng Li Lia Lian Liang Liao Lie Lin
Ling Liu Lo Long Lou Lu Luan Lue Lun Luo Lv Lve M Ma Mai Man Mang Mao Me Mei Men Meng Mi Mian
Miao Mie Min Ming Miu Mo Mou Mu N Na Nai Nan Nang Nao Ne Nei Nen Neng Ng Ni Nian Niang Niao Nie
Nin Ning Niu Nong Nou Nu Nuan Nue Nun Nuo Nv Nve O Ou Pa Pai Pan Pang Pao Pei Pen Peng Pi Pian
Piao Pie Pin Ping Po Pou Pu Qi Qia Qian Qiang Qiao Qie Qin Qing Qiong Qiu Qu Quan Que Qun Ran
Rang Rao Re Ren Reng Ri Rong Rou Ru Rua Ruan Rui Run Ruo Sa Sai San Sang Sao Se Sen Seng Sha Shai
Shan Shang Shao She Shei Shen Sheng Shi Shou Shu Shua Shuai Shuan Shuang Shui Shun Shuo Si Song
Sou Su Suan Sui Sun Suo Ta Tai Tan Tang Tao Te Tei Teng Ti Tian Tiao Tie Ting Tong Tou Tu Tuan
Tui Tun Tuo Wa Wai Wan Wang Wei Wen Weng Wo Wu Xi Xia Xian Xiang Xiao Xie Xin Xing Xiong Xiu Xu
Xuan Xue Xun Ya Yai Yan Yang Yao Ye Yi Yin Ying Yo Yong You Yu Yuan Yue Yun Za Zai Zan Zang Zao
Ze Zei Zen Zeng Zha Zhai Zhan Zhang Zhao Zhe Zhei Zhen Zheng Zhi Zhong Zhou Zhu Zhua Zhuai Zhuan
Zhuang Zhui Zhun Zhuo Zi Zong Zou Zu Zuan Zui Zun Zuo
""".split()

# Toneless readings outside the 421 names: the nearest listed name, or None
# to drop the reading. ("ê" needs no entry: losing its circumflex with the
# tone marks, it is filed under "E"; "m", "n", "ng", "hm", "hng" are listed.)
ALIASES = {"cei": "Ce", "din": "Ding", "wong": "Weng", "biang": None}

# Readings for characters that this Unihan release lists in no reading field:
# U+3007 "〇" (ideographic number zero) entered Unihan only in Unicode 15.1,
# which gives it kMandarin "líng". Used only where the source has nothing.
SUPPLEMENT = {0x3007: {"líng"}}

TONE_MARKS = {"\u0300", "\u0301", "\u0302", "\u0304", "\u030C"}
CODE_POINTS = [0x3007] + list(range(0x4E00, 0xA000))
CHARS_PER_LINE = 12


def toneless(reading):
    """"lüè" -> "lve", "zhōng" -> "zhong", "ê̄" -> "e"."""
    decomposed = unicodedata.normalize("NFD", reading.lower())
    plain = "".join(ch for ch in decomposed if ch not in TONE_MARKS)
    plain = plain.replace("u\u0308", "v")
    if not re.fullmatch("[a-z]+", plain):
        raise SystemExit(f"unexpected reading {reading!r}")
    return plain


def syllable_name(reading):
    plain = toneless(reading)
    if plain in ALIASES:
        return ALIASES[plain]
    name = plain.capitalize()
    if name not in SYLLABLE_INDEX:
        raise SystemExit(f"reading {reading!r} is none of the 421 syllables and has no alias")
    return name


def field_readings(field, value):
    if field == "kXHC1983":  # "0121.040,0122.010*:cháng 1456.020:zhǎng"
        return [entry.rsplit(":", 1)[1] for entry in value.split()]
    return value.split()  # kMandarin: "dōu dū"


def read_unihan(path):
    wanted = set(CODE_POINTS)
    readings = {}
    version = "unknown"
    with bz2.open(path, "rt", encoding="utf-8") as source:
        for line in source:
            if line.startswith("# Unicode version:"):
                version = line.split(":", 1)[1].strip()
            if line.startswith("#") or not line.strip():
                continue
            code, field, value = line.rstrip("\n").split("\t")
            cp = int(code[2:], 16)
            if field in FIELDS and cp in wanted:
                readings.setdefault(cp, set()).update(field_readings(field, value))
    for cp, extra in SUPPLEMENT.items():
        readings.setdefault(cp, set(extra))
    return version, readings


def build_rows(readings):
    rows = {name: [] for name in SYLLABLES}
    for cp in sorted(readings):
        names = {syllable_name(r) for r in readings[cp]} - {None}
        if not names:
            raise SystemExit(f"U+{cp:04X} has readings but none of them is kept")
        for name in names:
            rows[name].append(cp)
    return rows


def render(version, package_version, rows):
    total = sum(len(chars) for chars in rows.values())
    distinct = len({cp for chars in rows.values() for cp in chars})
    lines = [
        f"// Generated by tools/gen_pinyin_table.py from Unihan_Readings.txt (Unicode {version},",
        "// Debian package unicode-data), fields kMandarin and kXHC1983, U+3007 from the tool's",
        "// SUPPLEMENT. Do not edit; regenerate with `python3 tools/gen_pinyin_table.py`",
        "// (`--check` compares with this file).",
        f"// {total} characters in all, {distinct} distinct.",
        table_output.source_line(SOURCE_PACKAGE, package_version),
        '#include "common/pinyin_table.h"',
        "",
        "namespace tessel {",
        "namespace pinyin_internal {",
        "",
        "const PinyinSyllable kPinyinSyllables[kPinyinSyllableCount] = {",
    ]
    for index, name in enumerate(SYLLABLES):
        chars = rows[name]
        lines.append(f'    {{"{name}",  // {index}: {len(chars)}')
        if not chars:
            lines.append('     u""},')
            continue
        for start in range(0, len(chars), CHARS_PER_LINE):
            chunk = "".join(f"\\u{cp:04X}" for cp in chars[start:start + CHARS_PER_LINE])
            end = "}," if start + CHARS_PER_LINE >= len(chars) else ""
            lines.append(f'     u"{chunk}"{end}')
    lines += [
        "};",
        "",
        "}  // namespace pinyin_internal",
        "}  // namespace tessel",
        "",
    ]
    return "\n".join(lines)


SYLLABLE_INDEX = {name: i for i, name in enumerate(SYLLABLES)}


def main():
    args = table_output.parse_args(__doc__.splitlines()[0], "common/pinyin_table.cc")
    if len(SYLLABLES) != 421 or len(SYLLABLE_INDEX) != 421:
        raise SystemExit("the syllable list must hold 421 distinct names")
    path = os.environ.get("UNIHAN_READINGS", UNIHAN_READINGS)
    if not os.path.exists(path):
        table_output.skip(f"{path} not found: install the Debian package unicode-data")
    version, readings = read_unihan(path)
    package_version = table_output.debian_package_version(SOURCE_PACKAGE)
    table_output.emit(args, render(version, package_version, build_rows(readings)),
                      SOURCE_PACKAGE, package_version)


if __name__ == "__main__":
    main()
