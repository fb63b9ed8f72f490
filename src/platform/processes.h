// The port to the programs of this user: which of them run, starting one, and learning of its
// end.
#pragma once

#include "base/handle.h"
#include "base/result.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// A number that the system gives to another process once this one has ended.
struct ProcessId {
    int value = 0;
    friend auto operator<=>(const ProcessId&, const ProcessId&) = default;
};

/// Which process is meant.
struct ProcessPattern {
    std::string name; ///< of the program's file, without its folder; or of the user's script
    /// The words after the program (and after its interpreter); any when there is nothing here.
    std::optional<std::vector<std::string>> arguments = std::nullopt;
};

class Processes {
public:
    Processes() = default;
    Processes(const Processes&) = delete;
    Processes& operator=(const Processes&) = delete;
    virtual ~Processes() = default;

    /// The processes of this user that match one of `patterns`, in no order. Reads the whole
    /// process table, which takes milliseconds.
    [[nodiscard]] virtual std::vector<ProcessId>
    running(const std::vector<ProcessPattern>& patterns) = 0;

    /// Whether `program` could be started, by its name in PATH or by its path.
    [[nodiscard]] virtual bool isInstalled(const std::string& program) const = 0;

    /// Starts a program with its arguments, without a shell. It outlives this one and shares no
    /// terminal, signals or open files with it. The failure says why not.
    [[nodiscard]] virtual Result<ProcessId> start(const std::vector<std::string>& words) = 0;

    /// Calls `ended` once, from the loop, when the process has ended. An ended handle where it
    /// cannot be followed, for one because it is no more.
    [[nodiscard]] virtual Subscription onEnd(ProcessId process, std::function<void()> ended) = 0;
};

} // namespace wegslot
