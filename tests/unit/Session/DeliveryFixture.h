// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/TranscriptDelivery.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "support/FakeTextTranslator.h"
#include "unit/Session/SessionFixture.h"

namespace tovik::test {

/// A delivery with its real dictionary and history, and fakes for the rest.
class DeliveryFixture : public SessionFixture {
protected:
    TranscriptionDictionary dictionary{defaults, log};
    TranscriptHistoryStore history{defaults, time};
    FakeTextTranslator translator;
    TranscriptDelivery delivery{{.queue = time,
                                 .log = log,
                                 .defaults = defaults,
                                 .permissionRequests = permissionRequests,
                                 .dictionary = dictionary,
                                 .history = history,
                                 .translator = translator,
                                 .mainWindow = mainWindow,
                                 .pasteboard = pasteboard,
                                 .poster = poster,
                                 .workspace = workspace,
                                 .targets = targets}};
};

} // namespace tovik::test
