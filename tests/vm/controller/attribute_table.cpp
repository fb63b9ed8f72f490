#include "attribute_table.h"

#include <algorithm>
#include <utility>

namespace controller {

void AttributeTable::add(Attribute attribute) { attributes_.push_back(std::move(attribute)); }

Attribute* AttributeTable::find(AttributeHandle handle) {
    const auto found = std::find_if(attributes_.begin(), attributes_.end(),
                                    [&](const Attribute& each) { return each.handle == handle; });
    return found == attributes_.end() ? nullptr : &*found;
}

std::span<const Attribute> AttributeTable::in(const HandleRange& range) const {
    const auto begin =
        std::find_if(attributes_.begin(), attributes_.end(),
                     [&](const Attribute& each) { return each.handle >= range.first; });
    const auto end = std::find_if(begin, attributes_.end(),
                                  [&](const Attribute& each) { return each.handle > range.last; });
    return {begin, end};
}

AttributeHandle AttributeTable::endOfService(AttributeHandle first) const {
    AttributeHandle end = first;
    for (const Attribute& attribute : attributes_) {
        if (attribute.handle <= first) continue;
        if (attribute.is(Declaration::PrimaryService)) break;
        end = attribute.handle;
    }
    return end;
}

} // namespace controller
