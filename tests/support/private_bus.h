// A dbus-daemon of the test's own, on a socket in a temporary folder. It can be stopped and
// started again under the same address.
#pragma once

#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <string>

#include <sys/types.h>

namespace wegslot {

class PrivateBus {
public:
    enum class Policy {
        anybody, ///< may own any name and talk to anybody: the tests play every service
        system,  ///< the machine's own for its system bus; root may do as above. Needs root.
    };

    explicit PrivateBus(Policy policy = Policy::anybody);
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// Starts the daemon; returns when it listens.
    void start();
    void stop();

    /// Has the daemon start `command` for whoever calls `name` while nobody owns it.
    void offer(const std::string& name, const std::string& command) const;

    [[nodiscard]] const std::string& address() const { return address_; }

private:
    [[nodiscard]] std::filesystem::path services() const { return folder_.path() / "services"; }

    TemporaryFolder folder_;
    std::string address_;
    pid_t daemon_ = 0;
};

} // namespace wegslot
