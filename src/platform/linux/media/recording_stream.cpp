#include "platform/linux/media/recording_stream.h"

#include "platform/activity_detector.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace wegslot {
namespace {

constexpr auto ownApplicationId = "application.id";
constexpr auto portalId = "pipewire.access.portal.app_id";
constexpr auto processBinary = "application.process.binary";
constexpr auto applicationName = "application.name";

// The volume controls of the desktops show a level of every microphone while they are open.
constexpr std::array volumeControls{"org.gnome.VolumeControl", "org.PulseAudio.pavucontrol",
                                    "org.kde.plasma-pa", "org.kde.kmix"};

// The markers of a peak detecting stream: the first is PulseAudio's, the others PipeWire's.
constexpr auto peakResampler = "peaks";
constexpr std::array peakMarkers{"resample.peaks", "stream.monitor"};

std::string valueOf(const RecordingStream::Properties& properties, const char* name) {
    const auto found = properties.find(name);
    return found == properties.end() ? std::string() : found->second;
}

std::string told(const RecordingStream& stream, const char* name) {
    const auto own = valueOf(stream.properties, name);
    return own.empty() ? valueOf(stream.clientProperties, name) : own;
}

bool isLevelMeter(const RecordingStream& stream) {
    if (stream.resampleMethod == peakResampler) return true;
    const bool marked = std::ranges::any_of(peakMarkers, [&stream](const char* marker) {
        return valueOf(stream.properties, marker) == "true";
    });
    if (marked) return true;
    const auto id = told(stream, ownApplicationId);
    return std::ranges::find(volumeControls, id) != volumeControls.end();
}

} // namespace

bool isRecording(const RecordingStream& stream) {
    if (stream.corked || !stream.hasClient) return false;
    return stream.source == RecordingStream::Source::microphone && !isLevelMeter(stream);
}

std::string identifierOf(const RecordingStream& stream) {
    for (const char* const name : {ownApplicationId, portalId, processBinary, applicationName})
        if (auto value = told(stream, name); !value.empty()) return value;
    return {};
}

std::optional<std::string> firstUser(std::span<const RecordingStream> streams,
                                     const std::function<std::string(const std::string&)>& nameOf) {
    const RecordingStream* first = nullptr;
    for (const auto& stream : streams)
        if (isRecording(stream) && (first == nullptr || stream.index < first->index))
            first = &stream;
    if (first == nullptr) return std::nullopt;
    const auto identifier = identifierOf(*first);
    return identifier.empty() ? ActivityDetector::unnamedApplication : nameOf(identifier);
}

} // namespace wegslot
