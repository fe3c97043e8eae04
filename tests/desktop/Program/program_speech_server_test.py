# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Dictations that a speech server recognises, and what becomes of them when it does not."""

import json
import os
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from harness import SPOKEN_WORDS, ProgramTest, first_words, main

TEXT = "Words that only the server knows."


class SpeechServer:
    """Has the endpoint for transcriptions and answers every upload with the same text, or with an error."""

    def __init__(self) -> None:
        self.uploads: list[bytes] = []
        self.fails = False
        outer = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self) -> None:
                self._answer(200, {"data": []})

            def do_POST(self) -> None:
                outer.uploads.append(self.rfile.read(int(self.headers["Content-Length"])))
                self._answer(*((500, {}) if outer.fails else (200, {"text": f" {TEXT}"})))

            def _answer(self, status: int, content) -> None:
                body = json.dumps(content).encode()
                self.send_response(status)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_) -> None:
                pass

        self._server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def close(self) -> None:
        self._server.shutdown()
        self._server.server_close()


class Recognition(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.server = SpeechServer()
        self.addCleanup(self.server.close)
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
