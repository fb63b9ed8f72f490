// What holds for every setting there is, whatever is added: each survives a recording, and a user
// who wants to type it finds it in the manual.

#include "base/text.h"
#include "model/remembered.h"
#include "recording/recorder.h"
#include "tests/support/world.h"
#include "trace/reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

bool another(bool value) { return !value; }

double another(double value) { return value + 1; }

Seconds another(Seconds value) { return value + Seconds{1.5}; }

LockRule another(LockRule rule) {
    return rule == LockRule::allAway ? LockRule::anyAway : LockRule::allAway;
}

std::vector<KeyDevice> another(std::vector<KeyDevice> keys) {
    keys.push_back(keyNamed("Sleutel", 1 + static_cast<unsigned>(keys.size())));
    return keys;
}

KeyRows another(KeyRows rows) {
    rows.emplace(numbered(static_cast<unsigned>(rows.size())), static_cast<int>(rows.size()) + 1);
    return rows;
}

/// As a person types it.
struct Typed {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(double value) const { return decimal(value); }
    std::string operator()(const std::string& value) const { return "\"" + value + "\""; }
    std::string operator()(const Data& value) const { return value.bytes; }
};

/// The first two columns of a manual's table of preferences, row by row.
std::vector<std::string> rowsOf(const std::string& page, const std::string& heading) {
    std::ifstream manual(std::string(WEGSLOT_MANUALS) + "/" + page);
    std::vector<std::string> rows;
    bool isInTable = false;
    for (std::string line; std::getline(manual, line);) {
        if (line.starts_with("| " + heading + " |")) isInTable = true;
        if (line.empty()) isInTable = false;
        if (isInTable && line.starts_with("| `"))
            rows.push_back(line.substr(0, line.find(" |", line.find(" | ") + 3)));
    }
    return rows;
}

/// What a replay's settings become by the settings that `lines` tell of.
Preferences replayed(const std::vector<std::string>& lines) {
    MemoryStore store;
    Settings settings(store);
    TraceReader reader;
    for (const std::string& line : lines) {
        const auto read = reader.read(std::string_view(line).substr(0, line.size() - 1));
        EXPECT_TRUE(read) << line;
        const auto* const change = std::get_if<trace::SettingsChange>(&read->event);
        if (change == nullptr) continue;
        settings.assign(change->value);
    }
    return store.values();
}

struct EverySetting : testing::Test {
    World world;
    std::vector<std::string> lines;
    std::optional<Recorder> recorder;

    void record() {
        AppModel& model = world.model.emplace(world.surroundings());
        recorder.emplace(model, world.platform.ports, [] { return Uuid{}; });
        EXPECT_FALSE(recorder->record({.sink = [this](std::string_view line) {
            lines.emplace_back(line);
            return std::nullopt;
        }}));
    }

    void TearDown() override {
        recorder.reset();
        world.model.reset();
    }
};

} // namespace

TEST_F(EverySetting, ThatChangesWhileARecordingRunsReadsBackAsItBecame) {
    record();
    world.settings().visit([](auto& setting) { setting.set(another(setting.get())); });
    EXPECT_EQ(replayed(lines), world.store.values());
}

TEST_F(EverySetting, ThatWasChangedBeforeARecordingReadsBackAsItWas) {
    Settings(world.store).visit([](auto& setting) { setting.set(another(setting.get())); });
    record();
    EXPECT_EQ(replayed(lines), world.store.values());
}

TEST(Manual, ListsEveryPreferenceWithItsDefaultAndNoOtherInBothLanguages) {
    std::vector<std::string> rows;
    Preferences defaults;
    Remembered::addDefaults(defaults);
    Settings::specimen().visit([&rows](const auto& setting) {
        rows.push_back("| `" + std::string(setting.name()) + "` | `" +
                       std::visit(Typed{}, setting.byDefault()) + "`");
    });
    // Neither decides anything in the core.
    rows.push_back("| `historyDays` | `" + std::visit(Typed{}, defaults.at("historyDays")) + "`");
    rows.push_back("| `lockCommand` | –"); // read at the start only
    EXPECT_EQ(rowsOf("gebruik.md", "voorkeur"), rows);
    EXPECT_EQ(rowsOf("using.md", "preference"), rows);
}
