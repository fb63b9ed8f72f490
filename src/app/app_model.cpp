#include "app/app_model.h"

#include <utility>

namespace wegslot {

AppModel::AppModel(Surroundings surroundings)
    : surroundings_(std::move(surroundings)),
      settings_(surroundings_.preferences),
      scanner_(surroundings_.central, surroundings_.platform.scheduler,
               surroundings_.platform.clock) {}

Monitor& AppModel::monitor() {
    if (!monitor_)
        monitor_.emplace(settings_, scanner_, surroundings_.platform, surroundings_.makeHud());
    return *monitor_;
}

} // namespace wegslot
