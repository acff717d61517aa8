"""What is changed, and what is left alone."""
import random
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

from lexer import Source
from mutants import equivalents
from operators import changes, draw


def after(text, operator):
    return sorted(m.after for m in changes(Source('a.cpp', text)) if m.operator == operator)


class Changes(unittest.TestCase):
    def test_a_relation_moves_by_one_or_turns(self):
        text = 'bool f(long a)\n{\n  return a < 7;\n}\n'
        self.assertEqual(after(text, 'relation'), ['return a <= 7;', 'return a >= 7;'])

    def test_brackets_of_templates_are_no_relations(self):
        self.assertEqual(after('void f()\n{\n  std::vector<long> v = g<3>(1);\n}\n', 'relation'), [])

    def test_strings_comments_and_directives_stay(self):
        text = '#define A 1 < 2\nvoid f()\n{\n  // a < b\n  g("a < 1", R"(b < 2)");  /* 1 < 2\n 3 */\n}\n'
        self.assertEqual([m.after for m in changes(Source('a.cpp', text)) if m.operator != 'statement'], [])

    def test_calls_and_assignments_go_and_declarations_stay(self):
        text = 'void f()\n{\n  ccLock lock(m);\n  T* p = q;\n  auto r = s();\n  g(1);\n  a.b = c;\n  ++n;\n}\n'
        gone = [m.before for m in changes(Source('a.cpp', text)) if m.operator == 'statement']
        self.assertEqual(gone, ['g(1);', 'a.b = c;', '++n;'])

    def test_a_statement_over_two_lines_goes_whole(self):
        self.assertEqual(after('void f()\n{\n  g(a,\n    b);\n  h();\n}\n', 'statement'), [';', ';'])

    def test_assertions_and_reserved_room_stay(self):
        text = 'void f()\n{\n  static_assert(sizeof(T) == 4);\n  v.reserve(n + 3);\n}\n'
        self.assertEqual([m.after for m in changes(Source('a.cpp', text)) if m.operator != 'statement'], [])

    def test_the_size_of_a_declared_array_stays(self):
        self.assertEqual(after('void f()\n{\n  int table[4];\n  g(table[2]);\n}\n', 'constant'),
                         ['g(table[1]);', 'g(table[3]);'])

    def test_constants_outside_of_functions_change_and_pure_functions_stay(self):
        text = 'constexpr long kWidth = 4;\nclass A {\n  virtual void f() = 0;\n};\n'
        self.assertEqual(after(text, 'constant'), ['constexpr long kWidth = 3;', 'constexpr long kWidth = 5;'])

    def test_returns_follow_the_type(self):
        self.assertEqual(after('bool A::f() const { return g(); }\n', 'return'), ['bool A::f() const { return !(g()); }'])
        self.assertEqual(after('static long f() { return n; }\n', 'return'), ['static long f() { return (n) + 1; }'])
        self.assertEqual(after('T* f() { return p; }\n', 'return'), ['T* f() { return nullptr; }'])
        self.assertEqual(after('T& f() { return p; }\n', 'return'), [])

    def test_arguments_side_by_side_change_places(self):
        self.assertEqual(after('void f()\n{\n  g(a.b, c, 3 + d);\n}\n', 'swap'), ['g(c, a.b, 3 + d);'])
        self.assertEqual(after('void f()\n{\n  g(std::max(a, b));\n}\n', 'swap'), [])

    def test_names_of_a_pair_change_and_their_declarations_stay(self):
        self.assertEqual(after('void f()\n{\n  long x = p.x();\n}\n', 'name'), ['long x = p.y();'])


class Functions(unittest.TestCase):
    def test_constructors_methods_and_free_functions_are_told_apart(self):
        text = ('namespace n {\nstruct A {\n  A() : a{1}, b(2) { c = 3; }\n  int g() const { return 4; }\n};\n'
                'enum E { e = 5 };\nint h(int i = 6)\n{\n  if (i) { return 7; }\n  return 8;\n}\nint t[] = {9, 10};\n}\n')
        owner = {t.text: t.function for t in Source('a.cpp', text).tokens if t.kind == 'number'}
        self.assertEqual(owner, {'1': 0, '2': 0, '3': 0, '4': 1, '5': -1, '6': -1, '7': 2, '8': 2, '9': -1, '10': -1})

    def test_a_seed_draws_the_same_and_no_function_gives_more_than_two(self):
        text = ''.join(f'int f{i}(int a)\n{{\n  return a < 1 && a + 2 > 3;\n}}\n' for i in range(5))
        one = list(draw([Source('a.cpp', text)], random.Random(3)))
        two = list(draw([Source('a.cpp', text)], random.Random(3)))
        self.assertEqual(one, two)
        self.assertEqual([sum(m.function == i for m in one) for i in range(5)], [2] * 5)


class Equivalents(unittest.TestCase):
    def test_one_reason_serves_the_changes_below_it(self):
        with tempfile.NamedTemporaryFile('w', suffix='.txt') as file:
            file.write('# One\n# reason.\n@ a.cpp\n- x < y\n+ x <= y\n- f();\n+ ;\n\n# Two.\n@ b.cpp\n- return;\n+\n')
            file.flush()
            self.assertEqual(equivalents(Path(file.name)), {
                ('a.cpp', 'x < y', 'x <= y'): 'One reason.', ('a.cpp', 'f();', ';'): 'One reason.',
                ('b.cpp', 'return;', ''): 'Two.'})

    def test_the_committed_list_can_be_read_and_gives_reasons(self):
        for change, reason in equivalents().items():
            self.assertTrue(reason, change)


if __name__ == '__main__':
    unittest.main()
