// How soon programs are there: from just before their exec until they own their name on the bus,
// which an event loop must turn for, and until they have the radio discover. Plays the radio
// itself.
//
//     start_times ROUNDS NAME PROGRAM [ARGUMENT...] [-- NAME PROGRAM [ARGUMENT...]]...
//
// Starts each in turn, round after round, and prints a line a start: the name, milliseconds until
// it was owned, milliseconds until discovery.

#include "crowd_radio.h"

#include <systemd/sd-bus.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using wegslot::bench::CrowdRadio;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{20};
constexpr std::size_t roomSize = 30;

struct Candidate {
    std::string name;
    std::vector<char*> words; ///< ends with null
};

/// What runs now, so that it does not outlive an interrupted measurement.
volatile std::sig_atomic_t running = 0;

void endRunning(int /*signal*/) {
    if (running > 0) kill(running, SIGKILL);
    _exit(EXIT_FAILURE);
}

std::vector<Candidate> candidates(char** words) {
    std::vector<Candidate> all;
    while (*words != nullptr) {
        Candidate candidate{.name = *words++, .words = {}};
        while (*words != nullptr && std::strcmp(*words, "--") != 0)
            candidate.words.push_back(*words++);
        if (candidate.words.empty()) throw std::runtime_error("no program for " + candidate.name);
        candidate.words.push_back(nullptr);
        all.push_back(std::move(candidate));
        if (*words != nullptr) ++words;
    }
    return all;
}

class Stopwatch {
public:
    Stopwatch() {
        radio_.onDiscovery = [this] { discoveredAt_ = Clock::now(); };
        const auto match = "type='signal',sender='org.freedesktop.DBus',"
                           "member='NameOwnerChanged',path='/org/freedesktop/DBus'";
        if (sd_bus_add_match(radio_.bus(), nullptr, match, ownerChanged, this) < 0)
            throw std::runtime_error("the bus refuses the match");
    }

    void time(const Candidate& candidate) {
        discoveredAt_.reset();
        const auto begin = Clock::now();
        const pid_t process = spawn(candidate);
        const bool isThere =
            turnUntil([&] { return discoveredAt_ && owned_.contains(candidate.name); });
        kill(process, SIGTERM);
        waitpid(process, nullptr, 0);
        running = 0;
        if (!isThere) throw std::runtime_error(candidate.name + " did not start");
        const auto after = [begin](Clock::time_point then) {
            return std::chrono::duration<double, std::milli>(then - begin).count();
        };
        std::printf("%s %.3f %.3f\n", candidate.name.c_str(), after(owned_.at(candidate.name)),
                    after(*discoveredAt_));
        std::fflush(stdout);
        if (!turnUntil([&] { return !owned_.contains(candidate.name); }))
            throw std::runtime_error(candidate.name + " does not go");
    }

private:
    static int ownerChanged(sd_bus_message* message, void* self, sd_bus_error*) {
        const char* name = nullptr;
        const char* before = nullptr;
        const char* now = nullptr;
        if (sd_bus_message_read(message, "sss", &name, &before, &now) < 0) return 0;
        auto& owned = static_cast<Stopwatch*>(self)->owned_;
        if (*now == '\0') {
            owned.erase(name);
        } else {
            owned.emplace(name, Clock::now());
        }
        return 0;
    }

    static pid_t spawn(const Candidate& candidate) {
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        pid_t process = 0;
        const int error = posix_spawnp(&process, candidate.words.front(), &files, nullptr,
                                       candidate.words.data(), environ);
        posix_spawn_file_actions_destroy(&files);
        if (error != 0) throw std::runtime_error(candidate.name + ": " + std::strerror(error));
        running = process;
        return process;
    }

    template <typename Condition>
    bool turnUntil(const Condition& condition) {
        const auto deadline = Clock::now() + patience;
        while (radio_.turn(), !condition()) {
            if (Clock::now() > deadline) return false;
            pollfd watched{radio_.fd(), radio_.events(), 0};
            poll(&watched, 1, 100);
        }
        return true;
    }

    CrowdRadio radio_{roomSize};
    std::optional<Clock::time_point> discoveredAt_;
    std::map<std::string, Clock::time_point, std::less<>> owned_;
};

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc < 4) throw std::runtime_error("usage: start_times ROUNDS NAME PROGRAM...");
        const auto all = candidates(argv + 2);
        std::signal(SIGTERM, endRunning);
        std::signal(SIGINT, endRunning);
        Stopwatch stopwatch;
        for (int round = std::stoi(argv[1]); round > 0; --round)
            for (const Candidate& candidate : all)
                stopwatch.time(candidate);
        return EXIT_SUCCESS;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "start_times: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
