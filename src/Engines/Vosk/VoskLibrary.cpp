// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskLibrary.h"

#include "Engines/Host/RecognitionError.h"

#include <dlfcn.h>

namespace tovik {

namespace {

template <typename Function>
bool find(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(handle, name));
    return function != nullptr;
}

} // namespace

Result<std::unique_ptr<const VoskLibrary>> VoskLibrary::load(const std::vector<std::string>& candidates) {
    std::string why = "it is not installed";
    for (const auto& candidate : candidates) {
        void* const handle = ::dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            const std::string message = ::dlerror();
            // One that is there and cannot be loaded is worth more words than one that is not there.
            if (message.find("No such file") == std::string::npos) {
                why = message;
            }
            continue;
        }
        std::unique_ptr<VoskLibrary> library(new VoskLibrary(handle));
        const auto missing = library->findFunctions();
        if (missing.empty()) {
            library->setLogLevel(-1);
            return std::unique_ptr<const VoskLibrary>(std::move(library));
        }
        why = candidate + " has no " + missing;
    }
    return voskUnusable(why);
}

std::string VoskLibrary::findFunctions() {
    find(handle_, "vosk_recognizer_set_max_alternatives", setMaxAlternatives);
    const std::pair<const char*, bool> needed[] = {
        {"vosk_set_log_level", find(handle_, "vosk_set_log_level", setLogLevel)},
        {"vosk_model_new", find(handle_, "vosk_model_new", newModel)},
        {"vosk_model_free", find(handle_, "vosk_model_free", freeModel)},
        {"vosk_recognizer_new", find(handle_, "vosk_recognizer_new", newRecognizer)},
        {"vosk_recognizer_free", find(handle_, "vosk_recognizer_free", freeRecognizer)},
        {"vosk_recognizer_accept_waveform_s",
         find(handle_, "vosk_recognizer_accept_waveform_s", acceptSamples)},
        {"vosk_recognizer_result", find(handle_, "vosk_recognizer_result", result)},
        {"vosk_recognizer_partial_result", find(handle_, "vosk_recognizer_partial_result", partialResult)},
        {"vosk_recognizer_final_result", find(handle_, "vosk_recognizer_final_result", finalResult)},
    };
    for (const auto& [name, isThere] : needed) {
        if (!isThere) {
            return name;
        }
    }
    return {};
}

} // namespace tovik
