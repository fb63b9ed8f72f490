#include "base/observable.h"

#include <gtest/gtest.h>

#include <optional>

using namespace wegslot;

TEST(Observable, ListenersRunBeforeTheValueIsStoredAndGetTheNewOne) {
    Observable<int> number{1};
    int stored = 0;
    int told = 0;
    const auto subscription = number.onChange([&](int value) {
        stored = number.get();
        told = value;
    });
    number.set(2);
    EXPECT_EQ(stored, 1);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(number.get(), 2);
}

TEST(Observable, AnEqualValueNotifiesToo) {
    Observable<int> number{7};
    int calls = 0;
    const auto subscription = number.onChange([&](int) { ++calls; });
    number.set(7);
    number.set(7);
    EXPECT_EQ(calls, 2);
}

TEST(Observable, FollowDeliversTheCurrentValueAtOnce) {
    Observable<int> number{7};
    std::vector<int> values;
    const auto subscription = number.follow([&](int value) { values.push_back(value); });
    number.set(8);
    EXPECT_EQ(values, (std::vector{7, 8}));
}

TEST(Observable, AListenerMayEndItsOwnSubscriptionAndStillReadWhatItHolds) {
    Observable<int> number;
    Subscription own;
    std::string text = "a text too long for a small buffer, so that its loss would show";
    std::string seen;
    own = number.onChange([&, text](int) {
        own.reset();
        seen = text;
    });
    number.set(1);
    number.set(2);
    EXPECT_EQ(seen, text);
}

TEST(Observable, AListenerMayEndALaterOneWhichIsThenNotTold) {
    Observable<int> number;
    int calls = 0;
    Subscription second;
    const auto first = number.onChange([&](int) { second.reset(); });
    second = number.onChange([&](int) { ++calls; });
    number.set(1);
    EXPECT_EQ(calls, 0);
}

TEST(Observable, ASubscriptionMayOutliveTheObservable) {
    Subscription subscription;
    {
        Observable<int> number;
        subscription = number.onChange([](int) {});
    }
    subscription.reset();
    EXPECT_FALSE(subscription);
}
