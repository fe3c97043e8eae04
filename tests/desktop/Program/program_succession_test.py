# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Dictations one upon another, as quick as somebody can press the key again: each text arrives once, in its order.

tools/rehearse-succession tries many more of them.
"""

import json
import os
import time

from harness import JsonServer, ProgramTest, first_words, main
from staging.succession import TARGETS, Successions

# The gaps and holds at which texts were lost most often.
WORST = ((0.05, 0.5), (0.05, 1.5), (0.1, 2.5), (0.3, 1.0))


class SlowFirstTranslation(JsonServer):
    """Takes its time for the first text only. What it answers tells which text it was."""

    def __init__(self, seconds: float) -> None:
        self.asked: list[str] = []
        self._seconds = seconds
        super().__init__()

    def get(self, path: str) -> tuple:
        return 200, [{"code": "en", "name": "English", "targets": ["en", "es"]}]

    def post(self, path: str, body: bytes) -> tuple:
        text = json.loads(body)["q"]
        self.asked.append(text)
        if len(self.asked) == 1:
            time.sleep(self._seconds)
        return 200, {"translatedText": f"<{text}>"}


class Succession(ProgramTest):
    def begin(self, *targets: str) -> None:
        self.set_stage()
        self.program = self.start()
        self.targets = [TARGETS[name](self.stage, self.desktop) for name in targets]
        self.successions = Successions(self.stage, self.desktop, self.program)

    def assert_right(self, result, *described) -> None:
        self.assertTrue(result.is_right, f"{described}: said {result.texts}, wanted {result.expected}, "
                                         f"got {result.arrived}\n" + "\n".join(self.program.output()))

    def dictate_the_worst_into(self, name: str) -> None:
        self.begin(name)
        for gap, hold in WORST:
            self.assert_right(self.successions.dictate(gap, hold, self.targets[0]), gap, hold)

    def test_intoAnEditor_eachTextArrivesOnceInItsOrder(self) -> None:
        self.dictate_the_worst_into("mousepad")

    def test_intoATerminal_eachTextArrivesOnceInItsOrder(self) -> None:
        self.dictate_the_worst_into("xterm")

    def test_intoAQtEditor_eachTextArrivesOnceInItsOrder(self) -> None:
        self.dictate_the_worst_into("featherpad")

    def test_whileSuperIsHeld_bothTextsWaitAndArriveOnceInTheirOrder(self) -> None:
        self.begin("mousepad")
        self.assert_right(self.successions.dictate(0.1, 1.0, self.targets[0], held_key="Super_L"))

    def test_intoTwoWindows_eachGetsItsOwn(self) -> None:
        self.begin("mousepad", "xterm")
        self.assert_right(self.successions.dictate(0.3, 1.0, *self.targets, held_key="Super_L"))

    def test_whenTheFirstTranslationTakesLong_bothArriveInTheOrderInWhichTheyWereSpoken(self) -> None:
        with SlowFirstTranslation(4) as server:
            self.set_stage()
            folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
            os.makedirs(folder, mode=0o700, exist_ok=True)
            with open(os.path.join(folder, "defaults.json"), "w") as file:
                json.dump({"TranslationEnabled": True, "platform.translation.url": server.url}, file)
            program = self.start()
            target = TARGETS["mousepad"](self.stage, self.desktop)
            successions = Successions(self.stage, self.desktop, program, shown=lambda text: f"<{text}>")
            result = successions.dictate(0.1, 1.0, target)
            self.assertEqual(server.asked, result.texts)
            self.program = program
            self.assert_right(result)

    def test_whenSpeechBeginsDuringTheEndOfTheOneBefore_nothingOfItIsLost(self) -> None:
        self.begin("mousepad")
        for gap in (0.0, 0.03, 0.06, 0.1):
            result = self.successions.dictate(gap, 2.5, self.targets[0])
            self.assert_right(result, gap)
            self.assertEqual(first_words(result.texts[1])[:2], ["go", "somewhere"], gap)


if __name__ == "__main__":
    main()
