// Which application records from a microphone, judged from the streams that a sound server lists.
// Knows no server: an adapter fills in the values.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace wegslot {

struct RecordingStream {
    enum class Source {
        unknown,    ///< none, or one that went away meanwhile: nothing is heard through it
        microphone, ///< or anything else that is no monitor
        monitor,    ///< what a loudspeaker plays
    };

    /// What the program said of itself, by the sound server's names.
    using Properties = std::map<std::string, std::string>;

    std::uint32_t index = 0;
    Source source = Source::unknown;
    bool corked = false;   ///< paused by the application itself
    bool hasClient = true; ///< the server's own plumbing has none
    std::string resampleMethod = {};
    Properties properties = {};
    Properties clientProperties = {};
};

/// Whether somebody listens: a muted stream counts, for a call goes on while one is muted; a level
/// meter does not.
[[nodiscard]] bool isRecording(const RecordingStream& stream);

/// The most telling of what the stream says of its application; empty when it says nothing.
[[nodiscard]] std::string identifierOf(const RecordingStream& stream);

/// The display name, by `nameOf`, of the application that has recorded longest: servers count
/// their streams upwards. Nothing when none records.
[[nodiscard]] std::optional<std::string>
firstUser(std::span<const RecordingStream> streams,
          const std::function<std::string(const std::string& identifier)>& nameOf);

} // namespace wegslot
