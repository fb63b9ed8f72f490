// A folder for a history, minutes to keep in it, and what became of them.
#pragma once

#include "history/linux/history_file.h"
#include "history/linux/history_writer.h"
#include "tests/support/captured_log.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace wegslot::history {

struct HistoryStage : testing::Test {
    static constexpr TimePoint always = TimePoint::min();
    static constexpr TimePoint never = TimePoint::max();
    /// Noon of the 23rd of November 2026 on the clock on the wall, a quarter more on the other one.
    static constexpr TimePoint noon{std::chrono::sys_days{std::chrono::year{2026} / 11 / 23} +
                                    std::chrono::hours{12}};
    static constexpr std::chrono::minutes ahead{15};

    TemporaryFolder folder;
    CapturedLog log;
    const std::filesystem::path file = folder.path() / "wegslot" / "history.db";

    /// A minute, so long after noon on the wall, that has something of everything.
    static Minute minuteAt(Nanoseconds afterNoon) {
        using namespace std::chrono_literals;
        Minute minute;
        minute.start = noon + ahead + afterNoon;
        minute.wallOffset = -ahead;
        for (int second = 0; second < 60; ++second)
            minute.judged.push_back(minute.start + second * 1s);
        KeyMinute& key = minute.keys[3];
        key.samples = {{minute.start - 2s, -70}, {minute.start + 10ms, -64}};
        key.states.assign(60, KeyState::near);
        minute.keys[1].states = {std::nullopt, KeyState::away};
        minute.events = {{minute.start + 5s, trace::Input{}},
                         {minute.start + 6s, PhaseEntered{.name = "present",
                                                          .reason = "",
                                                          .cause = PhaseCause::judgement,
                                                          .until = std::nullopt}}};
        return minute;
    }
    static Minute minute(int number) { return minuteAt(number * Minute::length); }

    /// Everything that can be read; nothing where that fails, which is a failure of the test.
    [[nodiscard]] std::vector<Minute> all() const {
        auto minutes = HistoryFile::read(file, always, never);
        EXPECT_TRUE(minutes) << minutes.failure().message;
        return minutes ? *std::move(minutes) : std::vector<Minute>();
    }
    /// The number and the run of each minute.
    [[nodiscard]] std::vector<std::pair<int, std::int64_t>> numbers() const {
        std::vector<std::pair<int, std::int64_t>> found;
        for (const Minute& kept : all())
            found.emplace_back((kept.start - noon - ahead) / Minute::length, kept.run);
        return found;
    }
    using Numbers = std::vector<std::pair<int, std::int64_t>>;

    [[nodiscard]] std::filesystem::path beside(const std::string& ending) const {
        return file.string() + ending;
    }
    [[nodiscard]] static mode_t rightsOf(const std::filesystem::path& path) {
        struct stat facts {};
        return stat(path.c_str(), &facts) == 0 ? facts.st_mode & 07777U : 0;
    }
    [[nodiscard]] std::string trouble(const std::string& why) const {
        return "Geschiedenis kan niet worden bewaard: " + file.string() + ": " + why;
    }
};

/// A writer at work.
struct KeepingWriter : HistoryWriter {
    explicit KeepingWriter(std::filesystem::path path, int days = HistoryFile::mostDays)
        : HistoryWriter(std::move(path)) {
        setDays(days);
    }
};

inline bool becomes(const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    for (const auto end = Clock::now() + onlyAHang; !condition(); std::this_thread::yield())
        if (Clock::now() > end) return false;
    return true;
}

} // namespace wegslot::history
