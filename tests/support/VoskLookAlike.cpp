// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// A library with the interface of Vosk, for tests. A model is a folder with a file "says": its first line is
// what this hears in any sound that is not zero, further lines are less likely readings of it. Half a second
// of zeros after sound is a pause. A model with a file "breaks" ends the process, as the library does over
// some.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// NOLINTBEGIN: the names are the library's.
struct VoskModel {
    std::vector<std::string> readings;
};

struct VoskRecognizer {
    const VoskModel* model;
    int alternatives = 0;
    bool heard = false;
    int quiet = 0;
    std::string answer;

    const char* tell() {
        const auto& readings = model->readings;
        std::ostringstream json;
        if (alternatives == 0) {
            json << "{\"text\": \"" << (heard ? readings.front() : "") << "\"}";
        } else {
            json << "{\"alternatives\": [";
            for (std::size_t i = 0; i < readings.size(); ++i) {
                json << (i ? ", " : "") << "{\"confidence\": " << 100 - i << ", \"text\": \""
                     << (heard ? " " + readings[i] : "") << "\"}";
            }
            json << "]}";
        }
        answer = json.str();
        heard = false;
        quiet = 0;
        return answer.c_str();
    }
};

extern "C" {
void vosk_model_free(VoskModel* model);
void vosk_set_log_level(int) {}
VoskModel* vosk_model_new(const char* path) {
    if (std::ifstream(std::string(path) + "/breaks")) {
        std::abort();
    }
    std::ifstream file(std::string(path) + "/says");
    auto model = new VoskModel;
    for (std::string line; std::getline(file, line);) {
        model->readings.push_back(line);
    }
    if (model->readings.empty()) {
        vosk_model_free(model);
        return nullptr;
    }
    return model;
}
void vosk_model_free(VoskModel* model) {
    delete model;
}
VoskRecognizer* vosk_recognizer_new(VoskModel* model, float) {
    return new VoskRecognizer{model, 0, false, 0, {}};
}
void vosk_recognizer_free(VoskRecognizer* recognizer) {
    delete recognizer;
}
void vosk_recognizer_set_max_alternatives(VoskRecognizer* recognizer, int most) {
    recognizer->alternatives = most;
}
int vosk_recognizer_accept_waveform_s(VoskRecognizer* recognizer, const short* samples, int count) {
    const bool silent = std::all_of(samples, samples + count, [](short sample) { return sample == 0; });
    recognizer->heard = recognizer->heard || !silent;
    recognizer->quiet = silent ? recognizer->quiet + count : 0;
    return recognizer->heard && recognizer->quiet >= 8000 ? 1 : 0;
}
const char* vosk_recognizer_result(VoskRecognizer* recognizer) {
    return recognizer->tell();
}
const char* vosk_recognizer_partial_result(VoskRecognizer* recognizer) {
    const auto& all = recognizer->model->readings.front();
    recognizer->answer =
        "{\"partial\": \"" + (recognizer->heard ? all.substr(0, all.find(' ')) : std::string()) + "\"}";
    return recognizer->answer.c_str();
}
const char* vosk_recognizer_final_result(VoskRecognizer* recognizer) {
    return recognizer->tell();
}
}
// NOLINTEND
