// The least that a receiver of BlueZ's reports can cost: takes each off the bus with sd-bus, reads
// strength and manufacturer data, and forgets it. `signal_floor FILE [MILLISECONDS]` counts in the
// first eight bytes of FILE, where the count can be read without waking it. With MILLISECONDS it
// lets reports wait for so long, to take them off together.

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// The rule that Wegslot has for devices.
constexpr auto reports = "type='signal',sender='org.bluez',"
                         "interface='org.freedesktop.DBus.Properties',"
                         "member='PropertiesChanged',path_namespace='/org/bluez',"
                         "arg0='org.bluez.Device1'";

struct Receiver {
    std::uint64_t* count;
    std::int16_t strength = 0;
    std::uint8_t lastByte = 0;
};

void readMakerData(sd_bus_message* message, Receiver& receiver) {
    sd_bus_message_enter_container(message, 'v', "a{qv}");
    sd_bus_message_enter_container(message, 'a', "{qv}");
    while (sd_bus_message_enter_container(message, 'e', "qv") > 0) {
        std::uint16_t company = 0;
        const void* bytes = nullptr;
        std::size_t size = 0;
        sd_bus_message_read(message, "q", &company);
        sd_bus_message_enter_container(message, 'v', "ay");
        sd_bus_message_read_array(message, 'y', &bytes, &size);
        if (size > 0) receiver.lastByte = static_cast<const std::uint8_t*>(bytes)[size - 1];
        sd_bus_message_exit_container(message);
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
}

int received(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& receiver = *static_cast<Receiver*>(data);
    const char* interface = nullptr;
    sd_bus_message_read(message, "s", &interface);
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* name = nullptr;
        sd_bus_message_read(message, "s", &name);
        if (name != nullptr && std::string_view(name) == "RSSI") {
            sd_bus_message_read(message, "v", "n", &receiver.strength);
        } else if (name != nullptr && std::string_view(name) == "ManufacturerData") {
            readMakerData(message, receiver);
        } else {
            sd_bus_message_skip(message, "v");
        }
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    ++*receiver.count;
    return 0;
}

int complain(const char* what) {
    std::fprintf(stderr, "signal_floor: %s\n", what);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) return complain("usage: signal_floor FILE [MILLISECONDS]");
    const std::chrono::milliseconds rest{argc == 3 ? std::strtol(argv[2], nullptr, 10) : 0};
    const int file = open(argv[1], O_RDWR | O_CLOEXEC);
    if (file < 0) return complain("cannot open the file to count in");
    void* const memory =
        mmap(nullptr, sizeof(std::uint64_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) return complain("cannot count in the file");
    Receiver receiver{.count = static_cast<std::uint64_t*>(memory)};
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) return complain("no connection to the bus");
    if (sd_bus_add_match(bus, nullptr, reports, received, &receiver) < 0)
        return complain("the bus refuses the match");
    for (;;) {
        const int handled = sd_bus_process(bus, nullptr);
        if (handled < 0) return complain("the bus is gone");
        if (handled > 0) continue;
        if (sd_bus_wait(bus, UINT64_MAX) < 0) return complain("the bus is gone");
        std::this_thread::sleep_for(rest);
    }
}
