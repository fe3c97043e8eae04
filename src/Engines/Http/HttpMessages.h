// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tovik {

/// How long a server may take over each step of a request. Who asks for more allows more.
struct HttpLimits {
    static constexpr Seconds unlimited{1e9};

    /// Until there is a connection that can be trusted.
    Seconds connect{5};
    /// For how long nothing may move: while a request is sent, or while a file is received.
    Seconds stall{30};
    /// From the end of sending to the first byte of the answer.
    Seconds firstByte{30};
    /// From the end of sending to the last byte of the answer.
    Seconds answer{60};
    /// For all attempts together, with the pauses between them.
    Seconds total{unlimited};
    /// Head and body of an answer, or the whole of a file. A longer answer is given up.
    std::uint64_t mostBytes = 1 << 20;
};

/// One field of a form; a file when it has a file name.
struct HttpFormField {
    std::string name;
    std::string content;
    std::string fileName;
    std::string contentType;
};

/// What a server is asked. It is posted when it has a body or a form.
struct HttpRequest {
    std::string url;
    /// Sent as a bearer's key, unless it is empty.
    std::string key;
    /// "Name: value".
    std::vector<std::string> headers;
    /// A body with its type, or a form in its place.
    std::string body;
    std::string contentType;
    std::vector<HttpFormField> form;
    HttpLimits limits;
    /// Redirections are not followed, since they could take what is sent to another place. A file without a
    /// key may be looked for elsewhere.
    bool followsRedirections = false;
    /// The server is just being started: when the connection is refused, or the answer is that the service is
    /// not available, it is asked again, within limits.total.
    bool isStarting = false;
    /// Where the body of the answer goes. What an earlier transfer left there is gone on with, if the server
    /// still has the same file; otherwise it is begun anew. The file beside it with ".etag" tells which it
    /// is.
    std::string file;
    /// The bytes of the file that are there, and of all of it (0: not known). On the thread of the transfer.
    std::function<void(std::uint64_t received, std::uint64_t total)> progress;
};

struct HttpResponse {
    int status = 0;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;

    /// Empty when there is none.
    [[nodiscard]] std::string header(const std::string& name) const;
    /// Discarded (see nlohmann::json) when the body is no JSON, or nested so deeply that it can only be meant
    /// to do harm.
    [[nodiscard]] nlohmann::json json() const;
};

/// Why no response came.
struct HttpFailure {
    enum class Kind {
        /// There is no connection, or none that can be trusted.
        notConnected,
        timedOut,
        /// The connection died before any byte of a response came back.
        diedUnanswered,
        /// The response is cut short or none of HTTP.
        broken,
        tooLong,
        /// The file cannot be written.
        notStored,
        cancelled,
    };
    Kind kind = Kind::notConnected;
    /// The rest of a sentence that begins with the server, without its full stop.
    std::string description;
};

using HttpOutcome = std::variant<HttpResponse, HttpFailure>;

/// How connections are made.
struct HttpSettings {
    /// A file of certificates to trust in place of the system's.
    std::string certificates;
};

/// A file that may come in several transfers. Beside it stands which version of the server's file it is a
/// part of; without that nothing is gone on with. One thread.
class PartialFile {
public:
    explicit PartialFile(std::string path) : path_(std::move(path)) {}

    /// Bytes that are there and may be gone on with.
    [[nodiscard]] std::uint64_t size() const;
    /// As the server named it; empty when it did not.
    [[nodiscard]] std::string version() const;

    /// Drops what is there. The next bytes are those of this version.
    bool beginAnew(const std::string& version);
    /// The next bytes follow what is there.
    bool goOn();
    bool write(std::string_view bytes);
    /// False when something did not reach the disk.
    bool close();
    /// All of it has come: which version it is matters no more.
    bool finish();
    void drop();

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[nodiscard]] std::string versionPath() const { return path_ + ".etag"; }
    bool open(const char* mode);

    const std::string path_;
    std::unique_ptr<std::FILE, Close> file_;
};

} // namespace tovik
