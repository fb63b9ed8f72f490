#include "app/qt/qt_descriptors.h"

#include <QSocketNotifier>

#include <memory>
#include <utility>

namespace wegslot {
namespace {

// Not at once: a notifier may be ended from within its own signal.
void endNotifierLater(QSocketNotifier* notifier) {
    notifier->setEnabled(false);
    notifier->disconnect();
    notifier->deleteLater();
}

} // namespace

Subscription QtDescriptors::onReadable(int descriptor, std::function<void()> action) {
    std::shared_ptr<QSocketNotifier> notifier(
        std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read).release(),
        endNotifierLater);
    QObject::connect(notifier.get(), &QSocketNotifier::activated,
                     [action = std::make_shared<const std::function<void()>>(std::move(action))] {
                         // What it holds must outlive the call, even if it ends its own notifier.
                         const auto held = action; // NOLINT(performance-unnecessary-copy-*)
                         (*held)();
                     });
    return Subscription{[notifier = std::move(notifier)]() mutable { notifier.reset(); }};
}

} // namespace wegslot
