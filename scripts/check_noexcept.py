#!/usr/bin/env python3
"""Whatever is called from outside lets no exception out: COM methods, window procedures, hooks, subclass and timer
procedures and the bodies of threads in src/platform and sandbox are declared noexcept.

(A passing run proves nothing here: Wine lets a C++ exception cross a window procedure.) Prints file:line for each
declaration without noexcept, and tries itself on bad samples first.
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True

from cpp_text import closing, code_of, line_of

ROOT = pathlib.Path(__file__).resolve().parent.parent

# A function with one of the calling conventions of callbacks. A pointer to one ("CALLBACK*", "X::*") has no name here.
CALLED_FROM_OUTSIDE = re.compile(
    r"\b(?:CALLBACK|WINAPI|APIENTRY|PASCAL|STDMETHODCALLTYPE|STDAPICALLTYPE|__stdcall|STDMETHODIMP"
    r"|STDMETHODIMP_\s*\(\s*\w+\s*\))\s+(?P<name>~?[A-Za-z_][\w:~]*)\s*(?P<open>\()"
)
# A lambda that becomes a callback or the body of a thread.
LAMBDA_FROM_OUTSIDE = re.compile(
    r"\b(?P<name>std::j?thread(?:\s+\w+)?|CreateThread|Enum\w*Windows|EnumWindows|EnumProps\w*|SetWindowsHookEx[AW]?"
    r"|SetWindowSubclass|SetTimer|RegisterWaitForSingleObject|QueueUserWorkItem|SetWinEventHook)\s*[({][^;{]*?(?P<open>\[)"
)
# Windows' own headers declare these without noexcept; their bodies only hand on to functions that have it.
DECLARED_BY_WINDOWS = {"WinMain", "wWinMain", "DllMain", "DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                       "DllUnregisterServer"}


def declarator_after(code, opening):
    """The text between a function's parameters and its body, or the end of its declaration."""
    end = closing(code, opening)
    stop = re.search(r"[;{]|=\s*(?:0|default|delete)\b", code[end + 1:])
    return code[end + 1: end + 1 + (stop.start() if stop else len(code))]


def faults_in(text):
    code = code_of(text)
    checked = 0
    faults = []
    for found in CALLED_FROM_OUTSIDE.finditer(code):
        if found["name"] in DECLARED_BY_WINDOWS:
            continue
        # A call, as in "return CALLBACK f(x)", does not occur; what is left are declarations and definitions.
        checked += 1
        if "noexcept" not in declarator_after(code, found.start("open")):
            faults.append((line_of(code, found.start()), f"{found['name']} is called from outside and not noexcept"))
    for found in LAMBDA_FROM_OUTSIDE.finditer(code):
        checked += 1
        end = closing(code, found.start("open"))
        parameters = re.match(r"\s*(\()?", code[end + 1:])
        after = (declarator_after(code, end + 1 + parameters.start(1)) if parameters.group(1)
                 else declarator_after(code, found.start("open")))
        if "noexcept" not in after:
            faults.append((line_of(code, found.start()), f"the function given to {found['name']} is not noexcept"))
    return checked, faults


def self_test():
    bad = [
        "LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {",
        "static DWORD WINAPI Body(void* parameter);",
        "HRESULT STDMETHODCALLTYPE Invoke(DISPID member,\n    REFIID iid) override {",
        "STDMETHODIMP QueryInterface(REFIID iid, void** object) override;",
        "STDMETHODIMP_(ULONG) AddRef() override;",
        "std::thread([&] { Work(noexcept_value()); }).join();",
        "EnumThreadWindows(id, [](HWND window, LPARAM l) -> BOOL { return TRUE; }, 0);",
    ]
    good = [
        "LRESULT CALLBACK Procedure(HWND window, UINT message) noexcept {",
        "using Procedure = LRESULT(CALLBACK*)(HWND, UINT);",
        "HRESULT (STDMETHODCALLTYPE Object::*method)(Parameters...)",
        "HRESULT STDMETHODCALLTYPE Next(ULONG (*f)(int), void* p) noexcept override;",
        "// DWORD WINAPI Body(void* parameter);",
        "STDMETHODIMP_(ULONG) AddRef() noexcept override { return 1; }",
        "std::thread([attempt]() mutable noexcept { attempt->Run(); }).detach();",
        "SetTimer(window, 1, 100, nullptr);",
    ]
    for sample in bad:
        if not faults_in(sample)[1]:
            sys.exit(f"scripts/check_noexcept.py: does not notice {sample}")
    for sample in good:
        if faults_in(sample)[1]:
            sys.exit(f"scripts/check_noexcept.py: refuses {sample}")


def main():
    self_test()
    files = checked = faults = 0
    for top in ("src/platform", "sandbox"):
        for file in sorted((ROOT / top).rglob("*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            files += 1
            here, found = faults_in(file.read_text(encoding="utf-8"))
            checked += here
            faults += len(found)
            for line, fault in found:
                print(f"{file.relative_to(ROOT)}:{line}: {fault}")
    print(f"{files} files, {checked} functions called from outside, {faults} of them not noexcept")
    return 1 if faults or not checked else 0


if __name__ == "__main__":
    sys.exit(main())
