// Programs that come and go as a test says. Those that a test installs can be started.
#pragma once

#include "platform/processes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace wegslot {

class FakeProcesses final : public Processes {
public:
    [[nodiscard]] std::vector<ProcessId>
    running(const std::vector<ProcessPattern>& patterns) override {
        ++looks;
        std::vector<ProcessId> found;
        for (const auto& entry : alive_)
            if (std::ranges::any_of(patterns, [&entry](const ProcessPattern& pattern) {
                    return matches(entry.second, pattern);
                }))
                found.push_back(entry.first);
        return found;
    }

    [[nodiscard]] bool isInstalled(const std::string& program) const override {
        return installed.contains(program);
    }

    [[nodiscard]] Result<ProcessId> start(const std::vector<std::string>& words) override {
        if (!isInstalled(words.front())) return Failure{words.front() + ": not there"};
        started.push_back(words);
        return appear(words);
    }

    [[nodiscard]] Subscription onEnd(ProcessId process, std::function<void()> ended) override {
        if (!canFollow || !alive_.contains(process)) return {};
        const auto entry = std::make_shared<std::function<void()>>(std::move(ended));
        followers_.emplace(process, entry);
        return Subscription{[entry] { *entry = nullptr; }};
    }

    /// Somebody else starts a program.
    ProcessId appear(const std::string& name) { return appear(std::vector<std::string>{name}); }
    ProcessId appear(std::vector<std::string> words) {
        const ProcessId process{next_++};
        alive_.emplace(process, std::move(words));
        return process;
    }

    void end(ProcessId process) {
        alive_.erase(process);
        const auto [first, last] = followers_.equal_range(process);
        std::vector<std::shared_ptr<std::function<void()>>> told;
        for (auto entry = first; entry != last; ++entry)
            told.push_back(entry->second);
        followers_.erase(first, last);
        for (const auto& follower : told)
            if (const auto ended = *follower) ended();
    }

    /// The process that was started last.
    [[nodiscard]] ProcessId latest() const { return ProcessId{next_ - 1}; }

    std::set<std::string> installed;
    std::vector<std::vector<std::string>> started;
    bool canFollow = true;
    int looks = 0;

private:
    static bool matches(const std::vector<std::string>& words, const ProcessPattern& pattern) {
        if (words.front() != pattern.name) return false;
        return !pattern.arguments ||
               std::equal(words.begin() + 1, words.end(), pattern.arguments->begin(),
                          pattern.arguments->end());
    }

    int next_ = 100;
    std::map<ProcessId, std::vector<std::string>> alive_;
    std::multimap<ProcessId, std::shared_ptr<std::function<void()>>> followers_;
};

} // namespace wegslot
