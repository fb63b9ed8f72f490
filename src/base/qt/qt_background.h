// Long work on a thread of Qt's pool; what follows it on the thread that asked, by its event loop.
#pragma once

#include "base/background.h"

#include <QObject>
#include <QThreadPool>

namespace wegslot {

class QtBackground final : public Background {
public:
    /// Waits for work that has begun.
    ~QtBackground() override { threads_.waitForDone(); }

    [[nodiscard]] Handle run(std::function<void()> work, std::function<void()> done) override;

private:
    QObject home_; ///< lives on the thread that asks
    QThreadPool threads_;
};

} // namespace wegslot
