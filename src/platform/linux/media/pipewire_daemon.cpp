#include "platform/linux/media/pipewire_daemon.h"

#include "platform/linux/media/pipewire_calls.h"

#include <pipewire/impl-module.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>

namespace wegslot::pipewire {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::string_view cameraRole = "Camera";
constexpr std::string_view videoSource = "Video/Source";

std::string_view valueOf(const spa_dict* properties, const char* name) {
    const char* const value = properties == nullptr ? nullptr : spa_dict_lookup(properties, name);
    return value == nullptr ? std::string_view() : value;
}

/// What the registry tells is enough to know what is no camera.
bool mayBeCamera(const spa_dict* properties) {
    return valueOf(properties, PW_KEY_MEDIA_ROLE) == cameraRole ||
           valueOf(properties, PW_KEY_MEDIA_CLASS) == videoSource;
}

/// A recording of the screen is a source of video, too, and no camera.
bool isCamera(const spa_dict* properties) {
    if (valueOf(properties, PW_KEY_MEDIA_ROLE) == cameraRole) return true;
    const auto driver = valueOf(properties, PW_KEY_DEVICE_API);
    return valueOf(properties, PW_KEY_MEDIA_CLASS) == videoSource &&
           (driver == "v4l2" || driver == "libcamera");
}

} // namespace

Library::Library() {
    pw_init(nullptr, nullptr);
    // A daemon that is not there is nothing to print.
    if (std::getenv("PIPEWIRE_DEBUG") == nullptr) pw_log_set_level(SPA_LOG_LEVEL_NONE);
    loop_ = pw_loop_new(nullptr);
    if (loop_ == nullptr) return;
    // Without the configuration file for clients: its modules are for those that stream.
    pw_properties* const properties =
        pw_properties_new(PW_KEY_CONFIG_NAME, "null", PW_KEY_APP_NAME, "Wegslot", nullptr);
    context_ = pw_context_new(loop_, properties, 0);
    if (context_ == nullptr) return;
    usable_ = pw_context_load_module(context_, "libpipewire-module-protocol-native", nullptr,
                                     nullptr) != nullptr;
}

Library::~Library() {
    if (context_ != nullptr) pw_context_destroy(context_);
    if (loop_ != nullptr) pw_loop_destroy(loop_);
    pw_deinit();
}

int Library::descriptor() const { return descriptorOf(loop_); }

bool Library::turn(std::chrono::milliseconds patience) {
    return pipewire::turn(loop_, static_cast<int>(patience.count())) > 0;
}

struct Daemon::Node {
    explicit Node(void* bound) : proxy(static_cast<pw_proxy*>(bound)) {
        static constexpr pw_node_events events{.version = PW_VERSION_NODE_EVENTS, .info = onInfo};
        listen(static_cast<pw_node*>(bound), listener, events, this);
    }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() {
        spa_hook_remove(&listener);
        pw_proxy_destroy(proxy);
    }

    static void onInfo(void* self, const pw_node_info* info) {
        Node& node = *static_cast<Node*>(self);
        // A message tells what has changed and leaves the rest out.
        if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0)
            node.camera = isCamera(info->props);
        if ((info->change_mask & PW_NODE_CHANGE_MASK_STATE) != 0)
            node.running = info->state == PW_NODE_STATE_RUNNING;
    }

    pw_proxy* proxy;
    spa_hook listener{};
    bool camera = false;
    bool running = false;
};

const pw_core_events Daemon::coreEvents{
    .version = PW_VERSION_CORE_EVENTS, .done = onDone, .error = onError};

const pw_registry_events Daemon::registryEvents{
    .version = PW_VERSION_REGISTRY_EVENTS, .global = onGlobal, .global_remove = onGlobalRemoved};

std::unique_ptr<Daemon> Daemon::find(Library& library) {
    pw_core* const core = pw_context_connect(library.context(), nullptr, 0);
    return core == nullptr ? nullptr : std::make_unique<Daemon>(library, core);
}

Daemon::Daemon(Library& library, pw_core* core)
    : library_(library),
      core_(core),
      registry_(pw_core_get_registry(core, PW_VERSION_REGISTRY, 0)),
      lost_(registry_ == nullptr) {
    listen(core_, coreListener_, coreEvents, this);
    if (registry_ != nullptr) listen(registry_, registryListener_, registryEvents, this);
}

Daemon::~Daemon() {
    nodes_.clear();
    if (registry_ != nullptr) {
        spa_hook_remove(&registryListener_);
        pw_proxy_destroy(static_cast<pw_proxy*>(static_cast<void*>(registry_)));
    }
    spa_hook_remove(&coreListener_);
    pw_core_disconnect(core_);
}

bool Daemon::answers(std::chrono::milliseconds patience) {
    const auto deadline = SteadyClock::now() + patience;
    while (!lost_ && library_.turn(std::chrono::milliseconds{0}) && SteadyClock::now() < deadline) {
    }
    if (lost_ || asked_ != answered_) return false; // it hangs, and was waited for before
    do {
        complete_ = true;
        asked_ = sync(core_);
        while (asked_ != answered_) {
            const auto left = deadline - SteadyClock::now();
            if (left <= SteadyClock::duration::zero()) return false;
            library_.turn(std::chrono::ceil<std::chrono::milliseconds>(left));
            if (lost_) return false;
        }
    } while (!complete_);
    return true;
}

bool Daemon::cameraRuns() const {
    return std::ranges::any_of(
        nodes_, [](const auto& node) { return node.second->camera && node.second->running; });
}

void Daemon::onDone(void* self, std::uint32_t id, int sequence) {
    if (id == PW_ID_CORE) static_cast<Daemon*>(self)->answered_ = sequence;
}

void Daemon::onError(void* self, std::uint32_t id, int, int result, const char*) {
    // Others tell that some question came too late, for a node that had gone.
    const bool connection = result == -EPIPE || result == -ECONNRESET;
    if (id == PW_ID_CORE && connection) static_cast<Daemon*>(self)->lost_ = true;
}

void Daemon::onGlobal(void* self, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                      const spa_dict* properties) {
    Daemon& daemon = *static_cast<Daemon*>(self);
    if (std::string_view(type) != PW_TYPE_INTERFACE_Node || !mayBeCamera(properties)) return;
    void* const bound = pw_registry_bind(daemon.registry_, id, type, PW_VERSION_NODE, 0);
    if (bound == nullptr) return;
    daemon.nodes_[id] = std::make_unique<Node>(bound);
    daemon.complete_ = false;
}

void Daemon::onGlobalRemoved(void* self, std::uint32_t id) {
    static_cast<Daemon*>(self)->nodes_.erase(id);
}

} // namespace wegslot::pipewire
