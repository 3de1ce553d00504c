"""Tests of the Wine python.exe, with real Wine and the host's real Python.

Environment: MOSAICON_BRIDGE is the path of python.exe, beside which stand python_host.py and
launcher_for_test.exe; WINEPREFIX names an existing prefix; WINE is the Wine command, if another
than "wine".
"""

import hashlib
import json
import os
import signal
import sys
import time
import unittest
from unittest import mock

from bridge_test_support import (
    BRIDGE,
    TELL_ARGUMENTS,
    WINEPREFIX,
    BridgeTest,
    is_alive,
    keep_wine_running,
    wait_until,
)
from wine_side import windows_path

sys.path.insert(0, str(BRIDGE.parent))
import python_host  # pylint: disable=wrong-import-position

NO_ORPHAN_SECONDS = 3

# A script with workers, one of which leaves session and group, one of which is deaf to SIGTERM.
# Prints all process ids when all are at work.
WORKERS = """
import multiprocessing, os, signal, sys, time

def work(number, queue):
    if number == 0:
        os.setsid()
    if number == 1:
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
    queue.put(os.getpid())
    time.sleep(120)

if __name__ == "__main__":
    queue = multiprocessing.Queue()
    workers = [multiprocessing.Process(target=work, args=(i, queue)) for i in range(3)]
    for worker in workers:
        worker.start()
    pids = [os.getpid()] + [queue.get() for _ in workers]
    print(" ".join(map(str, pids)))
    time.sleep(120)
"""


def setUpModule():  # pylint: disable=invalid-name
    keep_wine_running()


class Arguments(BridgeTest):
    def test_leading_blank_makes_the_first_word_the_script(self):
        self.script(TELL_ARGUMENTS)
        words = {
            "-a 0 -s EPSG:32632 -k -u ../": ["-a", "0", "-s", "EPSG:32632", "-k", "-u", "../"],
            '"two words"': ["two words"],
            r'"with \"quotes\" inside"': ['with "quotes" inside'],
            '"à ü" ÄÖß': ["à ü", "ÄÖß"],
            '""': [""],
            r'"trailing blank \\"': ["trailing blank \\"],
            "trailing\\": ["trailing\\"],
            "'single' $HOME * %PATH% `x`": ["'single'", "$HOME", "*", "%PATH%", "`x`"],
            "-c -V --": ["-c", "-V", "--"],
        }
        output, code = self.finish(self.launch(" script.py " + " ".join(words)))
        self.assertEqual(json.loads(output), sum(words.values(), []))
        self.assertEqual(code, 0)

    def test_runs_the_command_line_of_the_batch_driver(self):
        script = self.script("import os, sys, json; print(json.dumps([os.getcwd(), sys.argv]))")
        image, out = self.folder / "in ü.tif", self.folder / "new" / "out"
        image.touch()
        line = (
            f' "{windows_path(script)}" -a 0 -s EPSG:32632 -p mercator -t "a title" -k -u ../'
            f' "{windows_path(image)}" "{windows_path(out)}"'
        )
        output, code = self.finish(self.launch(line))
        self.assertEqual(
            json.loads(output),
            [
                str(self.folder),
                [
                    str(script),
                    "-a",
                    "0",
                    "-s",
                    "EPSG:32632",
                    "-p",
                    "mercator",
                    "-t",
                    "a title",
                    "-k",
                    "-u",
                    "../",
                    str(image),
                    str(out),
                ],
            ],
        )
        self.assertEqual(code, 0)

    def test_program_name_without_leading_blank_is_no_argument(self):
        for line in ("python.exe script.py one", '"python.exe" script.py one'):
            with self.subTest(line):
                self.script("import sys; print(sys.argv)")
                output, _ = self.finish(self.launch(line))
                self.assertEqual(output, b"['script.py', 'one']\n")

    def test_options_of_python_itself_work(self):
        self.assertRegex(self.run_bridge("-V").stdout, rb"^Python 3\.\d")
        self.assertEqual(self.run_bridge("-c", "print('à', 6 * 7)").stdout, "à 42\n".encode())
        self.script("print(__name__)", "module.py")
        self.assertEqual(self.run_bridge("-m", "module").stdout, b"__main__\n")

    def test_absolute_windows_paths_become_unix_paths_and_nothing_else(self):
        here = windows_path(self.folder)
        drive_c = WINEPREFIX / "drive_c"
        cases = {
            here: self.folder,
            here + "\\": f"{self.folder}/",
            here.replace("\\", "/") + "/python_host.py": self.folder / "python_host.py",
            here + "\\new": self.folder / "new",
            here + "\\new\\dëep\\er.tif": self.folder / "new/dëep/er.tif",
            here + "\\new\\deep\\": f"{self.folder}/new/deep/",
            here + "\\new\\..\\other": self.folder / "other",
            "\\\\?\\" + here + "\\new\\x": self.folder / "new/x",
            f"\\\\?\\unix{self.folder}\\a\\b".replace("/", "\\"): self.folder / "a/b",
            "Z:\\": "/",
            "C:\\no such folder\\x": drive_c / "no such folder/x",
            "C:\\": f"{drive_c}/",
            "Q:\\no\\drive": "Q:\\no\\drive",
            "\\\\server\\share\\file": "\\\\server\\share\\file",
            "\\\\?\\UNC\\server\\share": "\\\\?\\UNC\\server\\share",
            "C:\\nul": "C:\\nul",
            "../": "../",
            "..\\up": "..\\up",
            "C:relative": "C:relative",
            "--option=C:\\x": "--option=C:\\x",
            "EPSG:32632": "EPSG:32632",
            "/usr": "/usr",
        }
        got = self.told("-c", TELL_ARGUMENTS, *cases)
        self.assertEqual(dict(zip(cases, got)), {key: str(cases[key]) for key in cases})


class Output(BridgeTest):
    def test_ends_with_the_exit_code_of_the_script(self):
        for code, statement in {
            0: "pass",
            3: "exit(3)",
            255: "exit(255)",
            1: "raise OSError",
            143: "import os; os.kill(os.getpid(), 15)",
            137: "import os; os.kill(os.getpid(), 9)",
        }.items():
            with self.subTest(statement):
                self.script(statement)
                self.assertEqual(self.finish(self.launch(" script.py"))[1], code)
                self.assertEqual(self.run_bridge("script.py").returncode, code)

    def test_missing_script_is_pythons_own_complaint(self):
        result = self.run_bridge("none.py")
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"No such file", result.stdout)

    def test_keeps_the_order_of_standard_output_and_standard_error(self):
        self.script("import sys\nfor i in range(300):\n" "    print(i, file=(sys.stdout, sys.stderr)[i % 2])")
        output, _ = self.finish(self.launch(" script.py"))
        self.assertEqual(output.split(), [b"%d" % i for i in range(300)])

    def test_first_bytes_arrive_while_the_script_still_runs(self):
        go = self.folder / "go"
        self.script(
            f"import os, time\nprint('first', end='')\n"
            f"while not os.path.exists({str(go)!r}): time.sleep(0.01)\nprint(' last')"
        )
        launched = self.launch(" script.py")
        self.assertEqual(self.first_output(launched), b"first")
        go.touch()
        self.assertEqual(self.finish(launched), (b" last\n", 0))

    def test_a_megabyte_of_any_bytes_stays_intact_for_a_slow_reader(self):
        self.script(
            "import hashlib, sys\nfor i in range(1 << 15):\n"
            "    sys.stdout.buffer.write(hashlib.sha256(b'%d' % i).digest())"
        )
        launched = self.launch(" script.py")
        self.assertIsNone(wait_until(lambda: launched.poll() is not None, 2), "did not block")
        expected = b"".join(hashlib.sha256(b"%d" % i).digest() for i in range(1 << 15))
        output, code = self.finish(launched)
        self.assertTrue(output == expected)
        self.assertEqual(code, 0)

    def test_script_reads_an_empty_standard_input(self):
        self.assertEqual(self.run_bridge("-c", "print(repr(open(0).read()))").stdout, b"''\n")


class EndOfProcesses(BridgeTest):
    def start_workers(self, lifetime_ms=0):
        self.script(WORKERS)
        launched = self.launch(" script.py", lifetime_ms)
        pids = [int(pid) for pid in self.first_output(launched).split()]
        self.assertEqual(len(pids), 4)
        return launched, pids

    def check_that_all_end(self, pids):
        took = wait_until(lambda: not any(map(is_alive, pids)), NO_ORPHAN_SECONDS)
        self.assertIsNotNone(took, f"alive: {[pid for pid in pids if is_alive(pid)]}")

    def test_terminated_bridge_takes_script_and_workers_along(self):
        launched, pids = self.start_workers(lifetime_ms=300)
        self.assertTrue(all(map(is_alive, pids)))
        self.assertEqual(self.finish(launched)[1], 77)
        self.check_that_all_end(pids)

    def test_script_may_clean_up_when_the_bridge_is_terminated(self):
        self.script(
            "import signal, time\n"
            "def clean_up(number, frame): open('cleaned', 'w').close(); exit()\n"
            "signal.signal(signal.SIGTERM, clean_up)\nprint('ready')\ntime.sleep(120)"
        )
        self.assertEqual(self.finish(self.launch(" script.py", lifetime_ms=100))[1], 77)
        self.assertIsNotNone(wait_until((self.folder / "cleaned").exists, NO_ORPHAN_SECONDS))

    def test_terminated_bridge_ends_a_script_whose_output_nobody_reads(self):
        self.script("import os\nprint(os.getpid())\nwhile True: print('x' * 4000)")
        launched = self.launch(" script.py", lifetime_ms=1500)
        pid = int(self.first_output(launched).split()[0])
        self.assertIsNone(wait_until(lambda: not is_alive(pid), 0.5))
        self.assertIsNotNone(wait_until(lambda: not is_alive(pid), 1.5 + NO_ORPHAN_SECONDS))
        self.assertEqual(self.finish(launched)[1], 77)

    def test_death_of_either_agent_process_ends_script_and_bridge(self):
        for which in (0, 1):
            with self.subTest(("keeper", "agent")[which]):
                launched, pids = self.start_workers()
                os.kill(self.agents()[which], signal.SIGKILL)
                self.check_that_all_end(pids)
                output, code = self.finish(launched)
                self.assertEqual(code, 125)
                self.assertIn(b"lost the connection", output)
                self.check_that_nothing_is_left()

    def test_death_of_both_agent_processes_at_once_ends_the_script(self):
        self.script("import os, time\nprint(os.getpid())\ntime.sleep(120)")
        launched = self.launch(" script.py")
        pid = int(self.first_output(launched))
        keeper, agent = self.agents()
        os.kill(agent, signal.SIGSTOP)
        for process in (keeper, agent):
            os.kill(process, signal.SIGKILL)
        self.check_that_all_end([pid])
        self.assertEqual(self.finish(launched)[1], 125)

    def test_child_that_the_script_leaves_behind_ends_with_it(self):
        self.script(
            "import subprocess, sys\n"
            "child = subprocess.Popen(['sleep', '120'], start_new_session=True)\n"
            "print(child.pid)\nsys.exit(5)"
        )
        start = time.monotonic()
        output, code = self.finish(self.launch(" script.py"))
        self.assertEqual(code, 5)
        self.assertLess(time.monotonic() - start, 100)
        self.assertFalse(is_alive(int(output)))

    def test_finished_workers_leave_the_exit_code_alone(self):
        self.script(
            "import multiprocessing\nif __name__ == '__main__':\n"
            "    with multiprocessing.Pool(2) as pool:\n"
            "        print(sum(pool.map(abs, range(-100, 0))))\n    exit(9)"
        )
        self.assertEqual(self.finish(self.launch(" script.py")), (b"5050\n", 9))


class Environment(BridgeTest):
    TELL = "import json, os; print(json.dumps(dict(os.environ)))"

    def told_with(self, **variables):
        """From the command processor: Wine does not take TEMP and TMP from the host."""
        self.script(self.TELL)
        lines = [f"@set {name}={value}\n" for name, value in variables.items()]
        (self.folder / "tell.bat").write_text("".join(lines) + "@python.exe script.py\n", encoding="cp437")
        return self.told(program=("cmd", "/c", "tell.bat"))

    def test_paths_of_the_windows_gdal_stay_out(self):
        names = ("GDAL_DATA", "GDAL_DRIVER_PATH", "GDAL_PATH", "PROJ_LIB", "PROJ_DATA")
        got = self.told("-c", self.TELL, **{name: "C:\\tool\\gdal-data" for name in names})
        self.assertEqual([name for name in names if name in got], [])
        got = self.told("-c", self.TELL, **{name: "/usr/share/gdal" for name in names})
        self.assertEqual([got.get(name) for name in names], ["/usr/share/gdal"] * len(names))

    def test_path_and_home_are_those_of_the_host(self):
        got = self.told("-c", self.TELL, PATH=os.environ["PATH"], HOME=os.environ["HOME"])
        self.assertEqual(got["PATH"], os.environ["PATH"])
        self.assertEqual(got["HOME"], os.environ["HOME"])
        self.assertEqual(got["PYTHONUNBUFFERED"], "1")
        self.assertEqual([name for name in got if name in python_host.RENAMED_VARIABLES], [])

    def test_folders_and_log_of_the_windows_side_are_translated(self):
        temp = self.folder / "tëmp"
        temp.mkdir()
        got = self.told_with(
            TEMP=windows_path(temp),
            TMP=windows_path(self.folder / "none"),
            LOCALAPPDATA="C:\\local",
            MOSAICON_TILER_LOG=windows_path(self.folder / "log/x.txt"),
        )
        wanted = {
            "TEMP": str(temp),
            "TMPDIR": str(temp),
            "TMP": str(self.folder / "none"),
            "LOCALAPPDATA": str(WINEPREFIX / "drive_c/local"),
            "MOSAICON_TILER_LOG": str(self.folder / "log/x.txt"),
        }
        self.assertEqual({name: got.get(name) for name in wanted}, wanted)

    def test_missing_temp_folder_and_untranslatable_log_are_not_passed_on(self):
        got = self.told_with(TEMP=windows_path(self.folder / "none"), MOSAICON_TILER_LOG="Q:\\x.txt")
        self.assertNotEqual(got.get("TMPDIR"), str(self.folder / "none"))
        self.assertNotIn("MOSAICON_TILER_LOG", got)

    def test_windows_search_path_is_replaced(self):
        for path in ("C:\\windows\\system32;C:\\windows", "C:/windows"):
            with self.subTest(path), mock.patch.dict(os.environ, PATH=path):
                self.assertEqual(python_host.script_environment({})["PATH"], "/usr/local/bin:/usr/bin:/bin")


class Start(BridgeTest):
    def check_refusal(self, result, reason):
        self.assertEqual(result.returncode, 126)
        self.assertEqual(result.stdout, b"")
        self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        self.assertIn(reason, result.stderr)

    def stand_in(self, text):
        path = self.folder / "interpreter"
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)
        return str(path)

    def test_missing_interpreter_is_reported(self):
        result = self.run_bridge("-V", MOSAICON_HOST_PYTHON="/no/such/python3")
        self.check_refusal(result, b"/no/such/python3")

    def test_missing_agent_is_reported(self):
        (self.folder / "python_host.py").unlink()
        self.check_refusal(self.run_bridge("-V"), b"python_host.py")

    def test_interpreter_that_never_calls_is_given_up(self):
        start = time.monotonic()
        result = self.run_bridge("-V", MOSAICON_HOST_PYTHON="/bin/true")
        self.check_refusal(result, b"does not answer")
        self.assertLess(time.monotonic() - start, 100)

    def test_interpreter_that_hangs_up_is_reported(self):
        hang_up = (
            "import socket, sys; s = socket.create_connection(('127.0.0.1', "
            "int(sys.argv[3]))); s.sendall(sys.argv[4].encode())"
        )
        interpreter = self.stand_in(f'exec /usr/bin/python3 -c "{hang_up}" "$@"\n')
        result = self.run_bridge("-c", "print('ran')", MOSAICON_HOST_PYTHON=interpreter)
        self.assertIn(result.returncode, (125, 126))
        self.assertEqual(result.stdout, b"")

    def test_stranger_without_the_token_is_turned_away(self):
        stranger = (
            "import socket, sys; s = socket.create_connection(('127.0.0.1', "
            "int(sys.argv[3]))); s.sendall(b'f' * 32); "
            "print(s.recv(1), file=open('stranger', 'w'))"
        )
        interpreter = self.stand_in(f'/usr/bin/python3 -c "{stranger}" "$@"\n' 'exec /usr/bin/python3 "$@"\n')
        result = self.run_bridge("-c", "exit(42)", MOSAICON_HOST_PYTHON=interpreter)
        self.assertEqual((result.returncode, result.stderr), (42, b""))
        self.assertEqual((self.folder / "stranger").read_text(), "b''\n")

    def test_script_runs_in_the_chosen_interpreter(self):
        (self.folder / "venv").mkdir()
        interpreter = self.folder / "venv" / "python3"
        interpreter.symlink_to("/usr/bin/python3")
        got = self.run_bridge(
            "-c", "import sys; print(sys.executable)", MOSAICON_HOST_PYTHON=str(interpreter)
        )
        self.assertEqual(got.stdout.decode(), f"{interpreter}\n")


if __name__ == "__main__":
    unittest.main()
