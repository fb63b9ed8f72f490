// advertisement-counter: an independent count of the signal strengths that BlueZ tells on the
// system bus. Says "ready" once it listens; on SIGTERM prints a summary (signal_count.h) and ends.
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "bluez_signals.h"

namespace {

int fail(const char* what, int negativeError) {
    std::fprintf(stderr, "advertisement-counter: %s: %s\n", what, std::strerror(-negativeError));
    return 1;
}

/// A descriptor that becomes readable when the program is asked to end.
int endRequests() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

/// Zero when asked to end, a negative error number if the bus has gone.
int listen(counter::BluezSignals& signals, int endDescriptor) {
    while (true) {
        const int processed = signals.processArrived();
        if (processed < 0) return processed;
        pollfd watched[] = {{sd_bus_get_fd(signals.bus()), POLLIN, 0}, {endDescriptor, POLLIN, 0}};
        if (poll(watched, 2, -1) > 0 && watched[1].revents != 0) return 0;
    }
}

} // namespace

int main() {
    const int endDescriptor = endRequests();
    counter::SignalCount count;
    counter::BluezSignals signals(count);
    if (const int result = signals.connect(); result < 0)
        return fail("cannot listen on the system bus", result);
    std::puts("ready");
    std::fflush(stdout);

    int result = listen(signals, endDescriptor);
    if (result == 0) result = signals.drain();
    std::puts(count.summary().c_str());
    close(endDescriptor);
    return result < 0 ? fail("the system bus has gone", result) : 0;
}
