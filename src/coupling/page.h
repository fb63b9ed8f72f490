// What a person sees of each step, in words: the same in the window and in a terminal.
#pragma once

#include "base/translation.h"
#include "coupling/step.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot::coupling {

struct Choice {
    Action action;
    Message label;
    bool isMain = false; ///< what most people want here

    friend bool operator==(const Choice&, const Choice&) = default;
};

struct Page {
    Message title;
    Message text;   ///< the one thing to do now, or what came of it
    Message detail; ///< what helps where that does not work; often empty
    std::optional<std::string> code;
    std::optional<TimePoint> until; ///< counted down to
    std::vector<Choice> choices;    ///< the main one last, as in a dialogue
    bool asksForIdentity = false;   ///< and a name; they come with `Action::paste`
};

/// What is to be known beside the step.
struct PageFacts {
    Kind kind = Kind::iphone;
    std::string name;      ///< ours, as the device lists it
    Seconds lostTimeout{}; ///< as it is set
    bool canPaste = false; ///< an identity
};

[[nodiscard]] Page pageOf(const Step& step, const PageFacts& facts);

} // namespace wegslot::coupling
