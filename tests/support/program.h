// A program that a test starts: a display server, a sound server, a locker. It leads a process
// group of its own, which ends with this object; what it prints is kept.
#pragma once

#include "tests/support/temporary_folder.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace wegslot {

class Program {
public:
    struct Start {
        /// The program, looked up in PATH, and its arguments.
        std::vector<std::string> words;
        /// On top of the test's own environment; an empty value takes the variable away.
        std::map<std::string, std::string> environment = {};
        /// As nobody, if the test runs as root: some programs refuse root.
        bool unprivileged = false;
    };

    explicit Program(const Start& start);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    [[nodiscard]] pid_t process() const { return process_; }

    /// Whether it still runs; a stopped one does.
    [[nodiscard]] bool isRunning();

    /// Waits for its end and gives the exit status, 128 + n after signal n; nothing when it still
    /// runs after `onlyAHang`.
    [[nodiscard]] std::optional<int> ended();

    /// Sends a signal to its whole group: SIGSTOP makes it hang, and it does when this returns;
    /// SIGCONT has it go on.
    void signal(int number) const;

    /// Ends the group and waits for the program.
    void stop();

    /// What it has printed so far, errors included.
    [[nodiscard]] std::string output() const { return folder_.read("output"); }

private:
    TemporaryFolder folder_;
    pid_t process_ = 0;
    std::optional<int> status_;
};

/// Of an X server that was started with `-displayfd 1`, as ":7"; empty until it takes connections.
/// What it complains of, as of numbers that others have, comes before.
[[nodiscard]] std::string displayOf(const Program& server);

/// Whether PATH has the program; tests that need it are skipped otherwise.
[[nodiscard]] bool isInstalled(const std::string& program);

/// Waits until `condition` holds, looking often; false when it does not within `onlyAHang`.
[[nodiscard]] bool becomesTrue(const std::function<bool()>& condition);

/// A folder that programs started as nobody may use too, for XDG_RUNTIME_DIR.
class RuntimeFolder {
public:
    RuntimeFolder();
    [[nodiscard]] std::string path() const { return folder_.path().string(); }
    [[nodiscard]] bool has(const std::string& name) const {
        return std::filesystem::exists(folder_.path() / name);
    }

private:
    TemporaryFolder folder_;
};

} // namespace wegslot
