#include "app/qt/termination.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
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
                     [told = notifier.get()] {
                         QCoreApplication::quit();
                         // Never read, so that any loop after this one ends as well; but told again
                         // only ten times a second, so that one that has something to put back gets
                         // to it.
                         told->setEnabled(false);
                         QTimer::singleShot(std::chrono::milliseconds{100}, told,
                                            [told] { told->setEnabled(true); });
                     });
    return notifier;
}

Termination::~Termination() { close(handle_); }

} // namespace wegslot
