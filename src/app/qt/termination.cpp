#include "app/qt/termination.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace wegslot {

Termination::Termination() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    handle_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

std::unique_ptr<QSocketNotifier> Termination::watch() const {
    auto notifier = std::make_unique<QSocketNotifier>(handle_, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, QCoreApplication::instance(),
                     [] { QCoreApplication::quit(); });
    return notifier;
}

Termination::~Termination() { close(handle_); }

} // namespace wegslot
