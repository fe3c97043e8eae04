# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Dictations that a speech server recognizes, and what becomes of them when it does not."""

import json
import os

from harness import SPOKEN_WORDS, JsonServer, ProgramTest, first_words, main

TEXT = "Words that only the server knows."


class SpeechServer(JsonServer):
    """Has the endpoint for transcriptions and answers every upload with the same text, or with an error."""

    def __init__(self) -> None:
        self.uploads: list[bytes] = []
        self.fails = False
        super().__init__()

    def get(self, path: str) -> tuple:
        return 200, {"data": []}

    def post(self, path: str, body: bytes) -> tuple:
        self.uploads.append(body)
        return (500, {}) if self.fails else (200, {"text": f" {TEXT}"})


class Recognition(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.server = self._stack.enter_context(SpeechServer())
        self.set_stage()

    def start_with(self, **settings):
        folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
        os.makedirs(folder, mode=0o700, exist_ok=True)
        with open(os.path.join(folder, "defaults.json"), "w") as file:
            json.dump({"platform.speech.serverUrl": self.server.url} | settings, file)
        return self.start()

    def kept(self) -> list[str]:
        folder = os.path.join(self.stage.environment["XDG_DATA_HOME"], "tovik-record", "failed-audio")
        return os.listdir(folder) if os.path.exists(folder) else []

    def test_whenAServerIsNamed_itsTextStandsInTheEditor(self) -> None:
        program = self.start_with()
        result = self.dictate(program, self.open_editor())
        self.assertEqual(result.pasted, TEXT)
        self.assertEqual(len(self.server.uploads), 1)
        self.assertIn(b"RIFF", self.server.uploads[0])

    def test_whenTheServerFails_theEmbeddedEngineStandsInAndTheSoundIsKept(self) -> None:
        program = self.start_with(**{"platform.speech.embeddedWhenServerFails": True})
        editor = self.open_editor()
        self.server.fails = True
        result = self.dictate(program, editor)
        self.assertEqual(first_words(result.pasted), SPOKEN_WORDS)
        self.assertEqual(len(self.kept()), 1)


if __name__ == "__main__":
    main()
