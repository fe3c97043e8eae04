# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The tool that dictates recordings: with the embedded engine and with a speech server."""

import json
import os
import subprocess
import tempfile
import unittest

from harness import JsonServer, ProgramTest, main

# A person saying "ten of clubs", from Debian's pocketsphinx-testdata.
SPEECH_FILE = "/usr/share/pocketsphinx/test/data/cards/001.wav"

KEYS = ["audio_seconds", "file", "final_ms", "load_ms", "recognised", "rtf", "text"]


class SpeechServer(JsonServer):
    def get(self, path: str) -> tuple:
        return 200, {"data": []}

    def post(self, path: str, body: bytes) -> tuple:
        return 200, {"text": "um twenty words"}


class TranscribeTool(unittest.TestCase):
    def setUp(self) -> None:
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)

    def transcribe(self, *arguments: str) -> subprocess.CompletedProcess:
        tool = os.path.join(os.path.dirname(ProgramTest.binary), "tovik-transcribe")
        return subprocess.run([tool, *arguments], capture_output=True, text=True, timeout=60,
                              env={"HOME": self.home.name, "PATH": os.environ["PATH"]})

    def test_withTheEmbeddedEngine_tellsInJsonWhatWasSaid(self) -> None:
        done = self.transcribe("--json", SPEECH_FILE)
        self.assertEqual(done.returncode, 0, done.stderr)
        transcript = json.loads(done.stdout)
        self.assertEqual(sorted(transcript), KEYS)
        self.assertEqual((transcript["file"], transcript["recognised"]), (SPEECH_FILE, "ten of clubs"))

    def test_withASpeechServer_tellsTheServersWordsAndWhatWouldBePasted(self) -> None:
        with SpeechServer() as server:
            done = self.transcribe("--json", "--setting", f"platform.speech.serverUrl={server.url}", "--setting",
                                   "TovikVoiceRemoveFillerWords=true", SPEECH_FILE)
        self.assertEqual(done.returncode, 0, done.stderr)
        transcript = json.loads(done.stdout)
        self.assertEqual((transcript["recognised"], transcript["text"]), ("um twenty words", "twenty words"))

    def test_ofAFileThatIsNotThere_failsAndSaysSo(self) -> None:
        done = self.transcribe("--json", "/nowhere.wav")
        self.assertEqual(done.returncode, 1)
        self.assertIn("/nowhere.wav", done.stderr)


if __name__ == "__main__":
    main()
