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
    notifier_ = std::make_unique<QSocketNotifier>(handle_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, QCoreApplication::instance(),
                     [] { QCoreApplication::quit(); });
}

Termination::~Termination() {
    notifier_.reset();
    close(handle_);
}

} // namespace wegslot
