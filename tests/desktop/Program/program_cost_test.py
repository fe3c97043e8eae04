# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What the program costs: the time of its launch, the processor and the memory while it is idle."""

import json
import os
import time

from harness import ProgramTest, main
from staging.cost import processor_seconds, resident_bytes, wait_until_calm
from staging.waiting import wait_until


class Cost(ProgramTest):
    def test_ofALaunch_isBelowThreeTenthsOfASecond(self) -> None:
        self.set_stage()
        times = []
        for turn in range(5):
            program = self.launch(f"program{turn}")
            times.append(program.wait_until_ready())
            self.assertEqual(program.terminate(), 0)
        # What else the machine does only ever adds to the time.
        self.assertLessEqual(min(times), 0.3, times)

    def test_whenIdleAndHidden_isBelowHalfAPercentOfACore(self) -> None:
        self.set_stage()
        program = self.start()
        window = wait_until(lambda: program.windows(self.desktop), "the main window")[0]
        self.desktop.close(window)
        wait_until(lambda: not program.windows(self.desktop), "the main window to be hidden")
        # Whatever the launch still does in the background, such as loading the model, must be over.
        wait_until_calm(program.process.pid)
        self.assertLess(self.share_of_a_core(program), 0.005)

    def test_whenIdleWithTheHeaderInSight_isBelowThreePercentOfACore(self) -> None:
        self.set_stage()
        program = self.start()
        window = wait_until(lambda: program.windows(self.desktop), "the main window")[0]
        self.desktop.close(window)
        wait_until(lambda: not program.windows(self.desktop), "the main window to be hidden")
        wait_until_calm(program.process.pid)
        self.assertEqual(self.launch("second").wait(), 0)
        program.wait_until_presented(self.desktop)
        self.assertLess(self.share_of_a_core(program), 0.03)

    def share_of_a_core(self, program) -> float:
        before, seconds = processor_seconds(program.process.pid), 10
        time.sleep(seconds)
        return (processor_seconds(program.process.pid) - before) / seconds

    def test_ofMemoryWithoutAModel_isBelowEightyMegabytes(self) -> None:
        self.set_stage()
        file = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record", "defaults.json")
        os.makedirs(os.path.dirname(file), mode=0o700)
        with open(file, "w") as stream:
            json.dump({"platform.speechModel": self.stage.path("no-model-here")}, stream)
        program = self.start()
        wait_until_calm(program.process.pid)
        self.assertLess(resident_bytes(program.process.pid), 80e6)


if __name__ == "__main__":
    main()
