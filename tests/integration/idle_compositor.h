// A compositor that tests play, in a process of its own so that it can hang: it draws nothing, has
// seats that nobody sits at, and says of them what it is told to say. Each order has been carried
// out, and what it makes the compositor say has been sent, when the operation returns.
#pragma once

#include "tests/support/temporary_folder.h"

#include <array>
#include <string>
#include <vector>

#include <sys/types.h>

namespace wegslot {

class IdleCompositor {
public:
    enum class Protocol : char { ext = 'e', kwin = 'k' };

    /// Takes connections at the path `socket` from now on, with two seats, 0 and 1.
    IdleCompositor(const std::string& socket, const std::vector<Protocol>& protocols,
                   int extVersion = 1);
    IdleCompositor(const IdleCompositor&) = delete;
    IdleCompositor& operator=(const IdleCompositor&) = delete;
    /// Crashes.
    ~IdleCompositor();

    void sayIdle(int seat) { order('i', seat); }
    void sayActive(int seat) { order('a', seat); }
    void addSeat(int seat) { order('s', seat); }
    void removeSeat(int seat) { order('r', seat); }
    void offer(Protocol protocol) { order(static_cast<char>(protocol), 1); }
    void withdraw(Protocol protocol) { order(static_cast<char>(protocol), 0); }
    /// Breaks the protocol, and with it every connection.
    void talkNonsense() { order('n', 0); }

    /// SIGSTOP and SIGCONT, done when this returns; an order to a compositor that hangs would wait
    /// for ever.
    void signal(int number) const;

    /// What clients asked for, in order: "watch SEAT TIMEOUT", "watch input SEAT TIMEOUT",
    /// "unwatch SEAT".
    [[nodiscard]] std::vector<std::string> requests() const { return folder_.lines("requests"); }

private:
    void order(char what, int argument);

    TemporaryFolder folder_;
    std::array<int, 2> orders_{};   ///< to and from
    std::array<int, 2> receipts_{}; ///< the process
    pid_t process_ = 0;
};

} // namespace wegslot
