# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What the tests of the whole program share: a stage for each test, servers, and results in GoogleTest's form.

Every test file is a program: `test.py PATH-OF-THE-PROGRAM`. Where GTEST_OUTPUT names a folder, as it does for the
GoogleTest programs, the results go there under the file's name.
"""

import json
import os
import re
import sys
import threading
import time
import traceback
import unittest
import xml.etree.ElementTree as ElementTree
from contextlib import ExitStack
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

PROJECT = os.path.realpath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(PROJECT, "tools"))

from staging.desktop import Desktop  # noqa: E402
from staging.editor import Editor  # noqa: E402
from staging.program import Program  # noqa: E402
from staging.rehearsal import Rehearsal  # noqa: E402
from staging.stage import Stage  # noqa: E402

# A person saying "go forward ten meters", from Debian's pocketsphinx-testdata. The recognizer sometimes takes the last
# word for another; how well it hears is measured elsewhere, these tests follow the words on their way.
SPEECH = "/usr/share/pocketsphinx/test/data/goforward.raw"
SPOKEN_WORDS = ["go", "forward", "10"]

RECORDING_STARTED = "[TovikVoice] Recording started!"
NO_SPEECH = "[TovikVoice] Transcription error: No speech detected"


def first_words(text: str) -> list[str]:
    """As many words as are sure, as a reader compares them: no capitals, no punctuation, numbers as digits."""
    found = re.findall(r"[a-z0-9']+", text.lower())
    return ["10" if word == "ten" else word for word in found][: len(SPOKEN_WORDS)]


class JsonServer:
    """An HTTP server of this machine that answers in JSON. What it answers, its heirs say."""

    def __init__(self) -> None:
        outer = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self) -> None:
                self._answer(*outer.get(self.path))

            def do_POST(self) -> None:
                self._answer(*outer.post(self.path, self.rfile.read(int(self.headers["Content-Length"]))))

            def _answer(self, status: int, content) -> None:
                body = json.dumps(content).encode()
                self.send_response(status)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                try:
                    self.wfile.write(body)
                except BrokenPipeError:
                    pass  # The program has ended meanwhile.

            def log_message(self, *_) -> None:
                pass

        self._server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def get(self, path: str) -> tuple:
        """Status and content."""
        raise NotImplementedError

    def post(self, path: str, body: bytes) -> tuple:
        """Status and content."""
        raise NotImplementedError

    def __enter__(self) -> "JsonServer":
        return self

    def __exit__(self, *_) -> None:
        self._server.shutdown()
        self._server.server_close()


class ProgramTest(unittest.TestCase):
    """A test that runs the program on a stage of its own. What it started ends with it."""

    binary = ""

    def setUp(self) -> None:
        self._stack = ExitStack()
        self.addCleanup(self._stack.close)

    def set_stage(self, **parts) -> Stage:
        self.stage = self._stack.enter_context(Stage(**parts))
        if parts.get("display", True):
            self.desktop = self._stack.enter_context(Desktop(self.stage.environment))
        return self.stage

    def launch(self, name: str = "program", **environment: str) -> Program:
        """Starts the program without waiting for it."""
        return Program(self.stage, self.binary, name, environment)

    def start(self, name: str = "program", **environment: str) -> Program:
        """Starts the program and waits until its launch is over and its window has come up."""
        program = self.launch(name, **environment)
        program.wait_until_ready()
        if self.stage.has_manager:
            program.wait_until_presented(self.desktop)
        return program

    def open_editor(self, content: str = "") -> Editor:
        file = self.stage.path("home", "dictation.txt")
        with open(file, "w") as stream:
            stream.write(content)
        return Editor(self.stage, self.desktop, file)

    def rehearsal(self, program: Program, editor: Editor) -> Rehearsal:
        return Rehearsal(self.desktop, self.stage.microphone, program, editor, self.stage.folder)

    def dictate(self, program: Program, editor: Editor, speech: str = SPEECH, **options):
        """One dictation that must bring its text into the editor."""
        result = self.rehearsal(program, editor).dictate(speech, **options)
        self.assertIsNone(result.error, "\n".join([*program.output(), program.errors()]))
        return result

    def assert_still_dictates(self, program: Program, editor: Editor) -> None:
        result = self.dictate(program, editor)
        self.assertEqual(first_words(result.pasted), SPOKEN_WORDS)


class _Result(unittest.TestResult):
    """Tells each test as it ends, and keeps what the report needs."""

    def __init__(self) -> None:
        super().__init__()
        self.cases: list[tuple[unittest.TestCase, str, float]] = []
        self._started = 0.0

    def startTest(self, test) -> None:
        super().startTest(test)
        self._started = time.monotonic()
        print(f"[ RUN      ] {_title(test)}", flush=True)

    def addSuccess(self, test) -> None:
        super().addSuccess(test)
        self._end(test, "")

    def addFailure(self, test, err) -> None:
        super().addFailure(test, err)
        self._end(test, "".join(traceback.format_exception(*err)))

    def addError(self, test, err) -> None:
        super().addError(test, err)
        self._end(test, "".join(traceback.format_exception(*err)))

    def _end(self, test, message: str) -> None:
        seconds = time.monotonic() - self._started
        self.cases.append((test, message, seconds))
        verdict = "[  FAILED  ]" if message else "[       OK ]"
        print(f"{message}{verdict} {_title(test)} ({seconds * 1000:.0f} ms)", flush=True)


def _title(test: unittest.TestCase) -> str:
    names = test.id().split(".")
    return f"{names[-2]}.{names[-1].removeprefix('test_')}"


def _write_report(result: _Result, folder: str, name: str) -> None:
    root = ElementTree.Element("testsuites", name=name, tests=str(len(result.cases)))
    suite = ElementTree.SubElement(root, "testsuite", name=name, tests=str(len(result.cases)))
    for test, message, seconds in result.cases:
        group, title = _title(test).split(".")
        case = ElementTree.SubElement(suite, "testcase", classname=group, name=title, status="run",
                                      result="completed", time=f"{seconds:.3f}")
        if message:
            ElementTree.SubElement(case, "failure", message=message)
    ElementTree.ElementTree(root).write(os.path.join(folder, name + ".xml"))


def main() -> None:
    """Runs the tests of the calling file: all of them, or those whose names contain a further argument."""
    if len(sys.argv) < 2:
        sys.exit(f"usage: {sys.argv[0]} PATH-OF-TOVIK-RECORD [PART-OF-A-TEST-NAME…]")
    ProgramTest.binary = os.path.abspath(sys.argv[1])
    loader = unittest.TestLoader()
    loader.testNamePatterns = [f"*{part}*" for part in sys.argv[2:]] or None
    suite = loader.loadTestsFromModule(sys.modules["__main__"])
    result = _Result()
    suite.run(result)
    output = os.environ.get("GTEST_OUTPUT", "")
    if output.startswith("xml:"):
        name = os.path.splitext(os.path.basename(sys.argv[0]))[0]
        _write_report(result, output.removeprefix("xml:"), name)
    print(f"{len(result.cases)} tests, {len(result.failures) + len(result.errors)} failed")
    sys.exit(0 if result.wasSuccessful() and result.cases else 1)
