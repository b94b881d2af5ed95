#!/usr/bin/env python3
"""No call in src that follows the process's or the user's locale: numbers, dates and text have one module of ours.

Prints file:line for each such call, and tries itself on bad samples first.
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True

from cpp_text import code_of, line_of

ROOT = pathlib.Path(__file__).resolve().parent.parent

CALL = r"(?<![\w.>])(?:(?:std)?::)?(?:%s)\s*\("

# What is refused: a name for the rule, a pattern for the code, and what to use instead.
RULES = [
    ("printf", CALL % r"\w*printf(?:_s)?|wsprintf[AW]?|wvsprintf[AW]?|StringC\w*Printf\w*", "base/format.h, base/convert.h"),
    ("scanf", CALL % r"\w*scanf(?:_s)?", "base/convert.h"),
    ("text to number", CALL % r"strto\w+|wcsto[dflu]\w*|ato[filq]\w*|_w?to[filn]\w*|sto(?:i|l|ll|ul|ull|f|d|ld)",
     "base/convert.h, std::from_chars"),
    ("number to text", CALL % r"to_w?string|_[iul]\w*to[aw]|_[efg]cvt\w*", "base::DecimalText, base::NumberText"),
    ("letters", CALL % r"(?:to|isw?|towc)(?:lower|upper|alpha|alnum|digit|xdigit|space|punct|print|graph|cntrl|blank|trans)"
                       r"|tow(?:lower|upper)|_?(?:str|wcs|mbs)n?(?:icmp|casecmp|lwr|upr|coll|icoll)\w*|(?:str|wcs)xfrm"
                       r"|lstrcmpi?[AW]?|Char(?:Upper|Lower)\w*|IsChar(?:Alpha|Upper|Lower)\w*|StrCmp\w+",
     "base/text.h"),
    ("process locale", CALL % r"_?w?setlocale|localeconv|_configthreadlocale|use_facet|has_facet|imbue|SetThreadLocale",
     "base::Locale as a value"),
    ("std::locale", r"\bstd::locale\b", "base::Locale as a value"),
    ("dates", CALL % r"w?c?s?strftime|wcsftime|put_time|get_time|_?w?asctime\w*|_?w?ctime\w*", "base/format.h"),
    ("streams", r"\bstd::w?[io]?(?:string|f)?stream\b|\bstd::(?:cout|cerr|clog|cin)\b", "base/convert.h"),
    ("headers", r"#\s*include\s*<(?:cctype|cwctype|clocale|locale|sstream|iostream|iomanip|ostream|istream|fstream"
                r"|ctype\.h|wctype\.h|locale\.h|stdio\.h)>", "base/"),
    ("code page", r"\bCP_(?:ACP|OEMCP|THREAD_ACP|MACCP)\b", "base/ansi.h, or UTF-16"),
    ("Windows' conventions", CALL % r"(?:GetLocaleInfo|Get(?:User|System)DefaultL\w+|GetThreadLocale|Get(?:Number|Currency|Date|Time)Format"
                                    r"|Enum(?:Date|Time)Formats|EnumCalendarInfo|CompareString|LCMapString|FoldString|GetStringType)\w*",
     "ports::Settings::UserLocale"),
    ("automation's conversions", CALL % r"VariantChangeType(?:Ex)?|VarFormat\w*|Var\w+FromStr|VarBstrFrom\w+|VarCmp|VarBstrCmp",
     "platform/automation/variant_value.h with base/convert.h"),
]

# Where a rule does not hold, and why.
ALLOWED = {
    ("Windows' conventions", "src/platform/win32/settings.cpp"): "reads the user's conventions into base::Locale",
    ("automation's conversions", "src/platform/com/argument_normaliser.cpp"):
        "gives a caller's own typed variable its value back in that type, as automation does",
}

PATTERNS = [(name, re.compile(pattern), instead) for name, pattern, instead in RULES]


def faults_in(path, text):
    code = code_of(text)
    for name, pattern, instead in PATTERNS:
        if (name, path) in ALLOWED:
            continue
        for found in pattern.finditer(code):
            yield line_of(code, found.start()), f"{found.group().strip(' (')} ({name}): use {instead}"


def self_test():
    bad = [
        'std::snprintf(buffer, 9, "%f", x);', "double d = std::stod(text);", "x = atof(p);", "std::to_string(1.5)",
        "if (isdigit(c))", "std::tolower(c)", "towupper(c)", "setlocale(LC_ALL, nullptr);", "std::ostringstream out;",
        "#include <cctype>", "MultiByteToWideChar(CP_ACP, 0, p, -1, q, 9)", "GetLocaleInfoW(1, 2, 3, 4)",
        "lstrcmpiW(a, b)", "CompareStringEx(a)", "VarBstrFromDate(a)", "  wsprintfW(b, f)", "strtod(p, &e)",
        "_wcsicmp(a, b)", "std::locale user;", "strftime(b, 9, f, t)", "GetDateFormatEx(a)",
    ]
    good = [
        "// printf is not used", 'Report("std::stod(");', "std::from_chars(a, b, n);", "base::ToLower(text)",
        "object.isdigit(c)", "ToUpper(text)", "format.scan(x)", "int digits(int n)", "R\"(setlocale( )\"",
    ]
    for sample in bad:
        if not list(faults_in("src/base/sample.cpp", sample)):
            sys.exit(f"scripts/check_locale_calls.py: does not notice {sample}")
    for sample in good:
        if list(faults_in("src/base/sample.cpp", sample)):
            sys.exit(f"scripts/check_locale_calls.py: refuses {sample}")


def main():
    self_test()
    files = faults = 0
    for file in sorted((ROOT / "src").rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        files += 1
        path = str(file.relative_to(ROOT))
        for line, fault in faults_in(path, file.read_text(encoding="utf-8")):
            faults += 1
            print(f"{path}:{line}: {fault}")
    print(f"{files} files, {len(RULES)} rules, {faults} calls that depend on a locale")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
