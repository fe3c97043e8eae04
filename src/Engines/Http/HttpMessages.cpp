// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpMessages.h"

#include "Platform/JsonNesting.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

namespace tovik {

namespace {

namespace fs = std::filesystem;

constexpr int kDeepestJson = 64;

} // namespace

std::string HttpResponse::header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
}

nlohmann::json HttpResponse::json() const {
    if (isNestedDeeper(body, kDeepestJson)) {
        return nlohmann::json(nlohmann::json::value_t::discarded);
    }
    return nlohmann::json::parse(body, nullptr, false);
}

// ------------------------------------------------------------------------------- files in parts

std::uint64_t PartialFile::size() const {
    std::error_code error;
    const auto size = version().empty() ? 0 : fs::file_size(path_, error);
    return error ? 0 : size;
}

std::string PartialFile::version() const {
    std::ifstream file(versionPath());
    std::string version;
    std::getline(file, version);
    return version;
}

bool PartialFile::open(const char* mode) {
    file_.reset(std::fopen(path_.c_str(), mode));
    return file_ != nullptr;
}

bool PartialFile::beginAnew(const std::string& version) {
    drop();
    if (!version.empty()) {
        std::ofstream(versionPath()) << version << '\n';
    }
    return open("wbe");
}

bool PartialFile::goOn() {
    return open("abe");
}

bool PartialFile::write(std::string_view bytes) {
    return file_ && std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
}

bool PartialFile::close() {
    return !file_ || std::fclose(file_.release()) == 0;
}

bool PartialFile::finish() {
    const bool isStored =
        file_ && std::fflush(file_.get()) == 0 && ::fsync(::fileno(file_.get())) == 0 && close();
    std::error_code ignored;
    fs::remove(versionPath(), ignored);
    return isStored;
}

void PartialFile::drop() {
    file_.reset();
    std::error_code ignored;
    fs::remove(path_, ignored);
    fs::remove(versionPath(), ignored);
}

} // namespace tovik
