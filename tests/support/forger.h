// A process of another user, which sends on a bus what it should not. It stays on the bus, and
// so can be asked about there, until this object ends.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <sys/types.h>

struct sd_bus;
struct sd_bus_message;

namespace wegslot {

class Forger {
public:
    /// Sends with what it is handed; runs in the other process.
    using Forge = std::function<void(sd_bus* bus)>;

    /// Returns when the bus at `address` has taken all that `forge` sends. As nobody, if the test
    /// runs as root.
    Forger(const std::string& address, const Forge& forge);
    Forger(const Forger&) = delete;
    Forger& operator=(const Forger&) = delete;
    ~Forger();

    [[nodiscard]] pid_t process() const { return process_; }

private:
    pid_t process_;
};

/// A signal for the connection `to` alone; `append` adds its arguments.
void sendSignalTo(sd_bus* bus, const std::string& to, const std::string& path,
                  const std::string& interface, const std::string& member,
                  const std::function<void(sd_bus_message*)>& append);

/// An answer to the call that the connection `to` made as its `serial`th message.
void sendAnswerTo(sd_bus* bus, const std::string& to, std::uint64_t serial,
                  const std::string& text);

} // namespace wegslot
