#include "dbus/bus.h"

#include "base/system_error.h"
#include "dbus/bus_address.h"
#include "dbus/forgeries.h"
#include "dbus/writer.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cerrno>

namespace wegslot::dbus {
namespace {

using Listener = Bus::Listener;
constexpr auto driver = "org.freedesktop.DBus"; ///< the bus itself, which sends under no other name

using MessagePointer = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

Failure failure(const wegslot::Message& what, int error) {
    return Failure{wegslot::Message("%1: %2", {what, systemError(-error)})};
}

struct Append {
    Writer& writer;

    void operator()(bool value) const { writer.boolean(value); }
    void operator()(std::uint8_t value) const { writer.byte(value); }
    void operator()(std::int32_t value) const { writer.int32(value); }
    void operator()(std::uint32_t value) const { writer.uint32(value); }
    void operator()(std::int16_t value) const { writer.int16(value); }
    void operator()(const std::string& value) const { writer.text(value); }
    void operator()(const ObjectPath& path) const { writer.path(path.text); }
    void operator()(const FileDescriptor& file) const { writer.descriptor(file.number); }
    void operator()(const std::vector<std::string>& values) const {
        writer.array("s", [&values](Writer& list) {
            for (const std::string& value : values)
                list.text(value);
        });
    }
    void operator()(const Variant& variant) const {
        constexpr std::array signatures{"b", "y", "n", "s"};
        writer.variant(signatures.at(variant.value.index()),
                       [&variant](Writer& content) { std::visit(Append{content}, variant.value); });
    }
    void operator()(const Dictionary& dictionary) const {
        writer.array("{sv}", [&dictionary](Writer& entries) {
            for (const auto& [name, value] : dictionary)
                entries.entry("sv", [&name = name, &value = value](Writer& entry) {
                    entry.text(name);
                    Append{entry}(Variant{value});
                });
        });
    }
};

/// Null when the call cannot be formed: a name that is none, a text that is not UTF-8.
MessagePointer formed(sd_bus* bus, const Call& call) {
    sd_bus_message* message = nullptr;
    const int error =
        sd_bus_message_new_method_call(bus, &message, call.destination.c_str(), call.path.c_str(),
                                       call.interface.c_str(), call.member.c_str());
    MessagePointer owned(message, sd_bus_message_unref);
    if (error < 0) return MessagePointer{nullptr, sd_bus_message_unref};
    sd_bus_message_set_auto_start(message, call.autoStart ? 1 : 0);
    Writer writer(message);
    for (const Argument& argument : call.arguments)
        std::visit(Append{writer}, argument);
    if (!writer.isWhole()) return MessagePointer{nullptr, sd_bus_message_unref};
    return owned;
}

std::uint64_t limitOf(const Call& call) {
    return call.timeout == Call::noLimit ? UINT64_MAX
                                         : static_cast<std::uint64_t>(call.timeout.count());
}

int deliver(sd_bus_message* message, void* data, sd_bus_error*) {
    // A copy: the listener may end its own subscription while it runs.
    const auto listener = *static_cast<std::shared_ptr<Listener>*>(data);
    (*listener)(Message{message});
    return 0;
}

void destroyListener(void* data) {
    const std::unique_ptr<std::shared_ptr<Listener>> owned(
        static_cast<std::shared_ptr<Listener>*>(data));
}

/// As D-Bus writes match rules.
std::string ruleFor(const std::string& sender, const SignalMatch& match) {
    std::string rule = "type='signal',sender='" + sender + "'";
    const auto add = [&rule](const char* key, const std::string& value) {
        if (!value.empty()) rule += std::string(",") + key + "='" + value + "'";
    };
    add("interface", match.interface);
    add("member", match.member);
    add("path", match.path);
    add("path_namespace", match.pathNamespace);
    add("arg0", match.arg0);
    add("arg1", match.arg1);
    return rule;
}

/// Makes `slot` own `listener` (heap-allocated for the C library) and the handle own `slot`.
Subscription owning(sd_bus_slot* slot) {
    sd_bus_slot_set_destroy_callback(slot, destroyListener);
    return Subscription{[slot] { sd_bus_slot_unref(slot); }};
}

/// What the library opens by itself takes files, and cannot be told otherwise any more.
Result<std::unique_ptr<Bus>> opened(const wegslot::Message& what,
                                    const std::optional<std::string>& address, Bus::Files files,
                                    Forgeries& forgeries) {
    if (!address) return failure(what, -ENOMEDIUM);
    sd_bus* bus = nullptr;
    if (const int error = sd_bus_new(&bus); error < 0) return failure(what, error);
    sd_bus_set_address(bus, address->c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_negotiate_fds(bus, files == Bus::Files::allowed ? 1 : 0);
    const int error = sd_bus_start(bus);
    if (error >= 0) return std::make_unique<Bus>(bus, forgeries);
    sd_bus_unref(bus);
    return failure(what, error);
}

} // namespace

Result<std::unique_ptr<Bus>> Bus::openSystem(Forgeries& forgeries) {
    return opened(message("systeembus"), systemBusAddress(), Files::none, forgeries);
}

Result<std::unique_ptr<Bus>> Bus::openSession(Forgeries& forgeries, Files files) {
    return opened(message("sessiebus"), sessionBusAddress(), files, forgeries);
}

Bus::~Bus() {
    sd_bus_flush(bus_);
    sd_bus_close(bus_);
    sd_bus_unref(bus_);
}

Subscription Bus::call(const Call& call, Listener answer) {
    auto message = formed(bus_, call);
    // Whoever waits for an answer gets one in its turn, as for every other call: the bus's own, to
    // a call that it does not know.
    if (!message)
        message = formed(bus_, {.destination = driver,
                                .path = "/org/freedesktop/DBus",
                                .interface = driver,
                                .member = "CallThatCannotBeFormed"});
    if (!message) return {};
    auto listener =
        std::make_unique<std::shared_ptr<Listener>>(std::make_shared<Listener>(std::move(answer)));
    sd_bus_slot* slot = nullptr;
    const auto microseconds = limitOf(call);
    if (sd_bus_call_async(bus_, &slot, message.get(), deliver, listener.get(), microseconds) < 0)
        return {};
    static_cast<void>(listener.release());
    return owning(slot);
}

void Bus::ask(const Call& call, const Listener& answer) {
    // While the connection is still being made the library would wait for that without limit.
    if (sd_bus_is_ready(bus_) <= 0) return;
    const auto message = formed(bus_, call);
    if (!message) return;
    sd_bus_message* reply = nullptr;
    const auto microseconds = limitOf(call);
    const int error = sd_bus_call(bus_, message.get(), microseconds, nullptr, &reply);
    const MessagePointer owned(reply, sd_bus_message_unref);
    if (error >= 0) answer(Message{reply});
}

void Bus::send(const Call& call) {
    const auto message = formed(bus_, call);
    if (!message) return;
    sd_bus_message_set_expect_reply(message.get(), 0);
    sd_bus_send(bus_, message.get(), nullptr);
}

/// Whose signals count under a name.
struct Bus::Source {
    std::string owner; ///< empty while nobody is known to have the name
    Subscription following;
};

std::shared_ptr<const Bus::Source> Bus::source(const std::string& name) {
    std::erase_if(sources_, [](const auto& entry) { return entry.second.expired(); });
    if (const auto known = sources_.find(name); known != sources_.end())
        return known->second.lock();
    const auto made = std::make_shared<Source>();
    sources_[name] = made;
    const bool isUnique = name.starts_with(':') || name == driver;
    if (isUnique)
        made->owner = name;
    else
        made->following = followOwner(
            name, [held = std::weak_ptr(made)](const std::optional<std::string>& owner) {
                if (const auto alive = held.lock()) alive->owner = owner.value_or("");
            });
    return made;
}

Subscription Bus::onSignal(const std::string& sender, const SignalMatch& match, Listener listener) {
    // The bus goes by the sender in the rule for what is sent to everybody; what is sent to this
    // connection alone comes through whoever sent it, and the library knows unique names only.
    // The owner is asked for first: the answer is here before anything that the rule lets through.
    const auto from = source(sender);
    auto checked = [this, sender, from, listener = std::move(listener)](const Message& signal) {
        if (signal.sender() == from->owner) return listener(signal);
        // What everybody got is another source's, and meant for another rule.
        if (signal.isForUsAlone()) forgeries_.refused(*this, signal, sender);
    };
    auto owned =
        std::make_unique<std::shared_ptr<Listener>>(std::make_shared<Listener>(std::move(checked)));
    sd_bus_slot* slot = nullptr;
    const std::string rule = ruleFor(sender, match);
    if (sd_bus_add_match_async(bus_, &slot, rule.c_str(), deliver, nullptr, owned.get()) < 0)
        return {};
    static_cast<void>(owned.release());
    return owning(slot);
}

Subscription Bus::followOwner(const std::string& name,
                              std::function<void(const std::optional<std::string>&)> listener) {
    struct Following {
        std::function<void(const std::optional<std::string>&)> listener;
        Subscription changes;
        Subscription first;
    };
    const auto following = std::make_shared<Following>();
    following->listener = std::move(listener);
    const std::weak_ptr<Following> held = following;

    // The match first, so that no change falls between the answer and the signals.
    following->changes =
        onSignal(driver, {.interface = driver, .member = "NameOwnerChanged", .arg0 = name},
                 [held](const Message& message) {
                     Reader reader = message.read();
                     static_cast<void>(reader.text());
                     static_cast<void>(reader.text());
                     const std::string owner(reader.text().value_or(""));
                     const auto alive = held.lock();
                     if (alive)
                         alive->listener(owner.empty() ? std::nullopt : std::optional(owner));
                 });
    following->first =
        call({.destination = driver,
              .path = "/org/freedesktop/DBus",
              .interface = driver,
              .member = "GetNameOwner",
              .arguments = {name},
              .timeout = Call::noLimit}, // given up, whoever has the name would stay unheard
             [held](const Message& message) {
                 const auto owner = message.read().text();
                 const auto alive = held.lock();
                 if (!alive) return;
                 const bool owned = !message.error() && owner;
                 alive->listener(owned ? std::optional<std::string>(*owner) : std::nullopt);
             });
    return Subscription{[following] {
        following->changes.reset();
        following->first.reset();
    }};
}

std::string Bus::uniqueName() const {
    const char* name = nullptr;
    // While the connection is still being made the library would wait for that.
    if (sd_bus_is_ready(bus_) <= 0 || sd_bus_get_unique_name(bus_, &name) < 0) return {};
    return name;
}

int Bus::fd() const { return sd_bus_get_fd(bus_); }

short Bus::events() const {
    const int events = sd_bus_get_events(bus_);
    return static_cast<short>(events < 0 ? 0 : events);
}

std::optional<std::chrono::microseconds> Bus::deadline() const {
    std::uint64_t microseconds = 0;
    if (sd_bus_get_timeout(bus_, &microseconds) < 0 || microseconds == UINT64_MAX)
        return std::nullopt;
    return std::chrono::microseconds{static_cast<std::int64_t>(microseconds)};
}

int Bus::process(int most) {
    int handled = 0;
    while (handled < most && sd_bus_process(bus_, nullptr) > 0)
        ++handled;
    return handled;
}

bool Bus::isOpen() const { return sd_bus_is_open(bus_) > 0; }

} // namespace wegslot::dbus
