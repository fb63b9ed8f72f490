#include "tests/support/private_bus.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

// The address is overruled where the daemon is started, as is what the system says of its place.
constexpr auto forAnybody =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <servicedir>SERVICES</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
    <allow user="*"/>
  </policy>
</busconfig>
)";

constexpr auto asTheSystem =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <include>/usr/share/dbus-1/system.conf</include>
  <policy user="OWNER">
    <allow own="*"/>
    <allow send_destination="*"/>
  </policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus(Policy policy) : address_("unix:path=" + (folder_.path() / "bus").string()) {
    using std::filesystem::perms;
    std::string text = policy == Policy::system ? asTheSystem : forAnybody;
    const auto fillIn = [&text](std::string_view blank, const std::string& value) {
        if (const auto place = text.find(blank); place != std::string::npos)
            text.replace(place, blank.size(), value);
    };
    fillIn("SERVICES", services().string());
    fillIn("OWNER", std::to_string(geteuid()));
    std::filesystem::create_directory(services());
    folder_.write("bus.conf", text);
    // The socket is for whoever the policy lets in.
    std::filesystem::permissions(folder_.path(),
                                 perms::owner_all | perms::group_exec | perms::others_exec);
    start();
}

PrivateBus::~PrivateBus() { stop(); }

void PrivateBus::offer(const std::string& name, const std::string& command) const {
    folder_.write("services/" + name + ".service",
                  "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
}

void PrivateBus::start() {
    std::array<int, 2> ready{};
    if (pipe(ready.data()) != 0) throw std::runtime_error("pipe");
    const std::string config = "--config-file=" + (folder_.path() / "bus.conf").string();
    const std::string listen = "--address=" + address_;
    const std::string print = "--print-address=" + std::to_string(ready[1]);
    daemon_ = fork();
    if (daemon_ == 0) {
        close(ready[0]);
        execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nosyslog", "--nopidfile",
               config.c_str(), listen.c_str(), print.c_str(), nullptr);
        _exit(127);
    }
    close(ready[1]);
    // It prints its address when it listens, and nothing when it could not be started.
    char first = 0;
    const auto count = read(ready[0], &first, 1);
    close(ready[0]);
    if (count != 1) throw std::runtime_error("dbus-daemon did not start");
}

void PrivateBus::stop() {
    if (daemon_ <= 0) return;
    kill(daemon_, SIGKILL);
    waitpid(daemon_, nullptr, 0);
    daemon_ = 0;
    std::filesystem::remove(folder_.path() / "bus"); // a new daemon would refuse the old socket
}

} // namespace wegslot
