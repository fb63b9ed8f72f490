#include "core/app_model.h"

#include <utility>

namespace wegslot {

AppModel::AppModel(Surroundings surroundings)
    : surroundings_(std::move(surroundings)),
      settings_(surroundings_.preferences),
      scanner_(surroundings_.central, surroundings_.platform.scheduler,
               surroundings_.platform.clock, surroundings_.connecting),
      updater_(surroundings_.bundle, surroundings_.updates.value_or(noUpdates_.world()),
               surroundings_.platform.scheduler) {
    updater_.start();
    if (!surroundings_.updateNow) return;
    updateNow_ = surroundings_.platform.scheduler.after(Nanoseconds{0}, [this] { updateNow(); });
}

void AppModel::setLinkBeforeScanner(CentralDelegate* link) {
    radio().setDelegate(link == nullptr ? &scanner_ : link);
}

void AppModel::updateNow() {
    updater_.check(Updater::Silent::no, [this] { updater_.install(); });
}

Monitor& AppModel::monitor() {
    if (!monitor_)
        monitor_.emplace(settings_, scanner_, surroundings_.platform, surroundings_.makeHud());
    return *monitor_;
}

} // namespace wegslot
