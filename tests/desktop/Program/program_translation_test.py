# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Dictations that are translated before they are pasted: on this machine, on a server, and where that fails."""

import json
import os
import re
import signal
import subprocess
import threading

from harness import RECORDING_STARTED, SPEECH, SPOKEN_WORDS, JsonServer, ProgramTest, first_words, main
from notifier_host import NotifierHost
from staging.rehearsal import TALK_KEY
from staging.waiting import wait_until

KEY = "key of the test"


def spanish(english: str) -> str:
    """What the translator's own program makes of a text."""
    done = subprocess.run(["apertium", "-u", "eng-spa"], input=english, capture_output=True, text=True, check=True)
    return done.stdout


def words(text: str) -> list[str]:
    return re.findall(r"\w+", text.lower())


class TranslationServer(JsonServer):
    """Speaks the LibreTranslate API, wants a key, and translates with the translator's own program."""

    def __init__(self, stalls: bool = False) -> None:
        self.requests: list[str] = []
        self._stalls = stalls
        self._ending = threading.Event()
        super().__init__()

    def get(self, path: str) -> tuple:
        self.requests.append("GET " + path)
        return 200, [{"code": "en", "name": "English", "targets": ["en", "es"]}]

    def post(self, path: str, body: bytes) -> tuple:
        self.requests.append("POST " + path)
        request = json.loads(body)
        if self._stalls:
            self._ending.wait()
        if request.get("api_key") != KEY:
            return 403, {"error": "Invalid API key"}
        return 200, {"translatedText": spanish(request["q"]).strip()}

    def __exit__(self, *arguments) -> None:
        self._ending.set()
        super().__exit__(*arguments)


class TranslationTest(ProgramTest):
    def start_with(self, **settings) -> None:
        """Starts the program with translation on and these settings, their dots written as double underscores."""
        folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
        os.makedirs(folder, mode=0o700, exist_ok=True)
        with open(os.path.join(folder, "defaults.json"), "w") as file:
            json.dump({"TranslationEnabled": True} | {key.replace("__", "."): value
                                                      for key, value in settings.items()}, file)
        self.program = self.start()

    def dictate_translated(self, editor) -> tuple[str, str]:
        """The transcript and what stands in the editor."""
        result = self.dictate(self.program, editor)
        self.assertEqual(first_words(result.transcript), SPOKEN_WORDS)
        return result.transcript, result.pasted

    def assert_spanish(self, transcript: str, pasted: str) -> None:
        self.assertEqual(words(pasted), words(spanish(transcript)))
        self.assertEqual(words(pasted)[:3], ["va", "de", "frente"])
        self.assertIn(f"[TovikVoice] Translation: '{transcript}' → '{pasted}'", self.program.output())

    def test_onThisMachine_pastesSpanishAndKeepsBoth(self) -> None:
        self.set_stage()
        host = self._stack.enter_context(NotifierHost(self.stage.environment["DBUS_SESSION_BUS_ADDRESS"]))
        self.start_with(TranslationSourceLanguage="en", TranslationTargetLanguage="es")
        item = host.wait_for_item()
        editor = self.open_editor()
        transcript, pasted = self.dictate_translated(editor)
        self.assert_spanish(transcript, pasted)
        self.assertEqual(self.desktop.selection_text("CLIPBOARD"), pasted)
        with open(self.program.defaults) as file:
            history = json.load(file)["transcription.history"]
        self.assertEqual([entry["text"] for entry in history], [transcript])

        item.choose("Paste Last Transcript")
        _, text = editor.wait_for_text_after(pasted, 10)
        self.assertEqual(text, f"{pasted}{pasted}\n[{transcript}]")

    def test_onThisMachine_leavesNoProcessBehind(self) -> None:
        self.set_stage()
        self.start_with()
        self.assert_spanish(*self.dictate_translated(self.open_editor()))
        stages = self.stages_of_the_translator()
        self.assertGreater(len(stages), 3)
        self.program.process.send_signal(signal.SIGKILL)
        self.program.wait()
        wait_until(lambda: not any(os.path.exists(f"/proc/{stage}") for stage in stages), "the stages to end")

    def test_whenAStageIsKilled_theNextTextIsTranslatedAllTheSame(self) -> None:
        self.set_stage()
        self.start_with()
        editor = self.open_editor()
        self.assert_spanish(*self.dictate_translated(editor))
        os.kill(self.stages_of_the_translator()[2], signal.SIGKILL)
        self.assert_spanish(*self.dictate_translated(editor))

    def test_onAServer_pastesSpanish(self) -> None:
        self.set_stage()
        server = self._stack.enter_context(TranslationServer())
        self.start_with(platform__translation__url=server.url, platform__translation__apiKey=KEY)
        editor = self.open_editor()
        self.assert_spanish(*self.dictate_translated(editor))
        self.assert_spanish(*self.dictate_translated(editor))
        self.assertEqual(server.requests, ["GET /languages", "POST /translate", "POST /translate"])

    def test_onAServerThatRefuses_pastesTheTextAsItWasSpoken(self) -> None:
        self.set_stage()
        server = self._stack.enter_context(TranslationServer())
        self.start_with(platform__translation__url=server.url)
        transcript, pasted = self.dictate_translated(self.open_editor())
        self.assertEqual(pasted, transcript)
        self.assertIn("[TovikVoice] Translation error: The translation server refuses the key, or wants one (403).",
                      self.program.errors())

    def test_withoutTheServer_pastesTheTextAsItWasSpoken(self) -> None:
        self.set_stage()
        self.start_with(platform__translation__url="http://127.0.0.1:1")
        transcript, pasted = self.dictate_translated(self.open_editor())
        self.assertEqual(pasted, transcript)
        self.assertIn("[TovikVoice] Translation error: The translation server gave no answer", self.program.errors())

    def test_toALanguageThatNobodyTranslates_pastesTheTextAsItWasSpoken(self) -> None:
        self.set_stage()
        self.start_with(TranslationTargetLanguage="ja")
        transcript, pasted = self.dictate_translated(self.open_editor())
        self.assertEqual(pasted, transcript)
        self.assertIn("[TovikVoice] Language pair en → ja not supported", self.program.errors())

    def test_whileAServerStalls_theProgramEndsAtOnce(self) -> None:
        self.set_stage()
        server = self._stack.enter_context(TranslationServer(stalls=True))
        self.start_with(platform__translation__url=server.url, platform__translation__apiKey=KEY)
        self.open_editor()
        self.desktop.press(TALK_KEY)
        self.program.wait_for_line(RECORDING_STARTED, 5)
        self.stage.microphone.speak(SPEECH).wait()
        self.desktop.release(TALK_KEY)
        wait_until(lambda: "POST /translate" in server.requests, "the text to reach the server")
        # It gives the server 3 s, and then still has the text to paste and to save.
        self.assertEqual(self.program.terminate(8), 0)

    def stages_of_the_translator(self) -> list[int]:
        found = []
        threads = f"/proc/{self.program.process.pid}/task"
        for thread in os.listdir(threads):
            with open(f"{threads}/{thread}/children") as file:
                found += [int(child) for child in file.read().split()]
        return sorted(found)


if __name__ == "__main__":
    main()
