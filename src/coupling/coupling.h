// The steps from a phone in somebody's hand to a key: this computer appears, the phone connects and
// bonds, its owner says that it is theirs, it is listened to, and becomes a key if it can be one.
// Knows when, in which order and for how long; what a person sees is put into words elsewhere,
// and what the radio does is behind its port. At every end everything is as it was before, but for
// what was asked for.
#pragma once

#include "base/clock.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "coupling/coupling_radio.h"
#include "coupling/listening.h"
#include "coupling/page.h"
#include "coupling/step.h"
#include "model/settings.h"
#include "scanner/scanner.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot::coupling {

class Coupling final : private CouplingListener {
public:
    // What a person needs to find a page of the phone's settings; the radio shows itself half a
    // minute longer, and then stops by itself.
    static constexpr Nanoseconds visibleTime = std::chrono::minutes{2};
    /// For a person to find the question on the phone; BlueZ gives an agent no longer.
    static constexpr Nanoseconds bondingTime = std::chrono::seconds{60};
    /// A step of pairing that takes longer has failed (Bluetooth Core Specification 5.4, volume 3,
    /// part H, 3.4).
    static constexpr Nanoseconds comparingTime = std::chrono::seconds{30};
    static constexpr Nanoseconds questionTime = std::chrono::seconds{60};
    /// A phone begins by itself when it reads what only a bonded one may; if it has not by now, it
    /// is asked.
    static constexpr Nanoseconds untilAsked = std::chrono::seconds{3};
    /// Keys are exchanged within a second of the bond.
    static constexpr Nanoseconds identityTime = std::chrono::seconds{10};
    /// For everything during which the radio listens to no key; a little less than what it lends
    /// itself for.
    static constexpr Nanoseconds longestAppearance = std::chrono::seconds{350};
    /// For a radio that was lent to be back; longer is a fault of its own.
    static constexpr Nanoseconds radioPatience = std::chrono::seconds{15};
    static constexpr Nanoseconds litTime = std::chrono::seconds{20};
    static constexpr Nanoseconds awayTime = std::chrono::seconds{120};

    /// All must outlive it.
    struct World {
        CouplingRadio& radio;
        Scanner& scanner;
        Settings& settings;
        const Clock& clock;
        Scheduler& scheduler;
        /// A number of four hexadecimal digits, so that two computers in a room differ.
        std::function<std::uint16_t()> suffix;
        /// Makes a key called `name` of the identity that somebody pasted; why not. Empty where
        /// that is done elsewhere.
        std::function<std::optional<Failure>(const std::string& name, std::string_view pasted)>
            paste = {};
    };

    explicit Coupling(World world);
    /// Has the radio put everything back.
    ~Coupling() override;

    [[nodiscard]] const Observable<Step>& step() const { return step_; }
    [[nodiscard]] Kind kind() const { return kind_; }
    /// What a person sees of `step`, which may be the one that is being told.
    [[nodiscard]] Page page(const Step& step) const;

    void act(Action action);
    /// The answer to the first question; nothing at any other.
    void choose(Kind kind);
    /// What was pasted, where it was asked for. It is not kept.
    void paste(const std::string& name, std::string_view pasted);

private:
    void answered(bool yes);
    void again();
    void leave(Step last);
    void setFromHere();
    void takeLostTimeout();
    void begin(Confirmation confirmation);
    void beVisible(bool again);
    void bond();
    void fail(Ending ending, std::string why = {});
    void forgetVisitor();
    [[nodiscard]] bool isKey(const Visitor& visitor) const;
    void putBack(std::function<void()> next);
    void listenWhenItCan();
    void listenWhereItIsCarried();
    void listenFor(Nanoseconds duration, void (Coupling::*heard)(const Heard&));
    void radioChanged(CentralState state);
    void litHeard(const Heard& heard);
    void awayHeard(const Heard& heard);
    void makeKey(const Heard& heard);
    void judge(Audibility audibility, bool unheard = false);
    void set(Step next);
    /// `over` is called when nothing else has come within `limit`.
    void set(Step next, Nanoseconds limit, std::function<void()> over);
    [[nodiscard]] TimePoint in(Nanoseconds time) const { return world_.clock.now() + time; }

    void appears() override;
    void cannotAppear(const Trouble& trouble) override;
    void visitorCame(const Visitor& visitor) override;
    void acquaintanceCame(const Visitor& visitor) override;
    void visitorChanged(const Visitor& visitor) override;
    void visitorLeft() override;
    void codeCame(std::uint32_t code) override;
    void codeWithdrawn() override;
    void bonded(const Visitor& visitor) override;
    void refused(Refusal refusal, const std::string& why) override;
    void isGone() override;

    World world_;
    Observable<Step> step_{step::Choosing{}};
    Kind kind_ = Kind::iphone;
    Confirmation confirmation_ = Confirmation::code;
    std::string name_; ///< ours, as the phone lists it
    TimePoint visibleUntil_;
    std::optional<Visitor> visitor_; ///< with whom it bonds, or has bonded
    bool isOut_ = false;             ///< there is something to put back
    std::function<void()> afterwards_;
    std::optional<Listening> listening_;
    Subscription trial_;
    Timer over_;
    Timer asking_;
    Timer allOver_;
    Subscription radio_;
};

} // namespace wegslot::coupling
