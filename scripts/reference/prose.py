"""Finds in our docstrings what Doxygen wants to be told apart: parameters and results.

Our headers say it in prose, and once for what is the same everywhere. The sentences about what comes
back ("Returns ...", "1 if ...", "null for none", or a noun: "The number of ...") become @return; those
that name a parameter become @param.
"""

import re

def either(*patterns):
    return "(?:" + "|".join(patterns) + ")"


SENTENCE = re.compile(r"(?<!e\.g\.)(?<!i\.e\.)(?:(?<=\.)|(?<=\.\)))\s+(?=[A-Z0-9*\"(-])")
CLAUSE = re.compile(r"; (?![^()]*\))")
# What follows a value where that is what comes back: "0 if it stays", but not "0 clears it" or "null for
# hwnd is the desktop".
WHEN = r"(?:if|for(?! \w+ (?:is|are|means)\b)|on|when|only|unless|or|also|as|with|without|then|success|until|where|" \
       r"before|behind|at|and)\b"
NOT_WHEN = r"(?:means|stands|asks|is |clears|sets|deletes|takes)"
VALUE = either(
    rf"-?[0-9]+(?:[.;:,]| {WHEN}| to \d)", "0x", "Always [0-9]",
    rf"(?:Null|Non-?(?:null|zero)|True|False)(?:[.:;,]| {WHEN})",
    "(?:0|Non-zero) (?:keeps|stops|swallows)",
    r"Whether\b", r"How (?:many|often|much)\b",
    r"[A-Z0-9]+_\w*", r"k[A-Z]\w+", r"ID[A-Z]+\b",  # constants
    r"Its (?=index|position|length|answer|style)",
    r"The (?:index|number|size) of",
    r"The (?:result|platform's|new one|style before|length|sum|window's answer|window that had|message's result)\b",
)
NOUN = either("The", "A(?! null)", "An", "That", "Those", "Their", "Its", "One", "Two", "Four", "How", "What", "Where",
              "Which", "By how", "All", "None", "Same", "As", "Characters", "Bytes", "Pixels", "Names", "Milliseconds",
              "Seconds", "Twips")
# A sentence that begins with a value tells what comes back, and the first one does if it is a noun; in the
# later ones a noun is something else's.
FIRST = re.compile(either(VALUE, rf"{NOUN}\b"))
LATER = re.compile(VALUE)
TOLD = re.compile(either(  # anywhere in a sentence
    r"\b[Rr]eturns?\b(?! when| at once| after)",
    r"\bresults? (?:is|are|tells)\b", r"\bis the result\b", r"\bas (?:the|its|a) result\b",
    r"\bwith (?:its|their|the platform's) results?\b",
    r"\b(?:gives?|gets?) (?:-?[01]|null|none)\b",
    r"(?:[A-Z]{3}\w*_\w+|-1|[Nn]ull) on failure\b",
    rf"(?:^|[;:,] (?:or |and |then )?)(?:-?[0-9]+|[Nn]on-zero|[Nn]ull|true|false)[:;,]? {WHEN}",
    r"; -?[0-9]+[.;,]", rf"[;,] -?[01] (?!{NOT_WHEN})", r"\bnon-zero:", r"\b1 too\b",
    r": whether\b", r"\btells (?:how|whether)\b"))
# In a remark or a class's docstring, of all that belongs to it.
SAID_FOR_ALL = re.compile(r"[^.:]*?" + either(
    r"[Rr]esults? (?:of [^.]*?)?(?:are|is) (?:1\b|the|those)", "[Rr]esults? that (?:are|is) not told",
    "Where a result is not told", "Its result is 1", r"[Ee]ach [\w ]*?(?:returns|gives|is) 1", "1 if all ",
) + r"[^.]*(?:\.{3}[^.]*)*\.")
WHAT_IS_SAID = re.compile(either(
    r"[Rr]esults? (?:that (?:are|is) not told |is not told it |of [^.]*? )?(?:are|is)",
    r"[Ee]ach [\w ]*?(?:gives|is|returns)") + " (.*)")
SUCCESS = "1 for success, 0 for failure."


def sentences(text):
    """The text's sentences; what stands between quotes is in one of them."""
    found = []
    for piece in SENTENCE.split(" ".join(text.split())):
        if found and found[-1].count('"') % 2:
            found[-1] += " " + piece
        elif piece:
            found.append(piece)
    return found


def upper(text, names=()):
    """Begins with a capital letter, unless the first word is a name."""
    word = re.match(r"\w*", text)[0]
    return text if word in names or re.search(r".[A-Z]|_", word) else text[:1].upper() + text[1:]


def is_of(names, sentence):
    """Whether the sentence is about one of the parameters, and not about what comes back for it."""
    first = re.match(r"\*?(\w+)", sentence)
    return bool(first) and first[1] in names and not re.search(r"\b(?:gives|results?|returns)\b", sentence)


def result_parts(text, noun, names=()):
    """What tells a result, and which whole sentences that takes out of the text. With noun, the first
    sentence also does if it is a noun."""
    parts, whole = [], []
    for number, sentence in enumerate(sentences(text)):
        if (FIRST if number == 0 and noun else LATER).match(sentence):
            parts.append(sentence)
            if number:
                whole.append(sentence)
        elif sentence.startswith("Returns ") and not re.match("Returns (?:when|at once|after)", sentence):
            parts.append(upper(sentence[8:], names))
            whole.append(sentence)
        elif TOLD.search(sentence) and not is_of(names, sentence):
            pieces = CLAUSE.split(sentence.replace(": whether", "; whether"))
            first = next((n for n, piece in enumerate(pieces)
                          if LATER.match(upper(piece)) or re.match("returns |whether |how ", piece)), 0)
            piece = "; ".join(pieces[first:])
            parts.append(upper(piece.removeprefix("returns "), names))
    return parts, whole


def said_for_all(text):
    """What a remark says of the results of all that stands below it."""
    found = SAID_FOR_ALL.search(" ".join(text.split()))
    if not found:
        return ""
    if re.search(r"[Rr]esults are 1 for success", found[0]):
        return SUCCESS
    said = WHAT_IS_SAID.search(found[0])
    if not said:
        return found[0].strip()
    first, *others = CLAUSE.split(said[1].replace(" unless told otherwise", "").rstrip("."))
    told = "; ".join([first, *(piece for piece in others if LATER.match(piece))])
    return upper(told).replace("The platform's", "The platform's result") + "."


def of_parameter(name, text):
    """The sentences that name the parameter."""
    word = re.compile(rf"(?<![\w:]){re.escape(name)}\b")
    return [s for s in sentences(text) if word.search(s)]
