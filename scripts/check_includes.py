#!/usr/bin/env python3
"""Who may include whom: every #include in src, sandbox, tests and bench against the table of docs/architecture.md.

Prints file:line for each include that is not allowed, and tries itself on bad samples first.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')

BELOW_PRODUCT = {"base", "ports", "component/session", "data", "controls", "hosting"}
ALL_LOGIC = BELOW_PRODUCT | {"component", "product", "generator"}

# Folder: the folders it may include besides itself. A folder is found by its longest name here.
MAY_INCLUDE = {
    "base": set(),
    "ports": {"base"},
    "controls": {"base", "ports"},
    "component/session": {"base", "ports"},
    "data": {"base", "ports", "component/session", "controls"},
    "component": {"base", "ports", "component/session", "data"},
    "hosting": {"base", "ports", "component/session", "controls"},
    "product": BELOW_PRODUCT,
    "generator": BELOW_PRODUCT | {"product"},
    "platform/automation": {"base"},
    "platform/ado": ALL_LOGIC | {"platform/automation"},
    "platform/win32": ALL_LOGIC | {"platform/automation"},
    "platform/com": ALL_LOGIC | {"platform/automation"},
    "sandbox/odbc": {"base", "ports"},
    # The stand-ins for ADO's classes speak automation, too.
    "sandbox/com": {"base", "ports", "platform/automation", "sandbox/odbc"},
    "sandbox/catalogue": {"base", "ports", "sandbox/odbc"},
    # Knows the component through COM only; the plain helpers for text and values are everybody's.
    "sandbox/host": {"base"},
}

# Headers that a folder may take from another one of which it must not see the rest.
FACES = {
    "platform/com": {
        "platform/ado/ado_database.h",
        "platform/win32/desktop.h",
        "platform/win32/form_host.h",
        "platform/win32/host_window_object.h",
        "platform/win32/settings.h",
        "platform/win32/win32.rc",
    },
}

# Of the folders that use the controls, this one has few files that may.
ONLY_FILES = {("data", "controls"): ("data/control_fill", "data/ensure_connection")}

# Folders that may include the headers of the system; the others compile on any, with the standard library alone.
KNOW_THE_SYSTEM = ("platform/", "sandbox/", "tests/", "bench/")

STANDARD = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint cstdio
    cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem forward_list fstream functional
    future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view
    syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray
    variant vector version""".split()
)


def folder_of(path):
    """The room that a path below src (or one that starts with sandbox/, tests/, bench/) stands in; None for no room."""
    parts = path.split("/")
    for length in range(len(parts) - 1, 0, -1):
        name = "/".join(parts[:length])
        if name in MAY_INCLUDE:
            return name
    return parts[0] if parts[0] in ("tests", "bench") else None


def fault_of(path, quoted, angled):
    """What is wrong with an include in the file, or None. Paths are as they are written in an include."""
    here = folder_of(path)
    if here in ("tests", "bench"):
        return None
    if here is None:
        return "stands in a folder that scripts/check_includes.py does not know"
    if angled is not None:
        if angled in STANDARD or path.startswith(KNOW_THE_SYSTEM):
            return None
        return f"{here} must not include <{angled}>: the standard library only"
    there = folder_of(quoted) if "/" in quoted else here
    if there is None:
        return f'"{quoted}" is not written from the root, or stands in no known folder'
    if there in ("tests", "bench"):
        return f"nobody includes {there}"
    if there == here or quoted in FACES.get(here, ()):
        return None
    if there not in MAY_INCLUDE[here]:
        return f"{here} must not include {there}"
    only = ONLY_FILES.get((here, there))
    if only is not None and path.rpartition(".")[0] not in only:
        return f"of {here}, only {' and '.join(only)} may include {there}"
    return None


def faults_in(path, text):
    for number, line in enumerate(text.splitlines(), 1):
        found = INCLUDE.match(line)
        if found:
            fault = fault_of(path, *found.groups())
            yield number, fault


def self_test():
    bad = [
        ("base/a.h", '#include "ports/b.h"'),
        ("base/a.h", "#include <windows.h>"),
        ("product/a.cpp", "#include <sys/stat.h>"),
        ("data/sql_field.cpp", '#include "controls/combo_box.h"'),
        ("component/session/a.cpp", '#include "component/general.h"'),
        ("controls/a.cpp", '#include "sandbox/odbc/b.h"'),
        ("platform/ado/a.cpp", '#include "platform/win32/settings.h"'),
        ("platform/com/a.cpp", '#  include "platform/win32/handles.h"'),
        ("sandbox/odbc/a.cpp", '#include "platform/automation/bstr.h"'),
        ("sandbox/host/a.cpp", '#include "component/general.h"'),
        ("product/a.cpp", '#include "tests/support/fake_ports.h"'),
        ("elsewhere/a.cpp", "#include <string>"),
    ]
    good = [
        ("data/control_fill.cpp", '#include "controls/combo_box.h"'),
        ("platform/com/a.cpp", '#include "platform/win32/settings.h"'),
        ("sandbox/com/a.cpp", '#include "platform/automation/bstr.h"'),
        ("base/a.h", "#include <string>"),
        ("platform/ado/a.cpp", "#include <windows.h>"),
    ]
    for path, line in bad:
        if not all(fault for _, fault in faults_in(path, line)):
            sys.exit(f"scripts/check_includes.py: does not notice {line} in {path}")
    for path, line in good:
        if any(fault for _, fault in faults_in(path, line)):
            sys.exit(f"scripts/check_includes.py: refuses {line} in {path}")


def main():
    self_test()
    files = includes = faults = 0
    for top in ("src", "sandbox", "tests", "bench"):
        for file in sorted((ROOT / top).rglob("*")):
            if file.suffix not in (".h", ".cpp", ".rc"):
                continue
            files += 1
            path = str(file.relative_to(ROOT / "src" if top == "src" else ROOT))
            for number, fault in faults_in(path, file.read_text(encoding="utf-8")):
                includes += 1
                if fault:
                    faults += 1
                    print(f"{file.relative_to(ROOT)}:{number}: {fault}")
    print(f"{files} files, {includes} includes, {faults} not allowed")
    return 1 if faults or not includes else 0


if __name__ == "__main__":
    sys.exit(main())
