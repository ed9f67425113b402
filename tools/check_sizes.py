#!/usr/bin/env python3
"""Measures files and functions: no file of src/ or tests/ over 400 lines, no function of src/ over
60. A function's lines are counted from its signature to its closing brace.

usage: tools/check_sizes.py [--longest N] [FILE...]
"""

import argparse
import re
import statistics
import sys

from common import project_files, read, without_comments

FILE_END = 400
FUNCTION_END = 60

LABEL = re.compile(r"\s*(?:public|protected|private|signals|Q_SIGNALS)(?:\s+(?:slots|Q_SLOTS))?\s*:"
                   r"|\s*Q_OBJECT\b|\s*Q_GADGET\b")
TYPE = re.compile(r"(?:typedef\s+)?(?:class|struct|union|enum)\b")
LAMBDA = re.compile(r"\[[^\[\]]*\]\s*(?:\([^()]*(?:\([^()]*\)[^()]*)*\))?\s*"
                    r"(?:mutable|noexcept|\s)*(?:->\s*[^{};]*)?$")
NAME = re.compile(r"([~\w:]*operator\s*(?:\(\)|\[\]|[^\s\w(]+|\s[\w:&*<> ]+?)|[~\w:]+)\s*\(")
WORDS_BEFORE_PARENTHESES = {"alignas", "decltype", "noexcept", "requires", "explicit", "if"}


class Function:
    def __init__(self, name, first, last):
        self.name, self.first, self.last = name, first, last
        self.lines = last - first + 1


def bare_code(text):
    """Code without comments, texts and preprocessor lines; line breaks stay."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", blank, without_comments(text), flags=re.MULTILINE)


def function_name(head):
    for match in NAME.finditer(head):
        if match.group(1) not in WORDS_BEFORE_PARENTHESES:
            return match.group(1).strip()
    return "lambda"


def without_template(head):
    """The head after its `template <...>`, whose defaults would look like a value."""
    if not re.match(r"template\s*<", head):
        return head
    depth = 0
    for at, sign in enumerate(head):
        depth += {"<": 1, ">": -1}.get(sign, 0)
        if sign == ">" and depth == 0:
            return head[at + 1 :].strip()
    return head


def kind_of(head, glued):
    """What the brace after `head` opens. `glued`: no blank stands before it."""
    text = without_template(re.sub(r"\[\[.*?\]\]", "", head, flags=re.DOTALL).strip())
    if re.match(r"(?:inline\s+)?namespace\b", text) or re.fullmatch(r"extern\s*", text):
        return "space"
    if TYPE.match(text) and not re.search(r"\)\s*(?:const|noexcept|override|final|\s)*$", text):
        return "type"
    if LAMBDA.search(text):
        return "function"
    signature = re.sub(r"operator\s*\W+?\(", "operator(", text)
    if glued or "(" not in text or re.search(r"(?<![=!<>])=(?!=)", re.sub(r"\(.*\)", "", signature,
                                                                        flags=re.DOTALL)):
        return "value"
    return "function"


def functions_of(text):
    """Functions of namespaces and classes, and lambdas of namespaces; what lies in a function
    counts as part of it."""
    code = bare_code(text)
    scopes, found = [], []  # scopes: (kind, offset of the head, name)
    start = 0               # where the head of the next brace begins
    inside = 0              # open braces within a function or a value
    for match in re.finditer(r"[{};]", code):
        at, sign = match.start(), match.group(0)
        if inside:
            inside += {"{": 1, "}": -1, ";": 0}[sign]
            if inside:
                continue
            kind, head, name = scopes.pop()
            if kind == "function":
                found.append(Function(name, line_of(code, head), line_of(code, at)))
            # A value may be followed by the rest of its statement: `: m_a{1}, m_b{2} {`.
            start = head if kind == "value" else at + 1
        elif sign == "{":
            while label := LABEL.match(code, start, at):
                start = label.end()
            kind = kind_of(code[start:at], code[at - 1 : at] not in (" ", "\n", ""))
            head = start + len(code[start:at]) - len(code[start:at].lstrip())
            scopes.append((kind, head, function_name(code[head:at])))
            inside = 1 if kind in ("function", "value") else 0
            start = at + 1
        else:
            if sign == "}" and scopes:
                scopes.pop()
            start = at + 1
    return found


def line_of(code, offset):
    return code.count("\n", 0, offset) + 1


def median(numbers):
    return f"{statistics.median(numbers):g}" if numbers else "none"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--longest", type=int, default=0, help="also list the N longest functions")
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()

    bad, functions, lengths = 0, [], []
    for file in options.files or project_files("src", "tests", endings=(".h", ".cpp")):
        text = read(file)
        length = len(text.splitlines())
        if length > FILE_END:
            print(f"{file}:{length}: the file has {length} lines, {FILE_END} is the end")
            bad += 1
        if not file.startswith("src/") and not options.files:
            continue
        lengths.append(length)
        for function in functions_of(text):
            functions.append((file, function))
            if function.lines > FUNCTION_END:
                print(f"{file}:{function.first}: function {function.name} is {function.lines} lines,"
                      f" {FUNCTION_END} is the end")
                bad += 1

    for file, function in sorted(functions, key=lambda it: -it[1].lines)[: options.longest]:
        print(f"{function.lines:5} {file}:{function.first} {function.name}")
    print(f"sizes: {len(lengths)} files of src, median {median(lengths)} lines; {len(functions)} "
          f"functions, median {median([it.lines for _, it in functions])} lines; {bad} faults")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
