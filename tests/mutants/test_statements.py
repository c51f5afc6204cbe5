# SPDX-License-Identifier: MIT
"""Which statements are found in a source file, and what is left of it without them."""

import unittest

import statements


def texts(body):
    return [statement.text for statement in statements.find(f"void f()\n{{\n{body}\n}}\n")]


class Found(unittest.TestCase):
    def test_statements_on_a_line_of_their_own(self):
        self.assertEqual(texts("    call(1);\n    m_a = b;\n    emit changed();\n    last();"),
                         ["call(1);", "m_a = b;", "emit changed();", "last();"])

    def test_a_guard_goes_with_its_one_line_body(self):
        self.assertEqual(texts("    if (a)\n        return;\n    call();"), ["if (a) return;", "call();"])

    def test_a_loop_goes_with_its_one_line_body(self):
        self.assertEqual(texts("    for (int i = 0; i < n; ++i)\n        call(i);"),
                         ["for (int i = 0; i < n; ++i) call(i);"])

    def test_the_statements_inside_blocks_and_lambdas(self):
        self.assertEqual(texts("    if (a) {\n        call();\n    }\n    connect(b, [this] {\n        refresh();\n    });"),
                         ["call();", "refresh();"])

    def test_what_follows_a_label(self):
        self.assertEqual(texts("    switch (a) {\n    case A::B:\n        call();\n        break;\n"
                               "    default:\n        other();\n    }"), ["call();", "break;", "other();"])

    def test_names_are_marked(self):
        found = statements.find("void f()\n{\n    a->setObjectName(u\"b\"_s);\n    call();\n}\n")
        self.assertEqual([statement.is_naming for statement in found], [True, False])

    def test_functions_after_a_macro_and_a_constructor_with_initialisers(self):
        source = ("LOGGING(a)\n\nnamespace\n{\nconstexpr int x = 1;\n}\n\nA::A(int b)\n    : m_b(b)\n{\n    call();\n}\n")
        self.assertEqual([statement.text for statement in statements.find(source)], ["call();"])


class LeftAside(unittest.TestCase):
    def check_none(self, body):
        self.assertEqual(texts(body), [])

    def test_statements_over_several_lines(self):
        self.check_none("    call(1,\n         2);\n    if (a\n        && b)\n        return;")

    def test_declarations_that_later_lines_need(self):
        self.assertEqual(texts("    const long long a = 1;\n    auto *b = new B;\n    QObject c;\n    call(a, b, c);"),
                         ["call(a, b, c);"])

    def test_a_guard_object_is_no_needed_declaration(self):
        self.assertEqual(texts("    const QSignalBlocker blocker(m_a);\n    call();"),
                         ["const QSignalBlocker blocker(m_a);", "call();"])

    def test_logging_and_what_does_nothing(self):
        self.check_none("    qCDebug(lcStore) << a;\n    logCommand(a);\n    using namespace b;\n    Q_UNUSED(c)\n    ;")

    def test_the_value_and_the_end_of_a_function(self):
        self.check_none("    return a;")
        self.check_none("    return;")

    def test_comments_strings_and_what_is_no_function(self):
        self.check_none("    // call();\n    /* call();\n    call(); */")
        self.assertEqual(statements.find('class A\n{\n    void f();\n    int a;\n};\nint b = 1;\nint c[] = {\n    1,\n};\n'), [])
        self.assertEqual(texts('    call(u";{"_s, \'"\', 1\'000);'), ['call(u";{"_s, \'"\', 1\'000);'])


class Removed(unittest.TestCase):
    def removed(self, source):
        return [statement.removed_from(source) for statement in statements.find(source)]

    def test_other_lines_keep_their_numbers(self):
        self.assertEqual(self.removed("void f()\n{\n    if (a)\n        return;\n    call();\n}\n"),
                         ["void f()\n{\n\n\n    call();\n}\n", "void f()\n{\n    if (a)\n        return;\n\n}\n"])

    def test_the_condition_stays_before_an_else(self):
        self.assertEqual(self.removed("void f()\n{\n    if (a)\n        b();\n    else\n        c();\n}\n"),
                         ["void f()\n{\n    if (a)\n;\n    else\n        c();\n}\n",
                          "void f()\n{\n    if (a)\n        b();\n\n\n}\n"])


if __name__ == "__main__":
    unittest.main()
