// Puts the process into a time zone for the length of a test.
#pragma once

#include <optional>
#include <string>

#include <stdlib.h>
#include <time.h>

namespace wegslot {

class TimeZone {
public:
    explicit TimeZone(const std::string& name) {
        if (const char* before = getenv("TZ")) before_ = before;
        setenv("TZ", name.c_str(), 1);
        tzset();
    }

    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    ~TimeZone() {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

private:
    std::optional<std::string> before_;
};

} // namespace wegslot
