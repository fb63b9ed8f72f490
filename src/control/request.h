// What one Wegslot can ask of another that is already running, and how the command line spells it.
#pragma once

#include "base/result.h"
#include "base/uuid.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <variant>
#include <vector>

namespace wegslot::control {

namespace request {

struct Status {
    bool json = false;
    bool follow = false; ///< go on with each change of phase
};
struct Keys {
    bool json = false;
};
/// Tell each second what is nearby, until it is ended.
struct Devices {
    bool others = false; ///< of other makers too
};
struct Lock {};
struct Pause {
    std::uint32_t seconds; ///< 1 to `longestPause`
};
struct Resume {};
/// Look for a newer release, and install it.
struct UpdateNow {};
/// Open the window that couples a device.
struct Couple {};
/// Make a key of an identity that was added to where they are kept.
struct AddIdentity {
    std::function<Result<Uuid>()> keep; ///< adds it, once somebody is there to ask; the key's id
    std::function<void()> takeBack;     ///< where it did not become a key
};
/// Record into a file, for as long as whoever asks is there.
struct Record {
    std::function<Result<int>()> open; ///< gives a descriptor, once somebody is there to ask
    bool anonymous = false;
};

} // namespace request

using Request = std::variant<request::Status, request::Keys, request::Devices, request::Lock,
                             request::Pause, request::Resume, request::UpdateNow, request::Couple,
                             request::AddIdentity, request::Record>;

/// Whether `word` is the first of a request.
[[nodiscard]] bool isRequest(std::string_view word);

/// Reads a request: `words` begins with its word. A failure is one line for the user.
[[nodiscard]] Result<Request> parseRequest(const std::vector<std::string_view>& words);

} // namespace wegslot::control
