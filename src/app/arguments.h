// What the command line asks for.
#pragma once

#include "base/result.h"
#include "base/uuid.h"
#include "control/request.h"
#include "coupling/step.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace wegslot {

namespace command {

/// A recording of what reaches Wegslot, for wegslot-replay.
struct Recording {
    std::string path;
    bool anonymous = false; ///< without names and ids
    bool force = false;     ///< over what is in the file
};

/// The application itself.
struct Run {
    bool updateNow = false;             ///< look for a release first, and install it
    std::optional<Recording> recording; ///< from the start on
};
struct Demo {};
struct Help {};
struct Version {};
/// Print the nearby devices, others than the maker's too if asked.
struct Devices {
    bool others = false;
};
struct Keys {};
/// Say what works on this machine.
struct Check {
    bool lock = false;
    bool json = false;
};
struct AddKey {
    Uuid id;
};
struct RemoveKey {
    Uuid id;
};
/// Make a key of the identity that standard input holds.
struct AddIdentity {
    std::string name;           ///< the user's for the device
    std::optional<Uuid> sameAs; ///< what the device is when this computer is bonded with it
};
/// Couple a phone: step by step here, or in the window of the Wegslot that runs.
struct Couple {
    std::optional<coupling::Kind> kind; ///< what it is, as far as that is said
};
/// Explain the last decisions, or the one nearest to a time, from what is kept.
struct Why {
    std::string at; ///< as it was typed; empty for the last
    std::size_t last = 1;
    bool json = false;
};
/// Print what is kept, or forget it.
struct History {
    std::string since; ///< as it was typed; empty for the last day
    bool json = false;
    bool csv = false;
    bool clear = false;
};
/// The window over what is kept.
struct Insight {};
/// Ask a Wegslot that runs.
struct Ask {
    control::Request request;
};
/// Write a picture of the panel to a file, and end.
struct Snapshot {
    std::string path;
    bool tall = false;
};

} // namespace command

using Command =
    std::variant<command::Run, command::Demo, command::Help, command::Version, command::Devices,
                 command::Keys, command::Check, command::AddKey, command::RemoveKey,
                 command::AddIdentity, command::Couple, command::Why, command::History,
                 command::Insight, command::Ask, command::Snapshot>;

/// Reads the words after the program's name. A failure is one line for the user.
Result<Command> parseArguments(const std::vector<std::string_view>& typed);

/// What `--help` prints.
[[nodiscard]] std::string helpText();

} // namespace wegslot
