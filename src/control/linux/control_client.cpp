#include "control/linux/control_client.h"

#include "base/text.h"
#include "control/control_text.h"
#include "control/linux/activation.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace wegslot {
namespace {

std::string textOf(dbus::Reader& value) { return std::string(value.text().value_or("")); }

control::Key readKey(std::string_view id, dbus::Reader& fields) {
    control::Key key{.id = std::string(id), .name = {}, .state = {}, .rssi = {}, .threshold = {}};
    fields.properties([&key](std::string_view field, dbus::Reader& value) {
        if (field == "Name") key.name = textOf(value);
        if (field == "State") key.state = textOf(value);
        if (field == "Threshold") key.threshold = Dbm{value.real().value_or(0)};
        if (field != "Rssi") return;
        if (const auto rssi = value.real()) key.rssi = Dbm{*rssi};
    });
    return key;
}

control::Device readDevice(std::string_view id, dbus::Reader& fields) {
    control::Device device{.id = std::string(id), .name = {}, .kind = {}, .rssi = {}};
    fields.properties([&device](std::string_view field, dbus::Reader& value) {
        if (field == "Name") device.name = textOf(value);
        if (field == "Kind") device.kind = textOf(value);
        if (field == "ChangesAddress") device.changesAddress = value.boolean().value_or(false);
        if (field != "Rssi") return;
        if (const auto rssi = value.real()) device.rssi = Dbm{*rssi};
    });
    return device;
}

control::Nearby readNearbyFrom(dbus::Reader& answer) {
    control::Nearby nearby;
    nearby.radio = textOf(answer);
    nearby.includesOthers = answer.boolean().value_or(false);
    answer.interfaces([&nearby](std::string_view id, dbus::Reader& fields) {
        nearby.devices.push_back(readDevice(id, fields));
    });
    return nearby;
}

control::Reason readReason(dbus::Reader& value) {
    control::Reason reason;
    value.structure("sas", [&reason](dbus::Reader& fields) {
        reason.code = textOf(fields);
        reason.arguments = fields.texts();
    });
    return reason;
}

control::Status readStatusFrom(dbus::Reader& answer) {
    control::Status status;
    answer.properties([&status](std::string_view property, dbus::Reader& value) {
        if (property == "Phase") status.phase = textOf(value);
        if (property == "Text") status.text = textOf(value);
        if (property == "Reason") status.reason = readReason(value);
        if (property == "PausedUntil") status.pausedUntil = value.integer();
        if (property == "Keys")
            value.interfaces([&status](std::string_view id, dbus::Reader& fields) {
                status.keys.push_back(readKey(id, fields));
            });
    });
    if (status.pausedUntil == 0) status.pausedUntil.reset();
    return status;
}

} // namespace

// Each request, once it is known that somebody is there.
struct ControlClient::Ask {
    ControlClient& client;

    void operator()(const control::request::Status& request) const {
        // Listening first, so that no change can come between the two.
        if (request.follow) client.follow(request.json);
        client.readStatus([this_ = &client, request](const control::Status& status) {
            this_->output_.print(request.json ? control::statusJson(status)
                                              : control::statusText(status, this_->wallTime_));
            this_->statusIsTold_ = true;
            if (!request.follow) this_->end(EXIT_SUCCESS);
        });
    }
    void operator()(const control::request::Keys& request) const {
        client.readStatus([this_ = &client, request](const control::Status& status) {
            this_->output_.print(request.json ? control::keysJson(status)
                                              : control::keysText(status));
            this_->end(EXIT_SUCCESS);
        });
    }
    void operator()(const control::request::Devices& request) const { client.list(request.others); }
    void operator()(const control::request::Lock&) const { simply("Lock", {}, ""); }
    void operator()(const control::request::Pause& request) const {
        simply("Pause", {request.seconds}, "");
    }
    void operator()(const control::request::Resume&) const { simply("Resume", {}, ""); }
    void operator()(const control::request::UpdateNow&) const {
        simply("UpdateNow", {},
               translated("Wegslot draait al en zoekt nu naar een nieuwere versie"));
    }

    void operator()(const control::request::Couple&) const {
        simply("Couple", {}, translated("Wegslot draait al; koppel in het venster dat opengaat"));
    }

    /// Goes on until it is ended.
    void operator()(const control::request::Record& request) const {
        const auto file = request.open();
        if (!file) return client.fail({file.failure().message, EXIT_FAILURE});
        client.call(control::interfaceName, "Record",
                    {dbus::FileDescriptor{*file}, request.anonymous},
                    [this_ = &client](dbus::Reader&) {
                        this_->output_.print(translated("Opname loopt; stop met Ctrl-C"));
                    });
        close(*file);
    }

    void operator()(const control::request::AddIdentity& request) const {
        const auto id = request.keep();
        if (!id) return client.fail({id.failure().message, EXIT_FAILURE});
        client.takeBack_ = request.takeBack;
        client.call(control::interfaceName, "ReadIdentities", {},
                    [this_ = &client, id = *id](dbus::Reader&) {
                        this_->takeBack_ = {};
                        this_->awaitIdentity(id, this_->clock_.now() + control::identityPatience);
                    });
    }

    /// Done when it is taken; `said` then, if anything.
    void simply(const char* member, std::vector<dbus::Argument> arguments,
                const std::string& said) const {
        client.call(control::interfaceName, member, std::move(arguments),
                    [this_ = &client, said](dbus::Reader&) {
                        if (!said.empty()) this_->output_.print(said);
                        this_->end(EXIT_SUCCESS);
                    });
    }
};

ControlClient::ControlClient(dbus::Bus& bus, const Clock& clock, ClockTime wallTime,
                             Scheduler& scheduler, control::Request request, Output output,
                             Failed absence)
    : bus_(bus),
      clock_(clock),
      wallTime_(std::move(wallTime)),
      scheduler_(scheduler),
      request_(std::move(request)),
      output_(std::move(output)),
      absence_(std::move(absence)) {
    owners_ =
        bus_.followOwner(Activation::name, [this](const auto& owner) { ownerChanged(owner); });
}

void ControlClient::ownerChanged(const std::optional<std::string>& owner) {
    if (owner == owner_) return; // who came while we asked is told of twice
    if (owner && owner_.empty()) {
        owner_ = *owner;
        return std::visit(Ask{*this}, request_);
    }
    fail(owner_.empty() ? absence_ : Failed{message("Wegslot is gestopt"), notRunning});
}

void ControlClient::call(const char* interface, const char* member,
                         std::vector<dbus::Argument> arguments,
                         std::function<void(dbus::Reader&)> done) {
    calling_ = bus_.call({.destination = owner_,
                          .path = Activation::path,
                          .interface = interface,
                          .member = member,
                          .arguments = std::move(arguments),
                          .timeout = patience},
                         [this, done = std::move(done)](const dbus::Message& answer) {
                             if (answer.error())
                                 return fail({message("Wegslot antwoordt met een fout: %1",
                                                      {asItStands(printable(answer.errorText()))}),
                                              EXIT_FAILURE});
                             auto reader = answer.read();
                             done(reader);
                         });
}

void ControlClient::readStatus(std::function<void(const control::Status&)> done) {
    call("org.freedesktop.DBus.Properties", "GetAll", {std::string(control::interfaceName)},
         [done = std::move(done)](dbus::Reader& answer) { done(readStatusFrom(answer)); });
}

void ControlClient::follow(bool json) {
    // A change of phase is told of by its properties and then by a signal of its own, which alone
    // is what older ones send.
    const dbus::SignalMatch properties{.interface = "org.freedesktop.DBus.Properties",
                                       .member = "PropertiesChanged",
                                       .path = Activation::path};
    told_ = bus_.onSignal(owner_, properties, [this](const dbus::Message& signal) {
        auto reader = signal.read();
        if (reader.text() == control::interfaceName) next_ = readStatusFrom(reader);
    });
    const dbus::SignalMatch changes{
        .interface = control::interfaceName, .member = "PhaseChanged", .path = Activation::path};
    changes_ = bus_.onSignal(owner_, changes, [this, json](const dbus::Message& signal) {
        const control::Status told = std::exchange(next_, {});
        if (!statusIsTold_) return; // what came before the answer is in it
        auto reader = signal.read();
        control::Change change;
        for (std::string* const field : {&change.phase, &change.text, &change.why})
            *field = textOf(reader);
        change.reason = told.reason;
        change.pausedUntil = told.pausedUntil;
        const TimePoint now = clock_.wallClock();
        constexpr std::size_t date = 11; // "2026-11-15 "
        const auto instant =
            std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count();
        output_.print(json ? control::changeJson(change, instant)
                           : control::changeText(change, localText(now).substr(date), wallTime_));
    });
}

void ControlClient::list(bool others) {
    call(control::interfaceName, "Devices", {others}, [this, others](dbus::Reader& answer) {
        const control::Nearby nearby = readNearbyFrom(answer);
        if (!std::exchange(listIsExplained_, true))
            output_.complain(
                others && !nearby.includesOthers
                    ? translated("Wegslot draait al: dit is wat het hoort; andere apparaten met "
                                 "\"Toon ook andere Bluetooth-apparaten\" in het paneel")
                    : translated("Wegslot draait al: dit is wat het hoort"));
        output_.print("");
        for (const std::string& line : control::nearbyLines(nearby))
            output_.print(line);
        again_ = scheduler_.after(std::chrono::seconds{1}, [this, others] { list(others); });
    });
}

/// Says what the key is called and set to once, and then whether it is heard.
void ControlClient::awaitIdentity(const Uuid& id, TimePoint until) {
    readStatus([this, id, until](const control::Status& status) {
        const auto key = std::ranges::find(status.keys, id.text(), &control::Key::id);
        if (key == status.keys.end())
            return fail({message("Wegslot heeft er geen sleutel van gemaakt"), EXIT_FAILURE});
        if (!std::exchange(identityIsTold_, true))
            output_.print(control::identityAddedText(key->name, key->threshold));
        if (!key->rssi && clock_.now() < until) {
            again_ = scheduler_.after(std::chrono::seconds{1},
                                      [this, id, until] { awaitIdentity(id, until); });
            return;
        }
        output_.print(key->rssi ? control::identityHeardText(*key->rssi)
                                : control::identityUnheardText(key->name));
        end(EXIT_SUCCESS);
    });
}

void ControlClient::fail(const Failed& failed) {
    if (takeBack_) std::exchange(takeBack_, {})();
    output_.complain(failed.message.translated());
    end(failed.status);
}

void ControlClient::end(int status) {
    owners_.reset();
    told_.reset();
    changes_.reset();
    again_.reset();
    const auto act = output_.end; // a copy: it may end this
    act(status);
}

} // namespace wegslot
