// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/LocaleIdentifier.h"

#include <unicode/locid.h>

#include <array>
#include <cstdlib>

namespace tovik {

std::string canonicalLocaleIdentifier(std::string_view identifier) {
    const std::string name(identifier.substr(0, identifier.find_first_of(".@")));
    if (name.empty() || name == "C" || name == "POSIX") {
        return "en-US";
    }
    auto locale = icu::Locale::createFromName(name.c_str());
    UErrorCode status = U_ZERO_ERROR;
    if (*locale.getCountry() == '\0') {
        locale.addLikelySubtags(status);
    }
    const std::string language = locale.getLanguage();
    const std::string country = locale.getCountry();
    return country.empty() ? language : language + "-" + country;
}

std::string localeOfEnvironment() {
    for (const auto* name : std::array{"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto* value = std::getenv(name); value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

} // namespace tovik
