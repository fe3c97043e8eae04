// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/SoundServer.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace tovik::test {

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kLookAgain{5};
// Far longer than a session manager that is up needs to make up its mind.
constexpr std::chrono::seconds kSessionManager{1};

std::string makeFolder() {
    auto name = std::string("/tmp/tovik-sound-XXXXXX");
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder below /tmp");
    }
    return name;
}

std::vector<char*> pointers(const std::vector<std::string>& strings) {
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (const auto& string : strings) {
        result.push_back(const_cast<char*>(string.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

pid_t spawnProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                   posix_spawn_file_actions_t& actions) {
    // The child must not inherit what the test program does with signals.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t process = -1;
    const int failed = posix_spawnp(&process, command.front().c_str(), &actions, &attributes,
                                    pointers(command).data(), pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    if (failed != 0) {
        throw std::runtime_error("cannot start " + command.front() + ": " + std::strerror(failed));
    }
    return process;
}

bool answers(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected =
        connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(connection);
    return connected;
}

bool isTrueWithin(std::chrono::steady_clock::duration patience, const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + patience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(kLookAgain);
    }
    return true;
}

} // namespace

SoundServer::SoundServer(Kind kind) : kind_(kind), folder_(makeFolder()) {
    std::filesystem::create_directory(folder_ + "/pulse");
    environment_ = {"PATH=/usr/bin:/bin:/usr/sbin:/sbin",
                    "LC_ALL=C.UTF-8",
                    "HOME=" + folder_,
                    "XDG_RUNTIME_DIR=" + folder_,
                    "XDG_CONFIG_HOME=" + folder_ + "/config",
                    "XDG_STATE_HOME=" + folder_ + "/state",
                    "XDG_DATA_HOME=" + folder_ + "/data",
                    "PULSE_RUNTIME_PATH=" + folder_ + "/pulse",
                    "PULSE_COOKIE=" + folder_ + "/cookie",
                    "PULSE_SERVER=" + address(),
                    "DBUS_SESSION_BUS_ADDRESS=unix:path=" + folder_ + "/bus"};
}

SoundServer::~SoundServer() {
    kill();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string SoundServer::address() const {
    return "unix:" + folder_ + "/pulse/native";
}

void SoundServer::start() {
    const auto socket = folder_ + "/pulse/native";
    if (kind_ == Kind::pulseAudio) {
        spawn({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--log-target=stderr", "--load=module-native-protocol-unix socket=" + socket,
               "--load=module-always-sink"});
    } else {
        spawn({"dbus-daemon", "--session", "--nofork", "--nopidfile",
               "--address=unix:path=" + folder_ + "/bus"});
        waitForSocket(folder_ + "/bus");
        spawn({"pipewire"});
        waitForSocket(folder_ + "/pipewire-0");
        spawn({"wireplumber"});
        spawn({"pipewire-pulse"});
    }
    waitForSocket(socket);
    view_ = std::make_unique<SoundServerView>(address());
    // The session manager makes its stand-in for missing hardware last of all.
    waitUntil("the server is ready", [this] { return view_->lists("auto_null.monitor"); });
}

void SoundServer::kill() {
    for (const auto& [name, module] : modules_) {
        std::error_code ignored;
        std::filesystem::remove(folder_ + "/" + name + ".pipe", ignored);
    }
    view_.reset();
    microphones_.clear();
    modules_.clear();
    for (const auto process : processes_) {
        ::kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    processes_.clear();
    for (const auto* socket : {"/pulse/native", "/bus", "/pipewire-0", "/pipewire-0-manager"}) {
        std::error_code ignored;
        std::filesystem::remove(folder_ + socket, ignored);
    }
}

void SoundServer::freeze() {
    for (const auto process : processes_) {
        ::kill(process, SIGSTOP);
    }
}

void SoundServer::thaw() {
    for (const auto process : processes_) {
        ::kill(process, SIGCONT);
    }
}

VirtualMicrophone& SoundServer::plugIn(const std::string& name, const std::string& description,
                                       unsigned sampleRate, unsigned channelCount) {
    const auto pipe = folder_ + "/" + name + ".pipe";
    auto module = control(
        {"load-module", "module-pipe-source", "source_name=" + name, "file=" + pipe, "format=s16le",
         "channels=" + std::to_string(channelCount), "rate=" + std::to_string(sampleRate),
         "source_properties=\"device.description='" + description + "' session.suspend-timeout-seconds=1\""});
    modules_[name] = module.substr(0, module.find('\n'));
    waitUntil("microphone " + name, [&] { return view_->lists(name); });
    auto& place = microphones_[name];
    place = std::make_unique<VirtualMicrophone>(pipe, sampleRate, channelCount);
    return *place;
}

void SoundServer::unplug(const std::string& name) {
    control({"unload-module", modules_.at(name)});
    waitUntil("microphone " + name + " away", [&] { return !view_->lists(name); });
    microphones_.erase(name);
    modules_.erase(name);
}

void SoundServer::setDefaultSource(const std::string& name) {
    // A session manager that has only just come up does not take defaults yet, so they are set once more.
    waitUntil("default " + name, [&] {
        static_cast<void>(run({"set-default-source", name}));
        return isTrueWithin(kSessionManager, [&] { return view_->defaultSource() == name; }) ||
               control({"get-default-source"}) == name + "\n";
    });
}

std::string SoundServer::control(const std::vector<std::string>& command) const {
    auto output = run(command);
    if (!output) {
        std::ifstream log(folder_ + "/pactl.log");
        throw std::runtime_error("pactl " + command.front() +
                                 " failed: " + std::string(std::istreambuf_iterator<char>(log), {}));
    }
    return *std::move(output);
}

std::optional<std::string> SoundServer::run(const std::vector<std::string>& command) const {
    std::array<int, 2> output{};
    if (pipe2(output.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const auto log = folder_ + "/pactl.log";
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                     0600);
    std::vector<std::string> whole{"pactl"};
    whole.insert(whole.end(), command.begin(), command.end());
    const auto process = spawnProcess(whole, environment_, actions);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    std::string text;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 0; (count = read(output[0], bytes.data(), bytes.size())) > 0;) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    close(output[0]);
    int status = 0;
    waitpid(process, &status, 0);
    return status == 0 ? std::optional(text) : std::nullopt;
}

void SoundServer::spawn(const std::vector<std::string>& command) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const auto log = folder_ + "/" + command.front() + ".log";
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    // A test program that crashes must not leave its server behind.
    std::vector<std::string> whole{"setpriv", "--pdeathsig", "KILL"};
    whole.insert(whole.end(), command.begin(), command.end());
    processes_.push_back(spawnProcess(whole, environment_, actions));
    posix_spawn_file_actions_destroy(&actions);
}

void SoundServer::waitForSocket(const std::string& path) const {
    waitUntil(path, [&] { return answers(path); });
}

void SoundServer::waitUntil(const std::string& what, const std::function<bool()>& holds) const {
    if (!isTrueWithin(kPatience, holds)) {
        throw std::runtime_error("sound server: waited in vain for " + what);
    }
}

void isolateSoundClient() {
    static const auto folder = makeFolder();
    for (const auto* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH"}) {
        setenv(name, folder.c_str(), 1);
    }
    setenv("PULSE_COOKIE", (folder + "/cookie").c_str(), 1);
    unsetenv("PULSE_SERVER");
    unsetenv("DISPLAY");
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
}

} // namespace tovik::test
