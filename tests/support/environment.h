// Variables of this process's environment for as long as a test needs them.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace wegslot {

class Environment {
public:
    /// An empty value takes the variable away.
    explicit Environment(const std::map<std::string, std::string>& variables) {
        for (const auto& [name, value] : variables) {
            const char* const before = std::getenv(name.c_str());
            before_[name] = before == nullptr ? std::nullopt : std::optional<std::string>(before);
            value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    ~Environment() {
        for (const auto& [name, value] : before_)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

} // namespace wegslot
