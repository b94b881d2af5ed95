"""Helps the checks to read C++: the text of a file without comments and literals, in the same places."""

import re

_NO_CODE = re.compile(
    r"""//[^\n]*
      | /\*.*?\*/
      | R"(?P<mark>[^()\s\\]*)\(.*?\)(?P=mark)"
      | "(?:\\.|[^"\\\n])*"
      | (?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'
    """,
    re.VERBOSE | re.DOTALL,
)


def code_of(text):
    """The text with every comment and literal blanked; lines and columns stay where they are."""
    return _NO_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), text)


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def closing(text, opening):
    """The position of the bracket that closes the one at opening; -1 when there is none."""
    pairs = {"(": ")", "[": "]", "{": "}"}
    depth = 0
    for position in range(opening, len(text)):
        if text[position] == text[opening]:
            depth += 1
        elif text[position] == pairs[text[opening]]:
            depth -= 1
            if depth == 0:
                return position
    return -1
