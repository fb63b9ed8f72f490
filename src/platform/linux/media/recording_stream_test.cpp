#include "platform/linux/media/recording_stream.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot;

namespace {

RecordingStream recording(std::uint32_t index, const std::string& name) {
    return {.index = index,
            .source = RecordingStream::Source::microphone,
            .properties = {{"application.name", name}}};
}

std::optional<std::string> user(const std::vector<RecordingStream>& streams) {
    return firstUser(streams, [](const std::string& id) { return "<" + id + ">"; });
}

} // namespace

TEST(RecordingStream, WithoutStreamsNobodyRecords) { EXPECT_EQ(user({}), std::nullopt); }

TEST(RecordingStream, TheOneStreamNamesTheUserByItsDisplayName) {
    EXPECT_EQ(user({recording(7, "praat")}), "<praat>");
}

TEST(RecordingStream, TheLowestIndexIsFirstInWhateverOrderTheyAreListed) {
    EXPECT_EQ(user({recording(9, "nine"), recording(3, "three"), recording(4, "four")}), "<three>");
}

TEST(RecordingStream, OneThatDoesNotCountLeavesTheNextAsTheFirst) {
    auto corked = recording(1, "corked");
    corked.corked = true;
    EXPECT_EQ(user({corked, recording(2, "two")}), "<two>");
}

TEST(RecordingStream, CorkedDoesNotRecord) {
    auto stream = recording(1, "a");
    EXPECT_TRUE(isRecording(stream));
    stream.corked = true;
    EXPECT_FALSE(isRecording(stream));
}

TEST(RecordingStream, WithoutAClientItIsThePlumbingOfTheServer) {
    auto stream = recording(1, "a");
    stream.hasClient = false;
    EXPECT_FALSE(isRecording(stream));
}

TEST(RecordingStream, OnlyAMicrophoneCountsAsTheSource) {
    auto stream = recording(1, "a");
    stream.source = RecordingStream::Source::monitor;
    EXPECT_FALSE(isRecording(stream));
    stream.source = RecordingStream::Source::unknown;
    EXPECT_FALSE(isRecording(stream));
}

TEST(RecordingStream, APeakResamplerIsALevelMeter) {
    auto stream = recording(1, "a");
    stream.resampleMethod = "peaks";
    EXPECT_FALSE(isRecording(stream));
    stream.resampleMethod = "speex-float-1";
    EXPECT_TRUE(isRecording(stream));
}

TEST(RecordingStream, EitherMarkerOfPeaksMakesItALevelMeter) {
    for (const char* const marker : {"resample.peaks", "stream.monitor"}) {
        auto stream = recording(1, "a");
        stream.properties[marker] = "true";
        EXPECT_FALSE(isRecording(stream)) << marker;
        stream.properties[marker] = "false";
        EXPECT_TRUE(isRecording(stream)) << marker;
    }
}

TEST(RecordingStream, TheVolumeControlsOfTheDesktopsAreLevelMeters) {
    for (const char* const id : {"org.gnome.VolumeControl", "org.PulseAudio.pavucontrol",
                                 "org.kde.plasma-pa", "org.kde.kmix"}) {
        auto stream = recording(1, "a");
        stream.properties["application.id"] = id;
        EXPECT_FALSE(isRecording(stream)) << id;
        stream.properties.erase("application.id");
        stream.clientProperties["application.id"] = id;
        EXPECT_FALSE(isRecording(stream)) << id;
    }
}

TEST(RecordingStream, AnotherApplicationWithAnIdRecords) {
    auto stream = recording(1, "a");
    stream.properties["application.id"] = "org.gnome.VolumeControl2";
    EXPECT_TRUE(isRecording(stream));
}

TEST(RecordingStream, TheIdentifierIsTheMostTellingPropertyOfStreamThenClient) {
    RecordingStream stream;
    EXPECT_EQ(identifierOf(stream), "");
    stream.clientProperties["application.name"] = "client's name";
    EXPECT_EQ(identifierOf(stream), "client's name");
    stream.properties["application.name"] = "name";
    EXPECT_EQ(identifierOf(stream), "name");
    stream.clientProperties["application.process.binary"] = "client-binary";
    EXPECT_EQ(identifierOf(stream), "client-binary");
    stream.properties["application.process.binary"] = "binary";
    EXPECT_EQ(identifierOf(stream), "binary");
    stream.clientProperties["pipewire.access.portal.app_id"] = "org.client.Portal";
    EXPECT_EQ(identifierOf(stream), "org.client.Portal");
    stream.properties["pipewire.access.portal.app_id"] = "org.stream.Portal";
    EXPECT_EQ(identifierOf(stream), "org.stream.Portal");
    stream.clientProperties["application.id"] = "org.client.App";
    EXPECT_EQ(identifierOf(stream), "org.client.App");
    stream.properties["application.id"] = "org.stream.App";
    EXPECT_EQ(identifierOf(stream), "org.stream.App");
}

TEST(RecordingStream, AnEmptyPropertySaysNothing) {
    RecordingStream stream;
    stream.properties["application.id"] = "";
    stream.clientProperties["application.id"] = "";
    stream.properties["application.process.binary"] = "binary";
    EXPECT_EQ(identifierOf(stream), "binary");
}

TEST(RecordingStream, OneThatSaysNothingIsSomeApplicationAndNotLookedUp) {
    auto stream = recording(1, "");
    EXPECT_EQ(user({stream}), "een app");
}
