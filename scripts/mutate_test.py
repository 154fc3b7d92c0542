#!/usr/bin/env python3
"""Tests of scripts/mutate without building anything: what each operator
plants, how the equivalent list follows the working tree, and the copy the
run works on."""

import importlib.machinery
import importlib.util
import io
import os
import subprocess
import tempfile
import textwrap
import unittest
from contextlib import redirect_stderr

HERE = os.path.dirname(os.path.abspath(__file__))
_loader = importlib.machinery.SourceFileLoader("mutate", os.path.join(HERE, "mutate"))
_spec = importlib.util.spec_from_loader("mutate", _loader)
mutate = importlib.util.module_from_spec(_spec)
_loader.exec_module(mutate)


def source(text):
    return textwrap.dedent(text).lstrip("\n")


def planted(text, op):
    """The file as each mutant of operator op leaves it."""
    found = mutate.mutants_of("m.cpp", text) + mutate.statement_mutants("m.cpp", text)
    return [mutate.apply(text, m) for m in found if m["op"] == op]


def changes(text, op):
    """Per mutant of op, the lines it takes away and the lines it puts in."""
    result = []
    for after in planted(text, op):
        gone = [l.strip() for l in text.split("\n") if l not in after.split("\n")]
        added = [l.strip() for l in after.split("\n") if l not in text.split("\n")]
        result.append((gone, added))
    return result


class LineOperators(unittest.TestCase):
    def test_each_operator_changes_one_token(self):
        cases = [
            ("  if (a < b) f();", "rel", ["  if (a <= b) f();"]),
            ("  ok = a && b;", "log", ["  ok = a || b;"]),
            ("  n += 2;", "ari", ["  n -= 2;"]),
            ("  n = 41;", "int", ["  n = 42;"]),
            ('  put("ab");', "str", ['  put("b");']),
            ('  put("Q");', "str", ['  put("R");']),
            ("  return CDR_STATUS_OK;", "status", ["  return CDR_STATUS_READ_FAILED;"]),
            ("  while (more) step();", "bool", ["  while (!(more)) step();"]),
            ("  done = !more;", "bool", ["  done = more;"]),
        ]
        for line, op, expected in cases:
            with self.subTest(line=line, op=op):
                self.assertEqual([t.split("\n")[0] for t in planted(line + "\n", op)], expected)

    def test_comments_literals_and_preprocessor_lines_are_left_alone(self):
        text = source("""
            #define LIMIT 3
            // if (a < b) 7
            const char* t = "a < b";  /* 9 */
            extern "C" const char* name() { return "sym"; }
            char buffer[64];
            """)
        ids = [m["id"] for m in mutate.mutants_of("m.cpp", text)]
        self.assertEqual(ids, ["m.cpp:3:str:0"])

    def test_removed_statement_spans_its_lines(self):
        text = source("""
            void f() {
              write(a,
                    b);
              return;
            }
            """)
        self.assertEqual(planted(text, "del"), [text.replace("  write(a,\n        b);", "  ;\n")])

    def test_ids_count_the_operators_candidates_on_the_line(self):
        ids = [m["id"] for m in mutate.mutants_of("m.cpp", "x = a < b && c > d;\n")
               if m["op"] == "rel"]
        self.assertEqual(ids, ["m.cpp:1:rel:0", "m.cpp:1:rel:1"])


class LoopDeclarations(unittest.TestCase):
    def test_declaration_before_a_loop_moves_into_it(self):
        text = source("""
            void f(Handler& h) {
              Record record(kName);
              while (more()) {
                fill(record);
                h.handle(record);
              }
            }
            """)
        self.assertEqual(planted(text, "loop"), [text.replace(
            "  Record record(kName);\n  while (more()) {\n",
            "  while (more()) {\n    Record record(kName);\n")])

    def test_declaration_in_a_loop_moves_out_of_it(self):
        text = source("""
            void f(size_t n) {
              for (size_t i = 0; i < n; ++i) {
                use(i);
                std::string value;
                get(i, value);
              }
            }
            """)
        self.assertEqual(planted(text, "loop"), [text.replace(
            "  for (size_t i = 0; i < n; ++i) {\n    use(i);\n    std::string value;\n",
            "  std::string value;\n  for (size_t i = 0; i < n; ++i) {\n    use(i);\n")])

    def test_moves_that_cannot_compile_or_only_repeat_a_call_are_not_made(self):
        text = source("""
            int f(size_t n) {
              int total = 0;
              String name = current();
              for (size_t i = 0; i < n; ++i) {
                int twice = i * 2;
                Item* item = next();
                total += twice + item->size() + name.length();
              }
              return total;
            }
            """)
        self.assertEqual(planted(text, "loop"), [])


class RemovedChecks(unittest.TestCase):
    def test_check_before_a_way_out_never_fires(self):
        cases = [
            ("  if (p == 0) return -1;", "  if (false && p == 0) return -1;"),
            ("  if (!env) return;", "  if (false && !env) return;"),
            ("  if (status != CDR_STATUS_OK) raise(line, status);",
             "  if (false && status != CDR_STATUS_OK) raise(line, status);"),
            ("  if (text == 0 || *text == 0) return -1;",
             "  if ((false && text == 0) || *text == 0) return -1;"),
        ]
        for line, expected in cases:
            with self.subTest(line=line):
                self.assertEqual(planted("void f() {\n" + line + "\n}\n", "check")[0].split("\n")[1],
                                 expected)

    def test_check_before_a_use_always_passes(self):
        text = source("""
            void f() {
              if (head != 0) {
                release(head);
              }
            }
            """)
        self.assertEqual(changes(text, "check"),
                         [(["if (head != 0) {"], ["if (true || head != 0) {"])])

    def test_comparisons_that_are_not_checks_are_left_alone(self):
        text = "void f() {\n  if (a < b && strcmp(t, \"0\") != 0) g();\n}\n"
        self.assertEqual(planted(text, "check"), [])


class IgnoredStatuses(unittest.TestCase):
    def test_a_status_read_later_is_taken_as_success(self):
        text = source("""
            int f() {
              int status = system(kProgram);
              if (status != 0) return -1;
              uint32_t ret = zpoWrite(key, value);
              return ret;
            }
            """)
        self.assertEqual(changes(text, "ignore"), [
            (["int status = system(kProgram);"], ["int status = 0 * system(kProgram);"]),
            (["uint32_t ret = zpoWrite(key, value);"], ["uint32_t ret = 0 * zpoWrite(key, value);"]),
        ])

    def test_system_in_a_condition_is_taken_as_success(self):
        self.assertEqual(changes("void f() {\n  if (system(cmd) != 0) fail();\n}\n", "ignore"),
                         [(["if (system(cmd) != 0) fail();"], ["if (0 * system(cmd) != 0) fail();"])])

    def test_statuses_nothing_reads_and_other_values_are_left_alone(self):
        text = source("""
            void f() {
              int status = system(kProgram);
              (void)status;
              system(kOther);
              int count = countRows(table);
              use(count);
            }
            """)
        self.assertEqual(planted(text, "ignore"), [])


class DroppedCasts(unittest.TestCase):
    def test_sign_cast_before_a_classifier_is_dropped(self):
        text = source("""
            bool f(const char* p) {
              if (!isdigit(static_cast<unsigned char>(*p))) return false;
              return isspace((unsigned char)p[1]);
            }
            """)
        self.assertEqual(changes(text, "cast"), [
            (["if (!isdigit(static_cast<unsigned char>(*p))) return false;"],
             ["if (!isdigit((*p))) return false;"]),
            (["return isspace((unsigned char)p[1]);"], ["return isspace(p[1]);"]),
        ])

    def test_casts_the_conversion_repeats_are_left_alone(self):
        text = source("""
            int f(uint32_t status, char c) {
              int length = static_cast<int>(strlen(text));
              printf("%i", static_cast<int>(status));
              unsigned char bytes[1] = {static_cast<unsigned char>(c)};
              put(static_cast<unsigned char>(c));
              return static_cast<int>(status);
            }
            """)
        self.assertEqual(planted(text, "cast"), [])


class SwappedLengths(unittest.TestCase):
    def test_length_argument_takes_the_nearest_other_length(self):
        text = source("""
            void f(char* row, const char* text, int length) {
              int textLength = strlen(text);
              memset(row, 0, length);
              copy(row, text, sizeof buffer);
            }
            int g(int maxLength) { return check(maxLength); }
            """)
        self.assertEqual(changes(text, "len"), [
            (["memset(row, 0, length);"], ["memset(row, 0, textLength);"]),
            (["copy(row, text, sizeof buffer);"], ["copy(row, text, length);"]),
        ])

    def test_formatting_calls_are_left_alone(self):
        text = "void f() {\n  char a[8];\n  snprintf(a, sizeof a, \"%d\", sizeof b);\n}\n"
        self.assertEqual(planted(text, "len"), [])


class SwappedTableEntries(unittest.TestCase):
    def test_neighbouring_entries_of_one_kind_swap(self):
        text = 'const Operation kGet = {" while getting ", 342, 0, 357};\n'
        self.assertEqual(planted(text, "table"), [
            'const Operation kGet = {" while getting ", 0, 342, 357};\n',
            'const Operation kGet = {" while getting ", 342, 357, 0};\n',
        ])

    def test_entries_on_lines_of_their_own_swap_lines(self):
        text = source("""
            const Key<S> keys[] = {
                {"Name", &S::getName},
                {"Id", &S::getId},
            };
            """)
        self.assertEqual(planted(text, "table"),
                         [text.replace('{"Name", &S::getName},\n    {"Id", &S::getId}',
                                       '{"Id", &S::getId},\n    {"Name", &S::getName}')])

    def test_variables_and_lists_of_macro_rows_are_left_alone(self):
        text = source("""
            unsigned char bytes[2] = {1, 2};
            const Reader<S> kProperties[] = {
                ROWS(READER)
                {"Name", &read<S, std::string, &S::getName>},
            };
            """)
        self.assertEqual(planted(text, "table"), [])


class EquivalentList(unittest.TestCase):
    FILE = "CDR/CDROAM/src/M.cpp"

    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.root = self.dir.name
        os.makedirs(os.path.join(self.root, "CDR/CDROAM/src"))
        os.makedirs(os.path.join(self.root, "CDR/CDROAM/test"))
        self.lines = ["int a;", "void f() {", "  n = 1;", "  g();", "}", ""]
        self.write(self.lines)
        mark = mutate.line_mark(self.lines, 2)
        with open(os.path.join(self.root, mutate.EQUIVALENTS), "w") as f:
            f.write("# comment\n%s:3:int:0 %s n is never read\n" % (self.FILE, mark))

    def tearDown(self):
        self.dir.cleanup()

    def write(self, lines):
        with open(os.path.join(self.root, self.FILE), "w") as f:
            f.write("\n".join(lines))

    def listed(self):
        warnings = []
        return mutate.read_equivalents(self.root, warnings.append), warnings

    def test_entry_names_its_mutant_with_its_reason(self):
        self.assertEqual(self.listed(), ({self.FILE + ":3:int:0": "n is never read"}, []))

    def test_entry_follows_its_line_when_lines_above_move_it(self):
        self.write(["// new comment", "", "#include <x>"] + self.lines)
        self.assertEqual(self.listed(), ({self.FILE + ":6:int:0": "n is never read"}, []))

    def test_entry_is_ignored_with_a_warning_when_its_line_changes(self):
        for changed in (["int a;", "void f() {", "  n = 2;", "  g();", "}", ""],
                        ["int a;", "void f() {", "  n = 1;", "  h();", "}", ""]):
            with self.subTest(changed=changed):
                self.write(changed)
                listed, warnings = self.listed()
                self.assertEqual(listed, {})
                self.assertEqual(warnings, ["mutate: the line of listed mutant %s:3:int:0 has "
                                            "changed; entry ignored" % self.FILE])

    def test_entry_with_index_star_covers_the_operators_mutants_on_its_line(self):
        mark = mutate.line_mark(self.lines, 3)
        with open(os.path.join(self.root, mutate.EQUIVALENTS), "a") as f:
            f.write("%s:4:del:* %s g has no effect\n" % (self.FILE, mark))
        listed = self.listed()[0]
        reasons = [mutate.listed_reason(listed, self.FILE + ident)
                   for ident in (":4:del:0", ":4:del:3", ":4:int:0", ":3:int:0", ":3:int:1")]
        self.assertEqual(reasons, ["g has no effect", "g has no effect", None,
                                   "n is never read", None])

    def test_indentation_does_not_change_the_mark(self):
        self.write(["int a;", "void f() {", "    n = 1;", "    g();", "}", ""])
        self.assertEqual(self.listed()[0], {self.FILE + ":3:int:0": "n is never read"})


class WorkingCopy(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.root = os.path.join(self.dir.name, "checkout")
        self.copy = os.path.join(self.dir.name, "copy")
        os.makedirs(os.path.join(self.root, "src"))
        self.put("src/a.cpp", "int a;\n")
        self.put("src/b.cpp", "int b;\n")
        self.put(".gitignore", "/build*/\n")
        git = ["git", "-C", self.root, "-c", "user.name=t", "-c", "user.email=t@t"]
        subprocess.run(["git", "init", "-q", self.root], check=True)
        subprocess.run(git + ["add", "."], check=True)
        subprocess.run(git + ["commit", "-qm", "start"], check=True)

    def tearDown(self):
        self.dir.cleanup()

    def put(self, name, text, root=None):
        path = os.path.join(root or self.root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as f:
            f.write(text)

    def read(self, name, root):
        with open(os.path.join(root, name)) as f:
            return f.read()

    def test_copy_holds_the_working_tree_as_it_is_on_disk(self):
        self.put("src/a.cpp", "int a;  // not committed\n")
        self.put("src/new.cpp", "int n;\n")
        self.put("build-mutate/tree/src/a.cpp", "stale\n")
        os.remove(os.path.join(self.root, "src/b.cpp"))
        files = mutate.tree_files(self.root)
        self.assertEqual(files, [".gitignore", "src/a.cpp", "src/new.cpp"])
        mutate.sync_tree(self.root, self.copy, files)
        self.assertEqual(self.read("src/a.cpp", self.copy), "int a;  // not committed\n")
        self.assertEqual(self.read("src/new.cpp", self.copy), "int n;\n")

    def test_sync_rewrites_only_what_differs_and_removes_what_is_gone(self):
        mutate.sync_tree(self.root, self.copy, mutate.tree_files(self.root))
        kept = os.path.join(self.copy, "src/b.cpp")
        os.utime(kept, (1000000000, 1000000000))
        self.put("src/a.cpp", "int a = mutant;\n", root=self.copy)
        self.put("old/gone.cpp", "x\n", root=self.copy)
        written = mutate.sync_tree(self.root, self.copy, mutate.tree_files(self.root))
        self.assertEqual(written, ["src/a.cpp"])
        self.assertEqual(self.read("src/a.cpp", self.copy), "int a;\n")
        self.assertEqual(os.stat(kept).st_mtime, 1000000000)
        self.assertFalse(os.path.exists(os.path.join(self.copy, "old")))

    def test_sync_copies_modes(self):
        os.chmod(os.path.join(self.root, "src/a.cpp"), 0o755)
        mutate.sync_tree(self.root, self.copy, mutate.tree_files(self.root))
        self.assertEqual(os.stat(os.path.join(self.copy, "src/a.cpp")).st_mode & 0o777, 0o755)


class ModuleMutants(unittest.TestCase):
    def test_module_yields_unique_ids_and_the_list_names_existing_mutants(self):
        root = os.path.dirname(HERE)
        ids = [m["id"] for m in mutate.all_mutants(root)]
        self.assertEqual(len(ids), len(set(ids)))
        stderr = io.StringIO()
        with redirect_stderr(stderr):
            listed = mutate.read_equivalents(root, lambda text: print(text, file=stderr))
        ids += [i.rsplit(":", 1)[0] + ":*" for i in ids]
        self.assertEqual(sorted(set(listed) - set(ids)), [])


class Runner(unittest.TestCase):
    def test_output_that_is_not_utf8_is_kept_not_fatal(self):
        # A mutant may make a test print any bytes.
        status, out = mutate.Runner().run(["printf", "before \\321 after"], 10)
        self.assertEqual(0, status)
        self.assertEqual("before \ufffd after", out)

    def test_a_run_over_its_time_is_cut(self):
        status, _ = mutate.Runner().run(["sleep", "5"], 0.2)
        self.assertIsNone(status)


if __name__ == "__main__":
    unittest.main()
