#include "model/remembered.h"

#include "model/preference_faults.h"
#include "model/settings.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(Remembered, IsKeptBesideTheChoicesAndNoMistakeAmongThem) {
    MemoryStore store;
    {
        const Settings settings(store);
        Remembered remembered(store);
        EXPECT_FALSE(remembered.loginOffered.get());
        EXPECT_EQ(remembered.offSince.get(), Seconds{0});
        remembered.loginOffered.set(true);
        remembered.offSince.set(Seconds{1764000000});
    }
    const Settings settings(store);
    const Remembered remembered(store);
    EXPECT_TRUE(remembered.loginOffered.get());
    EXPECT_EQ(remembered.offSince.get(), Seconds{1764000000});
    EXPECT_EQ(preferenceFaults(store), std::vector<PreferenceFault>{});
    store.write("offSince", std::string("gisteren"));
    EXPECT_EQ(preferenceFaults(store),
              (std::vector<PreferenceFault>{{"offSince", "offSince is geen getal"}}));
    EXPECT_EQ(Remembered(store).offSince.get(), Seconds{0});
}
