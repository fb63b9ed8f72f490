#include "update/linux/tool.h"

#include "base/text.h"
#include "platform/linux/spawn.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

using Clock = std::chrono::steady_clock;
using Deadline = std::optional<Clock::time_point>;

/// poll's measure: milliseconds, rounded up; negative for as long as it takes.
int timeoutUntil(const Deadline& deadline) {
    if (!deadline) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 1'000'000));
}

/// Until there is something to read, or an end to learn of. False when time was up first.
bool isReady(int descriptor, const Deadline& deadline) {
    pollfd waiting{descriptor, POLLIN, 0};
    int ready = -1;
    while ((ready = poll(&waiting, 1, timeoutUntil(deadline))) < 0 && errno == EINTR)
        ;
    return ready != 0;
}

/// Reads until the other side is closed, and keeps the beginning. False when time was up first.
bool readAll(int pipe, const Deadline& deadline, std::size_t most, std::string& output) {
    std::array<char, 4096> block{};
    while (true) {
        if (!isReady(pipe, deadline)) return false;
        const ssize_t got = read(pipe, block.data(), block.size());
        if (got <= 0) return true;
        const auto room = std::min(most - output.size(), static_cast<std::size_t>(got));
        output.append(block.data(), room);
    }
}

/// False when time was up before its end.
bool hasEnded(pid_t process, const Deadline& deadline) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0) return true; // whoever waits for it will wait long enough
    const bool ended = isReady(descriptor, deadline);
    close(descriptor);
    return ended;
}

int statusOf(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
        if (errno != EINTR) return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

Result<std::string> runTool(const std::vector<std::string>& words,
                            std::optional<Nanoseconds> patience, std::size_t most) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return Failure{message("geen pijp voor %1", {words.front()})};
    const auto process =
        spawn(words, {.environment = std::vector<std::string>{"PATH=/usr/bin:/bin", "LC_ALL=C"},
                      .output = pipe[1]});
    close(pipe[1]);
    std::string output;
    if (process) {
        Deadline deadline;
        if (patience) deadline = Clock::now() + *patience;
        // Until its output ends and until it does: what it left behind counts as well.
        const bool inTime =
            readAll(pipe[0], deadline, most, output) && hasEnded(*process, deadline);
        if (!inTime) kill(-*process, SIGKILL);
    }
    close(pipe[0]);
    if (!process) return process.failure();
    const int status = statusOf(*process);
    if (status == 0) return output;
    const std::string name = std::filesystem::path(words.front()).filename();
    return Failure{message("%1 mislukt (%2)", {printable(name), std::to_string(status)})};
}

} // namespace wegslot
