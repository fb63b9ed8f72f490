#include "app/demo.h"

#include "base/text.h"
#include "hud/joint_hud.h"

#include <utility>

namespace wegslot {
namespace {

KeyDevice phone() {
    return {.id = *Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6"),
            .name = translated("Telefoon"),
            .model = std::nullopt,
            .isApple = false, // only listened to: there is nothing to connect
            .threshold = Dbm{-75}};
}

} // namespace

Demo::Demo(Scheduler& scheduler, const Clock& clock, PrintLine print, std::function<void()> done,
           std::unique_ptr<WarningHUD> hud)
    : clock_(clock),
      start_(clock.now()),
      print_(std::move(print)),
      platform_(clock, scheduler,
                [this] { tell("   " + translated("(de sessie wordt gevraagd te locken)")); }),
      model_({store_, central_, platform_.ports,
              [this, &hud] { // asked for below, at once
                  JointHud::Parts parts;
                  parts.push_back(std::make_unique<StagedHud>([this](const Warning* shown) {
                      tell("   " + (shown == nullptr
                                        ? translated("(het waarschuwingspaneel gaat weg)")
                                        : translated("(het waarschuwingspaneel verschijnt)")));
                  }));
                  parts.push_back(std::move(hud));
                  return std::make_unique<JointHud>(std::move(parts));
              }}),
      logBefore_(Log::setDestination(this)),
      script_(scheduler) {
    tell("   " + translated("(je zit achter je computer, je telefoon ligt naast je)"));
    model_.settings().keys.set({phone()});
    phases_ = model_.monitor().phase().onChange(
        [this](const Phase& phase) { tell(translated("Fase: %1", {std::string(name(phase))})); });
    central_.setState(CentralState::poweredOn);

    playSignal(0.2, 6, -52, -56);
    at(6, [this] { tell("   " + translated("(je loopt weg met je telefoon)")); });
    playSignal(6, 9, -62, -92);
    playSignal(9, 14, -92, -96);
    at(21.5, [this] {
        tell("   " + translated("(het scherm is gelockt)"));
        platform_.session.tell(SessionEvent::locked);
    });
    at(28, [this] { tell("   " + translated("(je komt terug)")); });
    playSignal(28, 38, -60, -52);
    at(31, [this] {
        tell("   " + translated("(je ontgrendelt het scherm)"));
        platform_.session.tell(SessionEvent::unlocked);
    });
    at(38, [this, done = std::move(done)] {
        tell("   " + translated("(einde van de demo)"));
        done();
    });
}

Demo::~Demo() { Log::setDestination(logBefore_); }

void Demo::write(std::string_view message) { tell("Log:  " + std::string(message)); }

void Demo::tell(std::string_view line) {
    const auto elapsed = std::chrono::round<std::chrono::seconds>(clock_.now() - start_).count();
    const std::string seconds = std::to_string(elapsed);
    print_((seconds.size() < 2 ? " " : "") + seconds + " s  " + std::string(line));
}

void Demo::at(double seconds, std::function<void()> action) {
    script_.after(rounded(Seconds{seconds}), std::move(action));
}

// Two advertisements a second, the signal changing evenly.
void Demo::playSignal(double from, double to, int first, int last) {
    constexpr double interval = 0.5;
    const int steps = static_cast<int>((to - from) / interval);
    for (int step = 0; step < steps; ++step) {
        const int rssi = first + (last - first) * step / steps;
        at(from + step * interval,
           [this, rssi] { central_.advertise({.id = phone().id, .rssi = rssi}); });
    }
}

} // namespace wegslot
