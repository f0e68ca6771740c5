#!/usr/bin/env python3
"""Makes contacts.tsv: an invented address book of 400 rows, the same on every run.

Usage: make_contacts.py > contacts.tsv
"""
import random

LATIN = ["Anna", "Björn", "Chloé", "Dolores", "Éva", "Frieda", "Giuseppe", "Håkon", "Inês",
         "João", "Kateřina", "Łukasz", "Małgorzata", "Nuño", "Øyvind", "Paweł", "Raúl", "Siân",
         "Søren", "Tomáš", "Ülkü", "Zoë"]
LATIN_LAST = ["Almeida", "Brånemark", "Čapek", "Dvořák", "Fernández", "Gößl", "Jørgensen",
              "Kowalczyk", "Lindström", "Müller", "O’Neill", "Šimková", "Yılmaz"]
CYRILLIC = ["Алексей", "Вера", "Галина", "Дмитрий", "Ирина", "Любовь", "Марія", "Олена", "Пётр",
            "Светлана", "Тарас", "Юлия"]
CYRILLIC_LAST = ["Белов", "Гончаренко", "Жукова", "Коваль", "Орлов", "Соловьёва", "Щербак"]
ARABIC = ["أحمد", "إيمان", "خالد", "رنا", "سلمى", "عبد الله", "فاطمة", "ليلى", "محمود", "نور"]
ARABIC_LAST = ["الحداد", "الخطيب", "العلي", "النجار", "منصور"]
CHINESE = ["陈静", "李伟", "刘洋", "王芳", "张敏", "赵磊", "周杰", "黄丽华", "欧阳雪", "司马健"]
EMOJI = ["🎸", "🐢", "🌻", "⚽", "🚲", "👩‍🚀", "🇧🇷", "❤️", "📚", "🍜"]
GROUPS = ["Family", "Работа", "العائلة", "同学", "Chess club ♟", "Neighbours", ""]
WEIGHTS = [3, 3, 2, 3, 1, 2, 2]
REMARKS = [
    "met at the harbour festival",
    "звонить только вечером",
    "الجار في الطابق الثالث",
    "大学同学，现在住在上海",
    "plays bass 🎸, owes me a strap",
    "birthday 29 February – every four years",
    "allergic to nuts!",
    "second number, old one is dead",
    "50% discount at the bike shop",
    "C:\\photos\\harbour",
]
LONG_SENTENCES = [
    "Moved twice in one year, first to the coast and then back inland, so check the address. ",
    "Ключи от мастерской лежат у соседки на первом этаже, предупредить заранее. ",
    "يفضل الرسائل القصيرة على المكالمات ولا يرد أثناء العمل. ",
    "春节以后换了工作，新公司的电话还不知道，先用这个号码。 ",
    "Sings in the choir on Thursdays; never call before ten on Fridays 😴. ",
]


def nickname(rng):
    kind = rng.choices(range(5), [8, 5, 3, 5, 2])[0]
    if kind == 0:
        name = f"{rng.choice(LATIN)} {rng.choice(LATIN_LAST)}"
    elif kind == 1:
        name = f"{rng.choice(CYRILLIC)} {rng.choice(CYRILLIC_LAST)}"
    elif kind == 2:
        name = f"{rng.choice(ARABIC)} {rng.choice(ARABIC_LAST)}"
    elif kind == 3:
        name = rng.choice(CHINESE)
    else:
        return ""
    return name + (" " + rng.choice(EMOJI) if rng.random() < 0.2 else "")


def remark(rng):
    chance = rng.random()
    if chance < 0.4:
        return ""
    if chance < 0.93:
        return rng.choice(REMARKS)
    return "".join(rng.choice(LONG_SENTENCES) for _ in range(rng.randint(4, 40))).strip()


def main():
    rng = random.Random(20100528)
    numbers = rng.sample(range(10000, 4294967295), 400)
    print("number\tnickname\tgroup\tremark")
    for number in numbers:
        group = rng.choices(GROUPS, WEIGHTS)[0]
        print(f"{number}\t{nickname(rng)}\t{group}\t{remark(rng)}")


if __name__ == "__main__":
    main()
