// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpAttempt.h"

#include "Engines/Http/WebAddress.h"
#include "Platform/AsciiCase.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace tovik {

namespace {

using Kind = HttpFailure::Kind;

constexpr int kOk = 200;
constexpr int kPartialContent = 206;
constexpr int kRangeNotSatisfiable = 416;
constexpr std::uint64_t kMostOfHead = 256 << 10;
constexpr long kMostRedirections = 5;
/// What is handed to the system and not yet under way. Without a limit the system takes megabytes at once,
/// and nobody can tell whether they get anywhere.
constexpr int kUnsentBytes = 64 << 10;

std::chrono::steady_clock::duration ticks(Seconds time) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::min(time, HttpLimits::unlimited));
}

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    const auto end = text.find_last_not_of(" \t\r\n");
    return begin == std::string_view::npos ? std::string_view() : text.substr(begin, end - begin + 1);
}

/// What tells one version of a file from another; a weak tag does not tell every byte.
std::string versionOf(const HttpResponse& response) {
    const auto tag = response.header("etag");
    return tag.starts_with('"') ? tag : response.header("last-modified");
}

int localPortOf(int socket) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return -1;
    }
    return ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6*>(&address)->sin6_port
                                               : reinterpret_cast<sockaddr_in*>(&address)->sin_port);
}

} // namespace

HttpAttempt::HttpAttempt(const HttpRequest& request, const HttpSettings& settings, CURLM* carrier,
                         std::function<bool(int)> isReady)
    : request_(request),
      settings_(settings),
      carrier_(carrier),
      isReady_(std::move(isReady)),
      handle_(curl_easy_init()) {
    enter(Step::connecting);
    setOptions();
    curl_multi_add_handle(carrier_, handle_);
}

HttpAttempt::~HttpAttempt() {
    curl_multi_remove_handle(carrier_, handle_);
    curl_easy_cleanup(handle_);
    curl_mime_free(form_);
    curl_slist_free_all(headers_);
}

void HttpAttempt::setOptions() {
    const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(handle_, option, value); };
    set(CURLOPT_URL, request_.url.c_str());
    set(CURLOPT_ERRORBUFFER, trouble_.data());
    set(CURLOPT_NOSIGNAL, 1L);
    // A name that nobody can look up must not hold up whoever wants to end.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_USERAGENT, "tovik-record");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, request_.url.starts_with("https") ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, request_.followsRedirections && request_.key.empty() ? 1L : 0L);
    set(CURLOPT_MAXREDIRS, kMostRedirections);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    // The steps have time limits of our own.
    set(CURLOPT_CONNECTTIMEOUT_MS, 24L * 3600 * 1000);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request_.limits.mostBytes));
    if (!settings_.certificates.empty()) {
        set(CURLOPT_CAINFO, settings_.certificates.c_str());
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    // No proxy knows the way to this machine.
    if (const auto address = WebAddress::parse(request_.url); address && address->isThisMachine()) {
        set(CURLOPT_NOPROXY, "*");
    }
    setCallbacks();
    setBody();
    setHeaders();
}

void HttpAttempt::setCallbacks() {
    const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(handle_, option, value); };
    set(CURLOPT_SOCKOPTDATA, this);
    set(CURLOPT_SOCKOPTFUNCTION, remember);
    set(CURLOPT_PREREQDATA, this);
    set(
        CURLOPT_PREREQFUNCTION, +[](void* self, char*, char*, int, int port) {
            return static_cast<HttpAttempt*>(self)->connected(port);
        });
    set(CURLOPT_HEADERDATA, this);
    set(
        CURLOPT_HEADERFUNCTION, +[](char* bytes, std::size_t, std::size_t size, void* self) {
            return static_cast<HttpAttempt*>(self)->takeHeader({bytes, size}) ? size : 0;
        });
    set(CURLOPT_WRITEDATA, this);
    set(
        CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t, std::size_t size, void* self) {
            return static_cast<HttpAttempt*>(self)->takeBody({bytes, size}) ? size : 0;
        });
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFODATA, this);
    set(
        CURLOPT_XFERINFOFUNCTION,
        +[](void* self, curl_off_t total, curl_off_t received, curl_off_t toSend, curl_off_t sent) {
            return static_cast<HttpAttempt*>(self)->moved(
                static_cast<std::uint64_t>(received), static_cast<std::uint64_t>(total),
                static_cast<std::uint64_t>(sent), static_cast<std::uint64_t>(toSend));
        });
}

void HttpAttempt::setBody() {
    if (isReady_ || !request_.form.empty()) {
        form_ = curl_mime_init(handle_);
        curl_easy_setopt(handle_, CURLOPT_MIMEPOST, form_);
    } else if (!request_.body.empty()) {
        curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
        curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, request_.body.data());
    }
}

void HttpAttempt::setHeaders() {
    const auto add = [this](const std::string& header) {
        headers_ = curl_slist_append(headers_, header.c_str());
    };
    // Servers that do not know the question would be waited for.
    add("Expect:");
    for (const auto& header : request_.headers) {
        add(header);
    }
    if (!request_.key.empty()) {
        add("Authorization: Bearer " + request_.key);
    }
    if (!request_.body.empty()) {
        add("Content-Type: " + request_.contentType);
    }
    if (!request_.file.empty()) {
        file_.emplace(request_.file);
        offset_ = file_->size();
        if (offset_ > 0) {
            add("Range: bytes=" + std::to_string(offset_) + "-");
            add("If-Range: " + file_->version());
        }
    }
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
}

/// libcurl looks at the form only after the callback that calls this.
void HttpAttempt::fillForm() {
    for (const auto& field : request_.form) {
        auto* const part = curl_mime_addpart(form_);
        curl_mime_name(part, field.name.c_str());
        curl_mime_data(part, field.content.data(), field.content.size());
        if (!field.fileName.empty()) {
            curl_mime_filename(part, field.fileName.c_str());
            curl_mime_type(part, field.contentType.c_str());
        }
    }
}

void HttpAttempt::enter(Step step) {
    step_ = step;
    stepBegan_ = lastMove_ = std::chrono::steady_clock::now();
    lastCount_ = 0;
}

// -------------------------------------------------------------------------- what libcurl tells

int HttpAttempt::remember(void* transfer, curl_socket_t socket, curlsocktype) {
    static_cast<HttpAttempt*>(transfer)->sockets_.push_back(socket);
    const int unsent = kUnsentBytes;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent, sizeof unsent);
    return CURL_SOCKOPT_OK;
}

int HttpAttempt::connected(int localPort) {
    if (isReady_) {
        const auto found = std::find_if(sockets_.begin(), sockets_.end(),
                                        [&](int socket) { return localPortOf(socket) == localPort; });
        if (!isReady_(found == sockets_.end() ? -1 : *found)) {
            return CURL_PREREQFUNC_ABORT;
        }
        // Those of the request, which was not known when the handle was made.
        curl_slist_free_all(std::exchange(headers_, nullptr));
        setHeaders();
    }
    // libcurl comes here again when a connection that it had kept turns out to be dead.
    if (form_ != nullptr && !std::exchange(formIsFilled_, true)) {
        fillForm();
    }
    const bool hasBody = form_ != nullptr || !request_.body.empty();
    enter(hasBody ? Step::sending : Step::waiting);
    sentAt_ = stepBegan_;
    return CURL_PREREQFUNC_OK;
}

int HttpAttempt::moved(std::uint64_t received, std::uint64_t total, std::uint64_t sent,
                       std::uint64_t toSend) {
    const auto count = step_ == Step::sending ? sent : received;
    if (count != lastCount_) {
        lastCount_ = count;
        lastMove_ = std::chrono::steady_clock::now();
    }
    const auto expected = form_ != nullptr ? toSend : request_.body.size();
    if (step_ == Step::sending && expected > 0 && sent >= expected) {
        enter(Step::waiting);
        sentAt_ = stepBegan_;
    }
    if (step_ == Step::receiving && file_ && request_.progress && headIsRead_ && response_.status < 300) {
        request_.progress(offset_ + received, total == 0 ? 0 : offset_ + total);
    }
    return 0;
}

bool HttpAttempt::refuse(Kind kind, const std::string& description) {
    refusal_ = HttpFailure{kind, description};
    return false;
}

bool HttpAttempt::takeHeader(std::string_view line) {
    if (step_ != Step::receiving) {
        // A server may well refuse what it has not yet taken in.
        sentAt_ = step_ == Step::sending ? std::chrono::steady_clock::now() : sentAt_;
        enter(Step::receiving);
    }
    size_ += line.size();
    if (size_ > kMostOfHead + request_.limits.mostBytes) {
        return refuse(Kind::tooLong, "sends too much");
    }
    if (line.starts_with("HTTP/")) {
        // A provisional answer or a redirection may have come before.
        response_ = {};
        headIsRead_ = false;
        const auto status = line.substr(std::min(line.find(' ') + 1, line.size()));
        std::from_chars(status.data(), status.data() + status.size(), response_.status);
        return true;
    }
    if (trimmed(line).empty()) {
        headIsRead_ = response_.status >= kOk;
        return true;
    }
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        return refuse(Kind::broken, "did not answer in HTTP");
    }
    if (!headIsRead_) {
        response_.headers[asciiLowerCased(line.substr(0, colon))] = trimmed(line.substr(colon + 1));
    }
    return true;
}

/// Whether the body of this answer is, or goes on with, the file.
bool HttpAttempt::beginFile() {
    if (response_.status != kPartialContent) {
        offset_ = 0;
        return file_->beginAnew(versionOf(response_)) ||
               refuse(Kind::notStored, "sends what cannot be stored");
    }
    if (!response_.header("content-range").starts_with("bytes " + std::to_string(offset_) + "-")) {
        file_->drop();
        return refuse(Kind::broken, "sends another part of the file than it was asked for");
    }
    return file_->goOn() || refuse(Kind::notStored, "sends what cannot be stored");
}

bool HttpAttempt::takeBody(std::string_view bytes) {
    const bool isOfFile = file_ && (response_.status == kOk || response_.status == kPartialContent);
    if (isOfFile && !std::exchange(fileIsOpen_, true) && !beginFile()) {
        return false;
    }
    size_ += bytes.size();
    const auto most = !file_     ? request_.limits.mostBytes
                      : isOfFile ? request_.limits.mostBytes + kMostOfHead
                                 : kMostOfHead;
    if (size_ + (isOfFile ? offset_ : 0) > most) {
        return refuse(Kind::tooLong, "sends too much");
    }
    if (isOfFile) {
        return file_->write(bytes) || refuse(Kind::notStored, "sends what cannot be stored");
    }
    response_.body += bytes;
    return true;
}

// ------------------------------------------------------------------------------ what comes of it

HttpOutcome HttpAttempt::outcome(CURLcode code) {
    if (code != CURLE_OK || !headIsRead_) {
        return failureOf(code);
    }
    if (file_ && response_.status == kRangeNotSatisfiable) {
        file_->drop();
    } else if (file_ && (response_.status == kOk || response_.status == kPartialContent)) {
        // An empty file has no body that would have begun it.
        if ((!fileIsOpen_ && !beginFile()) || !file_->finish()) {
            return HttpFailure{Kind::notStored, "sends what cannot be stored"};
        }
    }
    return std::move(response_);
}

HttpFailure HttpAttempt::failureOf(CURLcode code) const {
    const std::string trouble = trouble_.front() != '\0' ? trouble_.data() : curl_easy_strerror(code);
    if (refusal_) {
        return *refusal_;
    }
    switch (step_) {
    case Step::connecting:
        return {Kind::notConnected, "cannot be reached: " + trouble};
    case Step::sending:
    case Step::waiting:
        break;
    case Step::receiving:
        if (code == CURLE_FILESIZE_EXCEEDED) {
            return {Kind::tooLong, "sends too much"};
        }
        if (code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY) {
            return {Kind::broken, "did not answer in HTTP"};
        }
        return {Kind::broken, "closed the connection in the middle of its answer"};
    }
    // libcurl looks at the first line before anybody else does.
    if (code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY) {
        return {Kind::broken, "did not answer in HTTP"};
    }
    return {Kind::diedUnanswered, "closed the connection without an answer"};
}

HttpAttempt::TimePoint HttpAttempt::deadline() const {
    const auto& limits = request_.limits;
    const auto answer = sentAt_ + ticks(request_.file.empty() ? limits.answer : HttpLimits::unlimited);
    switch (step_) {
    case Step::connecting:
        return stepBegan_ + ticks(limits.connect);
    case Step::sending:
        return lastMove_ + ticks(limits.stall);
    case Step::waiting:
        return std::min(sentAt_ + ticks(limits.firstByte), answer);
    case Step::receiving:
        return request_.file.empty() ? answer : lastMove_ + ticks(limits.stall);
    }
    return stepBegan_;
}

HttpFailure HttpAttempt::timeOut() const {
    switch (step_) {
    case Step::connecting:
        return {Kind::timedOut, "cannot be reached in time"};
    case Step::sending:
        return {Kind::timedOut, std::chrono::steady_clock::now() >= deadline()
                                    ? "takes in nothing of what is sent to it"
                                    : "takes in too slowly what is sent to it"};
    case Step::waiting:
        return {Kind::timedOut, "does not answer"};
    case Step::receiving:
        break;
    }
    return {Kind::timedOut, "does not finish its answer in time"};
}

} // namespace tovik
