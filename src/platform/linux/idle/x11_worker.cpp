#include "platform/linux/idle/x11_worker.h"

#include "platform/linux/idle/x11_server.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <utility>

namespace wegslot {
namespace {

enum class Order { none, connect, ask, end };

/// How long the destructor waits for a thread that has nothing to wait for itself.
constexpr std::chrono::milliseconds lastPatience{100};

} // namespace

struct X11Worker::Shared {
    explicit Shared(std::string name) : display(std::move(name)) {}

    const std::string display;
    std::mutex mutex;
    std::condition_variable changed;
    // Guarded by `mutex`.
    Order order = Order::none; ///< until it has been carried out
    bool connected = false;
    bool ended = false;
    std::optional<std::chrono::milliseconds> answer;
};

X11Worker::X11Worker(std::string display) : shared_(std::make_shared<Shared>(std::move(display))) {
    // Signals are for the thread of the loop, and the one of writing to a server that has gone
    // for nobody.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([shared = shared_] { work(shared); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

X11Worker::~X11Worker() {
    std::unique_lock lock(shared_->mutex);
    shared_->order = Order::end;
    shared_->changed.notify_all();
    const bool ended =
        shared_->changed.wait_for(lock, lastPatience, [this] { return shared_->ended; });
    lock.unlock();
    ended ? thread_.join() : thread_.detach();
}

void X11Worker::connect() {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->connected || shared_->order != Order::none) return;
    shared_->order = Order::connect;
    shared_->changed.notify_all();
}

bool X11Worker::isConnected() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->connected;
}

std::optional<std::chrono::milliseconds> X11Worker::idleTime(std::chrono::milliseconds patience) {
    std::unique_lock lock(shared_->mutex);
    if (!shared_->connected || shared_->order != Order::none) return std::nullopt;
    shared_->order = Order::ask;
    shared_->answer.reset();
    shared_->changed.notify_all();
    const auto done = [this] { return shared_->order == Order::none; };
    return shared_->changed.wait_for(lock, patience, done) ? shared_->answer : std::nullopt;
}

void X11Worker::work(const std::shared_ptr<Shared>& shared) {
    std::unique_ptr<X11Server> server;
    std::unique_lock lock(shared->mutex);
    while (shared->order != Order::end) {
        if (shared->order == Order::none) {
            shared->changed.wait(lock);
            continue;
        }
        const Order order = shared->order;
        lock.unlock(); // the server may take for ever
        if (order == Order::connect) server = X11Server::connect(shared->display);
        const auto answer = server ? server->idleTime() : std::nullopt;
        if (server && !server->isConnected()) server.reset();
        lock.lock();
        shared->connected = server != nullptr;
        shared->answer = answer;
        if (shared->order != Order::end) shared->order = Order::none;
        shared->changed.notify_all();
    }
    lock.unlock();
    server.reset();
    lock.lock();
    shared->ended = true;
    shared->changed.notify_all();
}

} // namespace wegslot
