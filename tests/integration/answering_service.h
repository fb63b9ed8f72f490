// A service that a test plays on a thread of its own, for what waits for an answer: a look-alike
// on the loop of the test could not give one meanwhile.
#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace wegslot {

class AnsweringService {
public:
    /// Answers a call; runs on the service's thread.
    using Answer = std::function<void(sd_bus* bus, sd_bus_message* call)>;

    /// Owns `name` when this returns, and answers every call that is made to it.
    AnsweringService(const std::string& address, const std::string& name, Answer answer)
        : answer_(std::move(answer)) {
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, address.c_str());
        sd_bus_set_bus_client(bus_, 1);
        if (sd_bus_start(bus_) < 0 || sd_bus_add_filter(bus_, nullptr, received, this) < 0 ||
            sd_bus_request_name(bus_, name.c_str(), 0) < 0)
            throw std::runtime_error("service: no bus");
        thread_ = std::thread([this] { run(); });
    }
    AnsweringService(const AnsweringService&) = delete;
    AnsweringService& operator=(const AnsweringService&) = delete;

    /// Leaves the bus.
    ~AnsweringService() {
        ending_ = true;
        thread_.join();
        sd_bus_close(bus_);
        sd_bus_unref(bus_);
    }

private:
    static int received(sd_bus_message* message, void* self, sd_bus_error*) {
        std::uint8_t type = 0;
        sd_bus_message_get_type(message, &type);
        if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
        const auto& service = *static_cast<AnsweringService*>(self);
        service.answer_(service.bus_, message);
        return 1;
    }

    void run() {
        constexpr std::uint64_t microsecondsBetweenLooks = 5000;
        while (!ending_)
            if (sd_bus_process(bus_, nullptr) == 0) sd_bus_wait(bus_, microsecondsBetweenLooks);
    }

    Answer answer_;
    sd_bus* bus_ = nullptr;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

} // namespace wegslot
