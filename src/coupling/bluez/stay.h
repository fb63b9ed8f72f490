// One time that this computer appears: on a connection to the bus of its own, from asking what
// there is to putting everything back. Leaving the bus ends all of it at BlueZ, however this ends.
#pragma once

#include "coupling/bluez/heart_rate_service.h"
#include "coupling/bluez/pairable.h"
#include "coupling/bluez/pairing_agent.h"
#include "coupling/bluez/peripheral_advertisement.h"
#include "coupling/bluez/removal.h"
#include "coupling/bluez/teller.h"
#include "coupling/bluez/visits.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::coupling {

/// What all stays need; it outlives them.
struct StayWorld {
    dbus::Connection::Open open;
    dbus::Connection::Attach attach;
    Scheduler& scheduler;
    bluez::Links& links;
    const PairableNote& note;
    Teller tell = {};
};

class Stay final : private bluez::WatchListener, private AgentListener {
public:
    /// A bluetoothd that is well says in a second what there is.
    static constexpr Nanoseconds patience = std::chrono::seconds{10};

    /// Our own scan ends within a second. Another program's may go on for ever, and then this
    /// computer appears beside it.
    static constexpr Nanoseconds scanPatience = std::chrono::seconds{3};

    /// What is put back is put back in milliseconds; leaving the bus does most of it anyway.
    static constexpr std::chrono::microseconds farewell = std::chrono::seconds{5};

    /// A bond takes seconds, and as long as a person needs to say yes; BlueZ waits as long for a
    /// person.
    static constexpr std::chrono::microseconds bonding = std::chrono::seconds{60};

    /// Begins at once. `over` is called from the loop when everything has been put back.
    Stay(const StayWorld& world, std::string name, Confirmation confirmation,
         std::function<void()> over);
    ~Stay() override;

    void askForBond();
    void answer(bool same);
    void forget();
    /// What has BlueZ forget the visitor that has bonded; nothing while there is none.
    [[nodiscard]] std::optional<dbus::Call> removalOfVisitor() const;
    /// Puts everything back, once.
    void leave();

private:
    enum class Stage {
        looking,   ///< for a daemon, an adapter and silence
        preparing, ///< one call after another
        appearing,
        leaving,
    };

    /// A call of the preparation, and what follows it.
    struct Step {
        dbus::Call call;
        std::function<void()> before = {};
    };

    void surroundingsChanged() override;
    void deviceReported(std::string_view path, const bluez::DeviceNews& news) override;
    void deviceRemoved(std::string_view path, const Uuid& id) override;
    void linkEnded(std::string_view, std::string_view) override {}
    void gattChanged() override {}

    [[nodiscard]] bool mayBond(std::string_view path) const override {
        return visits_ && visits_->mayBond(path);
    }
    void codeAsked(std::uint32_t code) override;
    void codeDropped() override;
    void turnedDown(const std::string& path) override;

    void busChanged(dbus::Bus* bus);
    void look();
    [[nodiscard]] const bluez::Adapter* adapter() const;
    [[nodiscard]] std::optional<Obstacle> obstacleNow() const;
    void prepare();
    void next();
    void appear();
    void released();
    void fail(const Trouble& trouble);
    void putBack(dbus::Call call);
    void arrived();
    void putPairableBack();
    void finish();
    [[nodiscard]] dbus::Call callOf(const std::string& path, const std::string& interface,
                                    const std::string& member,
                                    std::vector<dbus::Argument> arguments) const;
    [[nodiscard]] bool isDaemon(const dbus::Message& call);

    const StayWorld& world_;
    std::string name_;
    Confirmation confirmation_;
    std::function<void()> over_;
    AddressResolver nobody_;
    dbus::Connection connection_;
    dbus::Bus* bus_ = nullptr;
    std::unique_ptr<bluez::ObjectWatch> watch_;
    std::unique_ptr<Visits> visits_;
    Stage stage_ = Stage::looking;
    std::optional<std::string> owner_; ///< of bluetoothd's name
    std::string adapter_;              ///< its path
    std::string address_;              ///< its own
    bool isScanOthers_ = false;        ///< that goes on
    std::optional<bool> wasPairable_;  ///< from `prepare` on
    bool isReleased_ = false;
    bool toldStranger_ = false;
    bool toldTurnedDown_ = false;
    std::vector<Step> steps_; ///< the last one first
    std::unique_ptr<PairingAgent> agent_;
    std::unique_ptr<HeartRateService> service_;
    std::unique_ptr<PeripheralAdvertisement> advertisement_;
    std::vector<std::unique_ptr<Removal>> removals_;
    std::size_t awaited_ = 0; ///< ends of removals, answers to what is put back
    std::vector<Subscription> farewells_;
    Subscription step_;
    Subscription bond_;
    Subscription ownership_;
    Timer turn_;
    Timer limit_;
    Timer silence_; ///< waited for
    Subscription connected_;
};

} // namespace wegslot::coupling
