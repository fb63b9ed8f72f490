#include "base/qt/qt_background.h"

#include <memory>
#include <utility>

namespace wegslot {

Handle QtBackground::run(std::function<void()> work, std::function<void()> done) {
    // Both only ever touched on this thread, so that nothing of the asker's dies on another.
    auto following = std::make_shared<std::function<void()>>(std::move(done));
    const std::weak_ptr weak = following;
    threads_.start([this, work = std::move(work), weak] {
        work();
        QMetaObject::invokeMethod(
            &home_,
            [weak] {
                if (const auto alive = weak.lock(); alive && *alive)
                    std::exchange(*alive, nullptr)();
            },
            Qt::QueuedConnection);
    });
    return Handle{[following = std::move(following)] { *following = nullptr; }};
}

} // namespace wegslot
