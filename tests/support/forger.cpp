#include "tests/support/forger.h"

#include <systemd/sd-bus.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <memory>
#include <stdexcept>

#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

using OwnedMessage = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

// In the child, where nothing can be thrown.
bool become(const passwd& user) {
    return setgroups(0, nullptr) == 0 && setgid(user.pw_gid) == 0 && setuid(user.pw_uid) == 0;
}

[[noreturn]] void forgeOn(const std::string& address, const Forger::Forge& forge, int done) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, address.c_str());
    sd_bus_set_bus_client(bus, 1);
    if (sd_bus_start(bus) < 0) _exit(1);
    forge(bus);
    // Answered after all that was sent before.
    if (sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                           "org.freedesktop.DBus", "GetId", nullptr, nullptr, "") < 0)
        _exit(1);
    if (write(done, "", 1) != 1) _exit(1);
    while (true)
        pause();
}

} // namespace

Forger::Forger(const std::string& address, const Forge& forge) {
    const passwd* const nobody = getpwnam("nobody");
    std::array<int, 2> done{};
    if (nobody == nullptr || pipe(done.data()) != 0) throw std::runtime_error("no forger");
    process_ = fork();
    if (process_ == 0) {
        close(done[0]);
        if (geteuid() == 0 && !become(*nobody)) _exit(1);
        forgeOn(address, forge, done[1]);
    }
    close(done[1]);
    char first = 0;
    const auto count = read(done[0], &first, 1);
    close(done[0]);
    if (count != 1) throw std::runtime_error("the forger cannot reach the bus");
}

Forger::~Forger() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void sendSignalTo(sd_bus* bus, const std::string& to, const std::string& path,
                  const std::string& interface, const std::string& member,
                  const std::function<void(sd_bus_message*)>& append) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_signal(bus, &message, path.c_str(), interface.c_str(), member.c_str());
    const OwnedMessage owned(message, sd_bus_message_unref);
    append(message);
    sd_bus_send_to(bus, message, to.c_str(), nullptr);
}

void sendAnswerTo(sd_bus* bus, const std::string& to, std::uint64_t serial,
                  const std::string& text) {
    // The library answers calls only; so here is one as if it had come in.
    sd_bus_message* call = nullptr;
    sd_bus_message_new_method_call(bus, &call, nullptr, "/", "nl.example.Any", "Any");
    const OwnedMessage ownedCall(call, sd_bus_message_unref);
    sd_bus_message_set_sender(call, to.c_str());
    sd_bus_message_seal(call, serial, 0);
    sd_bus_message* answer = nullptr;
    sd_bus_message_new_method_return(call, &answer);
    const OwnedMessage ownedAnswer(answer, sd_bus_message_unref);
    sd_bus_message_append(answer, "s", text.c_str());
    sd_bus_send(bus, answer, nullptr);
}

} // namespace wegslot
