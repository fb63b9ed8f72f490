#include "model/switched_off.h"

namespace wegslot {

SwitchedOff::SwitchedOff(const Settings& settings, Remembered& remembered, const Clock& clock)
    : remembered_(remembered),
      clock_(clock),
      switching_(settings.enabled.follow([this](const bool& isOn) { note(isOn); })) {}

bool SwitchedOff::isLong() const {
    // Judging uses the steady clock; but that begins with the machine, and this outlasts it.
    const Seconds since = remembered_.offSince.get();
    return since > Seconds{0} &&
           Seconds{clock_.wallClock().time_since_epoch()} - since > Seconds{longEnough};
}

void SwitchedOff::note(bool isOn) {
    const bool isNoted = remembered_.offSince.get() > Seconds{0};
    if (isOn != isNoted) return; // as it should be
    remembered_.offSince.set(isOn ? Seconds{0} : Seconds{clock_.wallClock().time_since_epoch()});
}

} // namespace wegslot
