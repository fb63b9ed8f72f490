// Listens as wegslot does, with its adapter on its event loop, and counts what reaches the core's
// port. Prints "ready" when it listens, and on SIGTERM one line of JSON: how many advertisements
// came, and of each device how many and the last strength.

#include "app/qt/bus_pump.h"
#include "app/qt/qt_descriptors.h"
#include "app/qt/qt_scheduler.h"
#include "app/qt/termination.h"
#include "dbus/connection.h"
#include "dbus/forgeries.h"
#include "platform/linux/system_clock.h"
#include "scanner/bluez/bluez_central.h"
#include "scanner/bluez/hci_links.h"

#include <QCoreApplication>

#include <sys/resource.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

using namespace wegslot;

class Counter final : public CentralDelegate {
public:
    explicit Counter(BluetoothCentral& central) : central_(central) { central.setDelegate(this); }
    ~Counter() override { central_.setDelegate(nullptr); }

    void didUpdateState() override {
        if (central_.state() != CentralState::poweredOn) return;
        central_.scan();
        std::puts("ready");
        std::fflush(stdout);
    }
    void didDiscover(const Advertisement& advertisement) override {
        ++advertisements_;
        Heard& heard = devices_[advertisement.id];
        ++heard.count;
        heard.rssi = advertisement.rssi;
    }
    void didConnect(const Uuid&) override {}
    void didFailToConnect(const Uuid&) override {}
    void didDisconnect(const Uuid&, const std::optional<std::string>&) override {}
    void didReadRSSI(const Uuid&, std::optional<int>) override {}
    void didDiscoverServices(const Uuid&, std::span<const GattUuid>) override {}
    void didDiscoverCharacteristics(const Uuid&, GattUuid, std::span<const GattUuid>) override {}
    void didUpdateValue(const Uuid&, GattUuid, const std::optional<std::string_view>&) override {}
    void didIdentify(const Uuid&, const Uuid&) override {}

    void print() const {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto milliseconds = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000 +
                                  (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
        std::string devices;
        for (const auto& [id, heard] : devices_)
            devices += (devices.empty() ? "\"" : ",\"") + id.text() +
                       "\":{\"count\":" + std::to_string(heard.count) +
                       ",\"rssi\":" + std::to_string(heard.rssi) + "}";
        std::printf("{\"signals\":%ld,\"processor-ms\":%ld,\"devices\":{%s}}\n", advertisements_,
                    static_cast<long>(milliseconds), devices.c_str());
    }

private:
    struct Heard {
        long count = 0;
        int rssi = 0;
    };

    BluetoothCentral& central_;
    long advertisements_ = 0;
    std::map<Uuid, Heard> devices_;
};

} // namespace

int main(int argc, char** argv) {
    const Termination termination;
    QCoreApplication application(argc, argv);
    const auto watching = termination.watch();
    QtScheduler scheduler;
    const SystemClock clock;
    dbus::Forgeries forgeries(clock);
    dbus::Connection systemBus(dbus::systemBus(forgeries), pump, scheduler);
    QtDescriptors descriptors;
    bluez::HciLinks links(descriptors, scheduler);
    AddressResolver nobody;
    BluezCentral central(systemBus, scheduler, clock, links, nobody);
    central.want({.list = true}); // everything, all the time
    const Counter counter(central);
    const int status = QCoreApplication::exec();
    counter.print();
    return status;
}
