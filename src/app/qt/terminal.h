// What Wegslot and its commands say to who runs them in a terminal.
#pragma once

#include "app/key_commands.h"
#include "app/linux/standard_output.h"
#include "log/linux/file_log.h"
#include "log/log.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

void printLine(std::string_view line);

/// Says what is wrong, in one line; the exit status of who fails.
int complain(const std::string& message);

/// What came of a command, for who gave it; the exit status.
int said(const Result<std::string>& outcome);

/// Writes to the log file and, for who watches in a terminal, there too.
class TeeLog final : public LogDestination {
public:
    TeeLog(const std::filesystem::path& file, const Clock& clock);
    ~TeeLog() override { Log::setDestination(before_); }

    void write(std::string_view message) override;

private:
    FileLog file_;
    std::optional<StandardOutput> terminal_;
    LogDestination* before_;
};

/// Tells who runs a command what would otherwise be in the log.
class ComplainingLog final : public LogDestination {
public:
    ComplainingLog() : before_(Log::setDestination(this)) {}
    ~ComplainingLog() override { Log::setDestination(before_); }

    void write(std::string_view message) override { complain(std::string(message)); }
    void say(const Message& message) override { complain(message.translated()); }

private:
    LogDestination* before_;
};

/// What is printed until somebody ends it, or nobody reads it any more.
class GoingOn {
public:
    [[nodiscard]] PrintLine printer();

private:
    StandardOutput output_;
};

} // namespace wegslot
