// Functions for those calls of the PipeWire library that are macros in its headers: they expand to
// C that the compilers' warnings are not made for. For the PipeWire sources only.
#pragma once

#include <pipewire/pipewire.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wpedantic"

namespace wegslot::pipewire {

inline void listen(pw_core* core, spa_hook& hook, const pw_core_events& events, void* self) {
    pw_core_add_listener(core, &hook, &events, self);
}

inline void listen(pw_registry* registry, spa_hook& hook, const pw_registry_events& events,
                   void* self) {
    pw_registry_add_listener(registry, &hook, &events, self);
}

inline void listen(pw_node* node, spa_hook& hook, const pw_node_events& events, void* self) {
    pw_node_add_listener(node, &hook, &events, self);
}

/// The daemon answers when it has answered all before; with the number that is returned.
inline int sync(pw_core* core) { return pw_core_sync(core, PW_ID_CORE, 0); }

/// Readable when `turn` has something to do.
inline int descriptorOf(pw_loop* loop) { return pw_loop_get_fd(loop); }

/// Handles what has come, else what comes first within the time; how much that was, below 0 when
/// the waiting failed.
inline int turn(pw_loop* loop, int milliseconds) {
    pw_loop_enter(loop);
    const int handled = pw_loop_iterate(loop, milliseconds);
    pw_loop_leave(loop);
    return handled;
}

} // namespace wegslot::pipewire

#pragma GCC diagnostic pop
