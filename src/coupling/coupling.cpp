#include "coupling/coupling.h"

#include "base/text.h"
#include "log/log.h"
#include "scanner/log_name.h"

#include <algorithm>
#include <utility>

namespace wegslot::coupling {
namespace {

template <typename Case>
bool is(const Step& step) {
    return std::holds_alternative<Case>(step);
}

Ending endingOf(Refusal refusal) {
    switch (refusal) {
    case Refusal::cancelled:
        return Ending::cancelledThere;
    case Refusal::noAnswer:
        return Ending::noAnswer;
    case Refusal::otherBond:
        return Ending::bondFromBefore;
    case Refusal::failed:
        break;
    }
    return Ending::bondFailed;
}

} // namespace

Coupling::Coupling(World world) : world_(std::move(world)) {
    world_.radio.setListener(this);
    radio_ = world_.scanner.state().onChange([this](CentralState state) { radioChanged(state); });
}

Coupling::~Coupling() {
    forgetVisitor();
    if (isOut_) world_.radio.disappear();
    world_.radio.setListener(nullptr);
}

void Coupling::set(Step next) {
    over_.reset();
    asking_.reset();
    if (!is<step::Judged>(next)) trial_.reset();
    step_.set(std::move(next));
}

void Coupling::set(Step next, Nanoseconds limit, std::function<void()> over) {
    set(std::move(next));
    over_ = world_.scheduler.after(limit, std::move(over));
}

Page Coupling::page(const Step& step) const {
    return pageOf(step, {.kind = kind_,
                         .name = name_,
                         .lostTimeout = world_.settings.lostTimeout.get(),
                         .canPaste = static_cast<bool>(world_.paste)});
}

// --- What the person does -----------------------------------------------------------------------

void Coupling::act(Action action) {
    switch (action) {
    case Action::iphone:
        return choose(Kind::iphone);
    case Action::android:
        return choose(Kind::android);
    case Action::watch:
        return choose(Kind::watch);
    case Action::paste:
        if (is<step::Choosing>(step_.get()) && world_.paste) set(step::Pasting{});
        return;
    case Action::yes:
        return answered(true);
    case Action::no:
        return answered(false);
    case Action::proceed:
        return again();
    case Action::takeLostTimeout:
        return takeLostTimeout();
    case Action::setFromHere:
        return setFromHere();
    case Action::back:
        return leave(step::Choosing{});
    case Action::close:
        return leave(step::Closed{});
    }
}

void Coupling::choose(Kind kind) {
    if (!is<step::Choosing>(step_.get())) return;
    kind_ = kind;
    // A watch has hardly the room for a code, and some cannot show one.
    begin(kind == Kind::watch ? Confirmation::without : Confirmation::code);
}

void Coupling::paste(const std::string& name, std::string_view pasted) {
    if (!is<step::Pasting>(step_.get())) return;
    if (auto fault = world_.paste(name, pasted)) return set(step::Pasting{*std::move(fault)});
    set(step::Pasted{name});
}

void Coupling::answered(bool yes) {
    const Step now = step_.get();
    if (is<step::Comparing>(now)) {
        world_.radio.answer(yes);
        return yes ? bond() : fail(Ending::otherCode);
    }
    if (is<step::Acquainted>(now)) {
        if (yes) world_.radio.forget();
        return beVisible(false);
    }
    if (!is<step::Owning>(now)) return;
    if (!yes) return fail(Ending::notTheOwners);
    putBack([this] { listenWhenItCan(); });
}

void Coupling::again() {
    const Step now = step_.get();
    if (is<step::Pocketing>(now)) return listenWhereItIsCarried();
    if (is<step::Hindered>(now)) return begin(confirmation_);
    if (const auto* const failed = std::get_if<step::Failed>(&now)) {
        // Some cannot show a code. Where another was shown, somebody may be in between: never that.
        const bool without = failed->ending == Ending::bondFailed;
        return begin(without ? Confirmation::without : confirmation_);
    }
    const auto* const judged = std::get_if<step::Judged>(&now);
    if (judged != nullptr && std::holds_alternative<audibility::Silent>(judged->audibility))
        listenWhenItCan();
}

void Coupling::leave(Step last) {
    if (is<step::Closed>(step_.get())) return;
    listening_.reset();
    forgetVisitor();
    putBack([this, last = std::move(last)] { set(last); });
}

void Coupling::setFromHere() {
    const auto* const judged = std::get_if<step::Judged>(&step_.get());
    if (judged == nullptr || !judged->threshold) return;
    const Uuid& id = *visitor_->identity;
    const auto strength = world_.scanner.smoothedRSSI(id);
    if (strength) world_.settings.setThreshold(thresholdFromHere(*strength), id);
    judge(judged->audibility, !strength);
}

void Coupling::takeLostTimeout() {
    const auto* const judged = std::get_if<step::Judged>(&step_.get());
    if (judged == nullptr) return;
    const auto* const moderate = std::get_if<audibility::Moderate>(&judged->audibility);
    if (moderate == nullptr) return;
    auto& lostTimeout = world_.settings.lostTimeout;
    lostTimeout.set(std::max(lostTimeout.get(), lostTimeoutFor(moderate->longestGap)));
    judge(judged->audibility);
}

// --- On the air ---------------------------------------------------------------------------------

void Coupling::begin(Confirmation confirmation) {
    confirmation_ = confirmation;
    name_ = "Wegslot " + hexadecimal(world_.suffix(), 4);
    forgetVisitor();
    isOut_ = true;
    Log::write("Koppelen begonnen: verschijnt als " + name_);
    set(step::Preparing{});
    allOver_ = world_.scheduler.after(longestAppearance, [this] { fail(Ending::tookTooLong); });
    world_.radio.appear(name_, confirmation);
}

void Coupling::appears() {
    if (!is<step::Preparing>(step_.get())) return;
    visibleUntil_ = in(visibleTime);
    beVisible(false);
}

void Coupling::beVisible(bool again) {
    visitor_.reset();
    set(step::Visible{.name = name_, .until = visibleUntil_, .again = again},
        visibleUntil_ - world_.clock.now(), [this] { fail(Ending::nobodyCame); });
}

void Coupling::visitorCame(const Visitor& visitor) {
    if (!is<step::Visible>(step_.get())) return;
    visitor_ = visitor;
    bond();
    asking_ = world_.scheduler.after(untilAsked, [this] { world_.radio.askForBond(); });
}

void Coupling::acquaintanceCame(const Visitor& visitor) {
    if (!is<step::Visible>(step_.get())) return;
    set(step::Acquainted{.visitor = visitor, .until = in(questionTime)}, questionTime,
        [this] { beVisible(false); });
}

void Coupling::visitorLeft() {
    if (is<step::Bonding>(step_.get()) || is<step::Comparing>(step_.get())) beVisible(true);
}

void Coupling::bond() {
    set(step::Bonding{in(bondingTime)}, bondingTime, [this] { fail(Ending::noAnswer); });
}

void Coupling::codeCame(std::uint32_t code) {
    if (!is<step::Bonding>(step_.get())) return world_.radio.answer(false);
    set(step::Comparing{.code = code, .until = in(comparingTime)}, comparingTime, [this] {
        world_.radio.answer(false);
        fail(Ending::tookTooLong);
    });
}

void Coupling::codeWithdrawn() {
    if (is<step::Comparing>(step_.get())) bond(); // why is told next
}

void Coupling::bonded(const Visitor& visitor) {
    if (!is<step::Bonding>(step_.get()) && !is<step::Comparing>(step_.get())) return;
    set(step::Identifying{in(identityTime)}, identityTime, [this] { fail(Ending::noIdentity); });
    visitorChanged(visitor);
}

void Coupling::visitorChanged(const Visitor& visitor) {
    if (!visitor_) return;
    visitor_ = visitor;
    const Step now = step_.get();
    if (is<step::Identifying>(now) && visitor.identity) {
        set(step::Owning{.visitor = visitor, .until = in(questionTime)}, questionTime,
            [this] { fail(Ending::tookTooLong); });
    } else if (const auto* const owning = std::get_if<step::Owning>(&now)) {
        step_.set(step::Owning{.visitor = visitor, .until = owning->until});
    }
}

void Coupling::refused(Refusal refusal, const std::string& why) {
    if (is<step::Bonding>(step_.get()) || is<step::Comparing>(step_.get()))
        fail(endingOf(refusal), why);
}

// --- The end of it ------------------------------------------------------------------------------

void Coupling::fail(Ending ending, std::string why) {
    forgetVisitor();
    putBack([this, failed = step::Failed{ending, std::move(why)}] { set(failed); });
}

/// A bond is there for a key, and for nothing else.
void Coupling::forgetVisitor() {
    if (visitor_ && !isKey(*visitor_)) {
        world_.radio.forget();
        isOut_ = true; // it says when it is done
    }
    visitor_.reset();
}

bool Coupling::isKey(const Visitor& visitor) const {
    const auto& keys = world_.settings.keys.get();
    return visitor.identity &&
           std::ranges::find(keys, *visitor.identity, &KeyDevice::id) != keys.end();
}

void Coupling::putBack(std::function<void()> next) {
    allOver_.reset();
    if (!isOut_) return next();
    afterwards_ = std::move(next);
    if (is<step::PuttingBack>(step_.get())) return; // it is under way
    set(step::PuttingBack{});
    world_.radio.disappear();
}

void Coupling::cannotAppear(const Trouble& trouble) {
    allOver_.reset();
    if (is<step::PuttingBack>(step_.get())) return; // there is less to put back
    forgetVisitor();
    afterwards_ = [this, trouble] { set(step::Hindered{trouble}); };
    set(step::PuttingBack{});
}

void Coupling::isGone() {
    isOut_ = false;
    Log::write("Koppelen: alles is teruggezet");
    if (const auto next = std::exchange(afterwards_, nullptr)) next();
}

// --- Listening ----------------------------------------------------------------------------------

void Coupling::listenWhenItCan() {
    if (world_.scanner.isPoweredOn()) {
        set(step::ListeningLit{in(litTime)});
        return listenFor(litTime, &Coupling::litHeard);
    }
    set(step::PuttingBack{}, radioPatience,
        [this] { set(step::Hindered{{.obstacle = Obstacle::off}}); });
}

void Coupling::listenWhereItIsCarried() {
    set(step::ListeningAway{in(awayTime)});
    listenFor(awayTime, &Coupling::awayHeard);
}

void Coupling::listenFor(Nanoseconds duration, void (Coupling::*heard)(const Heard&)) {
    listening_.emplace(world_.scanner, world_.clock, world_.scheduler, *visitor_->identity,
                       duration, [this, heard](const Heard& what) {
                           listening_.reset();
                           (this->*heard)(what);
                       });
}

void Coupling::radioChanged(CentralState state) {
    const Step now = step_.get();
    const bool isOn = state == CentralState::poweredOn;
    // From the loop: the scanner has the new state only after all have been told.
    if (isOn && !isOut_ && is<step::PuttingBack>(now))
        over_ = world_.scheduler.after(Nanoseconds{0}, [this] { listenWhenItCan(); });
    if (isOn || !listening_) return;
    listening_.reset();
    set(step::Hindered{{.obstacle = Obstacle::off}});
}

void Coupling::litHeard(const Heard& heard) {
    if (!heard.everHeard) return judge(audibility::Silent{});
    set(step::Pocketing{});
}

void Coupling::awayHeard(const Heard& heard) {
    const Audibility audibility = audibilityOf(heard);
    const auto gap = std::chrono::floor<std::chrono::seconds>(heard.longestGap);
    Log::write("Koppelen: langste stilte " + std::to_string(gap.count()) + " s");
    if (!std::holds_alternative<audibility::Silent>(audibility)) makeKey(heard);
    judge(audibility);
}

void Coupling::makeKey(const Heard& heard) {
    world_.scanner.refreshSnapshot();
    const auto& devices = world_.scanner.snapshot().get();
    const auto found = std::ranges::find(devices, *visitor_->identity, &SeenDevice::id);
    SeenDevice device = found == devices.end() ? SeenDevice{.id = *visitor_->identity} : *found;
    // Its own name, and how it is heard where it is carried: not what it was a moment ago.
    if (visitor_->name) device.name = visitor_->name;
    device.rssi = heard.strength;
    world_.settings.addKey(device);
    world_.settings.setThreshold(thresholdFromHere(*heard.strength), device.id);
}

void Coupling::judge(Audibility audibility, bool unheard) {
    const Uuid id = *visitor_->identity;
    step::Judged judged{.audibility = audibility,
                        .name = visitor_->name.value_or(""),
                        .threshold = std::nullopt,
                        .unheard = unheard};
    const auto& keys = world_.settings.keys.get();
    const auto key = std::ranges::find(keys, id, &KeyDevice::id);
    if (key != keys.end()) {
        judged.name = key->name;
        judged.threshold = key->threshold;
    }
    // For who sets its threshold from here.
    if (!trial_) trial_ = world_.scanner.tryOut(id);
    set(std::move(judged));
}

} // namespace wegslot::coupling
