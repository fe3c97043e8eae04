// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "RequestSettings.h"
#include "Speech/Text/FinalTextChain.h"

#include <string>
#include <string_view>

namespace tovik {

/// Answers requests for single text rules, one JSON object each. No rule is made here: every answer comes
/// from the class that the program itself uses. One thread.
class RequestAnswerer {
public:
    /// The log outlives it.
    explicit RequestAnswerer(SystemLog& log);

    /// A line of JSON without a line feed; {"error": …} for whatever is no request.
    [[nodiscard]] std::string answer(std::string_view line);

private:
    using Operation = PropertyValue (RequestAnswerer::*)(const PropertyValue& request);

    static Operation operationFor(const std::string& name);
    void useSettingsOf(const PropertyValue& request);

    PropertyValue process(const PropertyValue& request);
    PropertyValue fillers(const PropertyValue& request);
    PropertyValue format(const PropertyValue& request);
    PropertyValue number(const PropertyValue& request);
    PropertyValue day(const PropertyValue& request);
    PropertyValue year(const PropertyValue& request);
    PropertyValue corrections(const PropertyValue& request);
    PropertyValue parseDisplay(const PropertyValue& request);
    PropertyValue fillerList(const PropertyValue& request);
    PropertyValue vocabulary(const PropertyValue& request);
    PropertyValue menuTitle(const PropertyValue& request);
    PropertyValue elapsed(const PropertyValue& request);
    PropertyValue level(const PropertyValue& request);
    PropertyValue bar(const PropertyValue& request);

    SystemLog& log_;
    RequestSettings settings_;
    FinalTextChain chain_;
};

} // namespace tovik
