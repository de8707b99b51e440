"""Names that files may have: what a program that takes one byte for a letter, or a path for short, stumbles over."""

DEEP = "/".join(["глубоко 深い " + str(level) + " " + "x" * 38 for level in range(6)])
NAMES = [
    "Привет мир", "ёжик-Щ", "画像", "图片 一", "ソ表十能", "그림 하나", "Ελληνικά", "שלום", "صورة", "ภาพ",
    "🚤 boat", "👩‍👩‍👧 family", "e\u0301te\u0301", "été", "a\u0308o\u0308\u0323", "𝒳 beyond", "50% #1 & (2)", "it's ^ ! ;",
    "naïve.v2", DEEP + "/船 🎉",
]
assert len(NAMES) == 20 and len(DEEP) > 300
