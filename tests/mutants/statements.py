# SPDX-License-Identifier: MIT
"""Finds the statements of a C++ source file that can be taken out one at a time.

No parser of C++: it knows the form that clang-format gives the project's sources. What it takes for a
statement and isn't one doesn't compile without it, and is left aside then.
"""

import dataclasses
import re

# Begins of statements that are never taken out: they do nothing, or only tell.
_LEFT_ALONE = re.compile(
    r"(q(C?(Debug|Info|Warning|Critical)|Fatal)|log[A-Z]\w*)\s*\(|Q_(ASSERT|UNUSED|OBJECT)\b"
    r"|(using|typedef|friend|static_assert|goto|struct|class|enum)\b|while \(.*\);$|;$")

# Names for tests and screen readers; the tables mark them, since they show nowhere else.
_NAMING = re.compile(r"setObjectName\(|setAccessible(Name|Description)\(")

_NO_TYPE = "return|throw|delete|emit|else|if|for|while|switch|case|co_return|new|do"
_DECLARATION = re.compile(
    rf"(?:(?:static|const|constexpr|unsigned|long)\s+)*(?!(?:{_NO_TYPE})\b)(?:[A-Za-z_][\w:]*(?:<.*>)?)"
    r"(?:\s+const)?(?:\s*[*&]+\s*|\s+)(\w+|\[.*?\])\s*(?:=(?!=)|\(|\{|;)")

_HEADS_OF_BLOCKS = re.compile(r"(if|for|while|switch|else|do|try|catch)\b")
_WITH_ONE_STATEMENT = re.compile(r"(if|for|while|else)\b")
_NO_EFFECT_AT_THE_END = re.compile(r"(return|break|continue)\b")
_LEXICAL = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"'
    r"|'(?:\\.|[^'\\\n])+'|^[ \t]*#(?:\\\n|[^\n])*", re.DOTALL | re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Statement:
    """What one mutant lacks. Lines count from 1; nothing else stands on them."""

    first_line: int
    last_line: int
    text: str  # in one line, as written
    keeps_head: bool  # an else follows: only the body goes, the condition stays
    is_naming: bool

    def removed_from(self, source):
        """The source without the statement. All other lines keep their numbers."""
        lines = source.split("\n")
        first = self.last_line if self.keeps_head else self.first_line
        for number in range(first, self.last_line + 1):
            lines[number - 1] = ";" if self.keeps_head else ""
        return "\n".join(lines)


@dataclasses.dataclass
class _Scope:
    kind: str  # file, type, function, block, lambda or value
    start: int | None  # of the statement around it
    depth: int  # of the parentheses around it


def find(source):
    """The statements of a source file, in their order."""
    code = _masked(source)
    found = []
    for start, end, kind in _statements(code):
        statement = _candidate(source, code, start, end, kind)
        if statement:
            found.append(statement)
    return found


def _masked(source):
    """The source with comments, literals' insides and directives blanked; places stay the same."""
    def blank(match):
        text = match.group()
        if text[0] in "\"'R":
            return '"' + re.sub(r"[^\n]", "x", text[1:-1]) + '"'
        return re.sub(r"[^\n]", " ", text)

    # An apostrophe between digits only parts them.
    return _LEXICAL.sub(blank, re.sub(r"(?<=\d)'(?=\d)", "0", source))


def _statements(code):
    """(start, end, kind of scope) of every statement that ends in a semicolon."""
    scopes, start, depth = [_Scope("file", None, 0)], None, 0
    for index, character in enumerate(code):
        if character.isspace():
            continue
        start = index if start is None else start
        if character in "([":
            depth += 1
        elif character in ")]":
            depth -= 1
        elif character == "{":
            kind = _kind_of_scope(code[start:index].rstrip(), scopes[-1].kind, depth)
            scopes.append(_Scope(kind, start, depth))
            if kind != "value":
                start, depth = None, 0
        elif character == "}" and len(scopes) > 1:
            scope = scopes.pop()
            # What is a part of an expression goes on where the expression was.
            start = scope.start if scope.kind in ("value", "lambda") else None
            depth = scope.depth
        elif character == ";" and depth == 0:
            yield start, index + 1, scopes[-1].kind
            start = None
        elif character == ":" and depth == 0 and re.fullmatch(r"case\b.*[^:]|default", code[start:index]) \
                and code[index + 1] != ":":
            start = None


def _kind_of_scope(head, around, depth):
    """What an opening brace begins, by what stands before it."""
    if _ends_as_lambda(head):
        return "lambda"
    if depth > 0 or head.endswith(("=", "return", ",")):
        return "value"
    # A macro without a semicolon may stand before them.
    if re.search(r"\bnamespace\b[\w\s:]*$|\bextern\s+\"x*\"$", head):
        return "file"
    if re.search(r"\b(class|struct|enum|union)\b[^()]*$", head):
        return "type"
    if around in ("file", "type"):
        return "function" if ")" in head else "value"
    return "block" if not head or _HEADS_OF_BLOCKS.match(head) else "value"


def _ends_as_lambda(head):
    head = re.sub(r"(\s*(mutable|noexcept|->[\w:<>*& ]+))*$", "", head)
    if head.endswith(")"):
        head = head[:_opening(head)].rstrip()
    if not head.endswith("]"):
        return False
    # What is captured follows no name: that would be an index.
    return not re.search(r"[\w\])]$", head[:_opening(head)].rstrip() or "=") or \
        re.search(r"\breturn$", head[:_opening(head)].rstrip()) is not None


def _opening(text):
    """Where the parenthesis or bracket that closes at the end of the text was opened."""
    depth = 0
    for index in range(len(text) - 1, -1, -1):
        depth += (text[index] in ")]") - (text[index] in "([")
        if depth == 0:
            return index
    return 0


def _candidate(source, code, start, end, kind):
    if kind not in ("function", "block", "lambda"):
        return None
    text = code[start:end]
    first_line, last_line = code.count("\n", 0, start) + 1, code.count("\n", 0, end) + 1
    lines = text.split("\n")
    guards = _WITH_ONE_STATEMENT.match(text) is not None
    if len(lines) != (2 if guards else 1) or not _stands_alone(code, start, end):
        return None
    body = lines[-1].strip()
    if _LEFT_ALONE.match(body) or (guards and not re.fullmatch(r"else|.*\)", lines[0].rstrip())):
        return None
    rest = code[end:].lstrip()
    # The compiler would let a function end without its value only to misbehave.
    if rest.startswith("}") and not guards and _NO_EFFECT_AT_THE_END.match(text):
        if not re.match(r"return\b.*\S.*;", text) or kind in ("function", "lambda"):
            return None
    if not guards and _is_needed_declaration(text, code[end:]):
        return None
    written = " ".join(source[start:end].split())
    return Statement(first_line, last_line, written, guards and re.match(r"else\b", rest) is not None,
                     _NAMING.search(body) is not None)


def _stands_alone(code, start, end):
    line_start = code.rfind("\n", 0, start) + 1
    line_end = code.find("\n", end)
    return not code[line_start:start].strip() and not code[end:line_end].strip()


def _is_needed_declaration(text, rest):
    """Whether the statement declares something that the lines after it use."""
    declared = _DECLARATION.match(text)
    if not declared:
        return False
    names = re.findall(r"\w+", declared.group(1))
    scope = _until_scope_ends(rest)
    return any(re.search(rf"\b{name}\b", scope) for name in names)


def _until_scope_ends(code):
    depth = 0
    for index, character in enumerate(code):
        depth += (character == "{") - (character == "}")
        if depth < 0:
            return code[:index]
    return code
