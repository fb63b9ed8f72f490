#include "tests/properties/stage.h"

#include <algorithm>
#include <array>
#include <utility>

namespace wegslot {
namespace {

// The scanner writes to the same log; what it writes is not the monitor's business.
bool isScannerLine(std::string_view message) {
    constexpr std::array<std::string_view, 5> beginnings{"Gezien: ", "Herkend: ", "Verbonden",
                                                         "Verbinding", "Bluetooth-status: "};
    return std::ranges::any_of(beginnings, [message](std::string_view beginning) {
        return message.starts_with(beginning);
    });
}

} // namespace

// Passes on every call, also a hide without a panel: where the monitor hides it is a rule too.
class Stage::Panel final : public WarningHUD {
public:
    explicit Panel(Stage& stage) : stage_(stage) { ++stage_.panels; }

    ~Panel() override {
        --stage_.panels;
        stage_.panelShows = false;
    }

    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override {
        stage_.panelShows = true;
        stage_.cancel = std::move(onCancel);
        stage_.happened(effect::PanelShown{deadline, total, message.builtIn()});
    }

    void hide() override {
        stage_.panelShows = false;
        stage_.happened(effect::PanelHidden{});
    }

private:
    Stage& stage_;
};

Stage::Stage(TimePoint start)
    : time(start),
      platform(time, time, [this] { happened(effect::LockRequested{}); }),
      start_(start),
      logBefore_(Log::setDestination(this)) {
    central.onCall([this](std::string_view operation, const Uuid* id) {
        if (id != nullptr && onCall) onCall(operation, *id);
    });
}

Stage::~Stage() {
    endModel();
    Log::setDestination(logBefore_);
}

AppModel& Stage::makeModel() { return model.emplace(surroundings()); }

void Stage::makeMonitor() {
    Monitor& made = model->monitor();
    subscriptions_.push_back(
        made.phase().onChange([this](const Phase& phase) { happened(effect::PhaseSet{phase}); }));
    subscriptions_.push_back(made.keyStates().onChange(
        [this](const KeyStates& states) { happened(effect::StatesSet{states}); }));
}

void Stage::endModel() { model.reset(); }

AppModel::Surroundings Stage::surroundings() {
    return {store, central, platform.ports, [this] { return std::make_unique<Panel>(*this); }};
}

void Stage::sleep(Nanoseconds duration) {
    slept_ += duration;
    time.sleep(duration);
}

void Stage::write(std::string_view message) {
    if (!isScannerLine(message)) happened(effect::Logged{std::string(message)});
}

void Stage::happened(Effect effect) {
    effects.push_back(std::move(effect));
    if (onEffect) onEffect(effects.back());
}

} // namespace wegslot
