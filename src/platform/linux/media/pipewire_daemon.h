// The PipeWire library, driven by whoever owns it, and one connection to the daemon with the
// cameras that the daemon has told of. Kept apart from the source that asks: a connection ends with
// its daemon, the library does not.
#pragma once

#include <pipewire/pipewire.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>

namespace wegslot::pipewire {

class Library {
public:
    Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    /// False when a part of it is not installed; nothing else may be called then.
    [[nodiscard]] bool isUsable() const { return usable_; }

    [[nodiscard]] pw_context* context() const { return context_; }

    /// Readable when there is something to handle.
    [[nodiscard]] int descriptor() const;

    /// Handles what has come, else what comes first within the time. False when that was nothing.
    bool turn(std::chrono::milliseconds patience);

private:
    pw_loop* loop_ = nullptr;
    pw_context* context_ = nullptr;
    bool usable_ = false;
};

class Daemon {
public:
    /// Null when there is none. `library` must outlive it.
    [[nodiscard]] static std::unique_ptr<Daemon> find(Library& library);

    Daemon(Library& library, pw_core* core);
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;
    ~Daemon();

    /// Whether it has gone; never comes back.
    [[nodiscard]] bool isLost() const { return lost_; }

    /// Waits until all that happened before this call is known; false when the daemon does not
    /// answer within `patience`, and at once while an earlier question is unanswered.
    [[nodiscard]] bool answers(std::chrono::milliseconds patience);

    /// Whether any camera gives pictures to somebody, as far as is known.
    [[nodiscard]] bool cameraRuns() const;

private:
    struct Node;

    static void onDone(void* self, std::uint32_t id, int sequence);
    static void onError(void* self, std::uint32_t id, int sequence, int result, const char* text);
    static void onGlobal(void* self, std::uint32_t id, std::uint32_t permissions, const char* type,
                         std::uint32_t version, const spa_dict* properties);
    static void onGlobalRemoved(void* self, std::uint32_t id);

    static const pw_core_events coreEvents;
    static const pw_registry_events registryEvents;

    Library& library_;
    pw_core* core_;
    pw_registry* registry_;
    spa_hook coreListener_{};
    spa_hook registryListener_{};
    std::map<std::uint32_t, std::unique_ptr<Node>> nodes_;
    int asked_ = 0;
    int answered_ = 0;
    bool complete_ =
        true; ///< no node was met since the last question that has yet to tell of itself
    bool lost_ = false;
};

} // namespace wegslot::pipewire
