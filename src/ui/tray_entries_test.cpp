#include "ui/tray_entries.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(TrayEntries, EachDoesWhatItSays) {
    std::vector<std::string> done;
    const auto note = [&done](const char* what) {
        return [&done, what] { done.emplace_back(what); };
    };
    const auto entries = trayEntries(
        {.open =
             [&done](const TrayClick& click) { done.emplace_back(click.at ? "there" : "open"); },
         .lock = note("lock"),
         .pause =
             [&done](Seconds duration) {
                 done.push_back(std::to_string(static_cast<int>(duration.count())));
             },
         .pauseUntilMorning = note("morning"),
         .resume = note("resume"),
         .couple = note("couple"),
         .insight = note("insight"),
         .quit = note("quit")});
    std::vector<std::string> labels;
    for (const TrayEntry& entry : entries) {
        labels.push_back(entry.label.builtIn());
        entry.action();
    }
    EXPECT_EQ(labels,
              (std::vector<std::string>{"Open Wegslot", "Nu locken", "Hervat", "Pauzeer 15 minuten",
                                        "Pauzeer 1 uur", "Pauzeer tot 06:00", "Apparaat koppelen",
                                        "Inzicht", "Stop"}));
    EXPECT_EQ(done, (std::vector<std::string>{"open", "lock", "resume", "900", "3600", "morning",
                                              "couple", "insight", "quit"}));
}

TEST(TrayEntries, OnlyAPauseCanBeResumed) {
    for (const TrayEntry& entry : trayEntries({})) {
        EXPECT_TRUE(entry.isShown(true)) << entry.label;
        EXPECT_EQ(entry.isShown(false), entry.label != "Hervat") << entry.label;
    }
}
