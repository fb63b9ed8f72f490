#include "hud/joint_hud.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;

namespace {

class NotingHud final : public WarningHUD {
public:
    NotingHud(std::string& notes, std::function<void()>& cancel) : notes_(notes), cancel_(cancel) {}

    void show(TimePoint, Seconds, const Message& message, std::function<void()> onCancel) override {
        notes_ += "+" + message.builtIn();
        cancel_ = std::move(onCancel);
    }
    void hide() override { notes_ += "-"; }

private:
    std::string& notes_;
    std::function<void()>& cancel_;
};

} // namespace

TEST(JointHud, AllAreShownAndHiddenAndAnyMayCancel) {
    std::string one;
    std::string other;
    std::function<void()> cancelOne;
    std::function<void()> cancelOther;
    JointHud::Parts parts;
    parts.push_back(std::make_unique<NotingHud>(one, cancelOne));
    parts.push_back(std::make_unique<NotingHud>(other, cancelOther));
    JointHud joint(std::move(parts));
    int cancelled = 0;
    joint.hide();
    joint.show({}, Seconds{5}, "weg", [&] {
        ++cancelled;
        joint.hide();
    });
    cancelOne();
    cancelOther();
    EXPECT_EQ(cancelled, 2);
    EXPECT_EQ(one, "-+weg--");
    EXPECT_EQ(other, one);
}
