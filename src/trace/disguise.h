// Takes out of a recording what says whose it is: ids become random ones, names of devices
// "Apparaat 1" and of applications "App 1", each the same wherever it stands. What the core decides
// on stays: what is named and what is not, models, strengths, the maker's type.
#pragma once

#include "base/uuid.h"
#include "trace/event.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace wegslot {

class Disguise {
public:
    /// `freshId` gives ids that nobody has.
    explicit Disguise(std::function<Uuid()> freshId) : freshId_(std::move(freshId)) {}

    [[nodiscard]] trace::Event disguised(trace::Event event);

private:
    struct Mask;

    [[nodiscard]] Uuid id(const Uuid& real);
    /// The name of the device; one without stays without, and an empty one empty.
    void name(const Uuid& real, std::string& name);
    [[nodiscard]] bool tells(std::string_view text) const;

    std::function<Uuid()> freshId_;
    std::unordered_map<Uuid, Uuid> ids_;
    std::unordered_map<Uuid, std::size_t> devices_; ///< the number of each that has a name
    std::unordered_map<std::string, std::size_t> applications_;
    std::set<std::string, std::less<>> names_; ///< real ones
    std::size_t lastDevice_ = 0;
};

} // namespace wegslot
