#include "tests/integration/idle_compositor.h"

#include <csignal>
#include <cstdint>
#include <fstream>
#include <map>
#include <stdexcept>

#include <ext-idle-notify-v1-server.h>
#include <org-kde-kwin-idle-server.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wayland-server.h>

namespace wegslot {
namespace {

struct Order {
    char what;
    std::uint8_t argument;
};

// Requests and events by their numbers, which the descriptions of the protocols give them.
constexpr std::uint32_t extWatch = 1;
constexpr std::uint32_t extWatchInput = 2;
constexpr std::uint32_t kwinWatch = 0;
constexpr std::uint32_t destroy = 0; ///< of the notifications of both, and of ext's notifier
constexpr std::uint32_t idleEvent = 0;
constexpr std::uint32_t activeEvent = 1;
constexpr std::uint32_t releaseSeat = 3;
constexpr int seatVersion = 5;

/// The whole of the process.
struct Stage {
    Stage(int listening, int version, const std::string& path)
        : extVersion(version),
          requests(path) {
        wl_display_add_socket_fd(display, listening);
    }

    wl_display* display = wl_display_create();
    int extVersion;
    std::ofstream requests;
    std::map<char, wl_global*> protocols;
    std::map<int, wl_global*> seats;
    std::map<int, int> places;           ///< where the numbers of the seats stand
    std::map<wl_resource*, int> watches; ///< with the number of the seat
};

Stage& stageOf(wl_resource* resource) {
    return *static_cast<Stage*>(wl_resource_get_user_data(resource));
}

wl_resource* target(void* object) { return static_cast<wl_resource*>(object); }

void unwatch(wl_resource* watch) { stageOf(watch).watches.erase(watch); }

int askWatch(const void*, void* object, std::uint32_t number, const wl_message*, wl_argument*) {
    if (number != destroy) return 0;
    Stage& stage = stageOf(target(object));
    stage.requests << "unwatch " << stage.watches.at(target(object)) << std::endl;
    wl_resource_destroy(target(object));
    return 0;
}

int askSeat(const void*, void* object, std::uint32_t number, const wl_message*, wl_argument*) {
    if (number == releaseSeat) wl_resource_destroy(target(object));
    return 0;
}

void watch(wl_resource* notifier, const wl_interface& interface, const char* what,
           const wl_argument& id, const wl_argument& seat, const wl_argument& timeout) {
    Stage& stage = stageOf(notifier);
    auto* const watched = reinterpret_cast<wl_resource*>(seat.o); // an object begins a resource
    const int number = *static_cast<int*>(wl_resource_get_user_data(watched));
    stage.requests << what << ' ' << number << ' ' << timeout.u << std::endl;
    wl_resource* const resource =
        wl_resource_create(wl_resource_get_client(notifier), &interface, 1, id.n);
    stage.watches[resource] = number;
    wl_resource_set_dispatcher(resource, askWatch, nullptr, &stage, unwatch);
}

int askExt(const void*, void* object, std::uint32_t number, const wl_message*,
           wl_argument* arguments) {
    if (number == destroy) wl_resource_destroy(target(object));
    if (number == extWatch || number == extWatchInput)
        watch(target(object), ext_idle_notification_v1_interface,
              number == extWatch ? "watch" : "watch input", arguments[0], arguments[2],
              arguments[1]);
    return 0;
}

int askKwin(const void*, void* object, std::uint32_t number, const wl_message*,
            wl_argument* arguments) {
    if (number == kwinWatch)
        watch(target(object), org_kde_kwin_idle_timeout_interface, "watch", arguments[0],
              arguments[1], arguments[2]);
    return 0;
}

void bindExt(wl_client* client, void* stage, std::uint32_t version, std::uint32_t id) {
    wl_resource* const resource =
        wl_resource_create(client, &ext_idle_notifier_v1_interface, static_cast<int>(version), id);
    wl_resource_set_dispatcher(resource, askExt, nullptr, stage, nullptr);
}

void bindKwin(wl_client* client, void* stage, std::uint32_t, std::uint32_t id) {
    wl_resource* const resource = wl_resource_create(client, &org_kde_kwin_idle_interface, 1, id);
    wl_resource_set_dispatcher(resource, askKwin, nullptr, stage, nullptr);
}

void bindSeat(wl_client* client, void* place, std::uint32_t version, std::uint32_t id) {
    wl_resource* const resource =
        wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
    wl_resource_set_dispatcher(resource, askSeat, nullptr, place, nullptr);
    wl_seat_send_capabilities(resource, WL_SEAT_CAPABILITY_KEYBOARD);
}

void say(Stage& stage, int seat, std::uint32_t event) {
    for (const auto& [resource, watched] : stage.watches)
        if (watched == seat) wl_resource_post_event(resource, event);
}

void breakOff(Stage& stage) {
    wl_client* client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(stage.display))
        wl_client_post_implementation_error(client, "nonsense");
}

void perform(Stage& stage, const Order& order) {
    const auto [what, argument] = order;
    if (what == 'i') say(stage, argument, idleEvent);
    if (what == 'a') say(stage, argument, activeEvent);
    if (what == 'n') breakOff(stage);
    if (what == 's') {
        int& place = stage.places[argument];
        place = argument;
        stage.seats[argument] =
            wl_global_create(stage.display, &wl_seat_interface, seatVersion, &place, bindSeat);
    }
    if (what == 'r') wl_global_destroy(stage.seats.at(argument));
    if (what != 'e' && what != 'k') return;
    if (argument == 0) return wl_global_destroy(stage.protocols.at(what));
    stage.protocols[what] =
        what == 'e'
            ? wl_global_create(stage.display, &ext_idle_notifier_v1_interface, stage.extVersion,
                               &stage, bindExt)
            : wl_global_create(stage.display, &org_kde_kwin_idle_interface, 1, &stage, bindKwin);
}

struct Ears {
    Stage& stage;
    int orders;
    int receipts;

    static int hear(int, std::uint32_t, void* self) {
        const Ears& ears = *static_cast<Ears*>(self);
        Order order{};
        if (read(ears.orders, &order, sizeof order) != sizeof order) _exit(0);
        perform(ears.stage, order);
        wl_display_flush_clients(ears.stage.display);
        if (write(ears.receipts, &order, 1) != 1) _exit(0);
        return 0;
    }
};

int listen(const std::string& path) {
    sockaddr_un address{.sun_family = AF_UNIX};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    unlink(path.c_str()); // of one that crashed
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(handle, 8) != 0)
        throw std::runtime_error("compositor: cannot listen at " + path);
    return handle;
}

} // namespace

IdleCompositor::IdleCompositor(const std::string& socket, const std::vector<Protocol>& protocols,
                               int extVersion) {
    const int listening = listen(socket);
    if (pipe(orders_.data()) != 0 || pipe(receipts_.data()) != 0) throw std::runtime_error("pipe");
    const std::string requests = (folder_.path() / "requests").string();
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        close(orders_[1]);
        close(receipts_[0]);
        Stage stage(listening, extVersion, requests);
        Ears ears{stage, orders_[0], receipts_[1]};
        wl_event_loop_add_fd(wl_display_get_event_loop(stage.display), ears.orders,
                             WL_EVENT_READABLE, Ears::hear, &ears);
        wl_display_run(stage.display);
        _exit(0);
    }
    close(listening);
    close(orders_[0]);
    close(receipts_[1]);
    for (const Protocol protocol : protocols)
        offer(protocol);
    addSeat(0);
    addSeat(1);
}

IdleCompositor::~IdleCompositor() {
    signal(SIGKILL);
    waitpid(process_, nullptr, 0);
    close(orders_[1]);
    close(receipts_[0]);
}

void IdleCompositor::signal(int number) const {
    kill(process_, number);
    siginfo_t stopped{};
    if (number == SIGSTOP) waitid(P_PID, static_cast<id_t>(process_), &stopped, WSTOPPED);
}

void IdleCompositor::order(char what, int argument) {
    const Order order{what, static_cast<std::uint8_t>(argument)};
    char receipt = 0;
    if (write(orders_[1], &order, sizeof order) != sizeof order ||
        read(receipts_[0], &receipt, 1) != 1)
        throw std::runtime_error("the compositor has gone");
}

} // namespace wegslot
