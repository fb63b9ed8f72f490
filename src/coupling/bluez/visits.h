// Who has come to a computer that appears: tells visitors from devices that were connected before
// or that this computer has called itself, follows the one that is to bond, and reports of it.
#pragma once

#include "coupling/bluez/teller.h"
#include "coupling/coupling_radio.h"
#include "scanner/bluez/links.h"
#include "scanner/bluez/object_tree.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace wegslot::coupling {

class Visits {
public:
    /// All must outlive this.
    Visits(const bluez::ObjectTree& objects, bluez::Links& links, const Teller& tell);
    Visits(const Visits&) = delete;
    Visits& operator=(const Visits&) = delete;

    /// Who is connected to `adapter` now is no visitor. Before anything is on the air.
    void prepare(std::string adapter);

    /// Tells from now on, beginning with who came since.
    void open();

    /// Tells nothing any more.
    void close() { isOpen_ = false; }

    /// The device at `path` is not what it was, or is there no more.
    void changed(std::string_view path);
    void removed(std::string_view path);

    /// The visitor's path; null while there is none.
    [[nodiscard]] const std::string* visitor() const { return path_ ? &*path_ : nullptr; }
    [[nodiscard]] bool isBonded() const { return isBonded_; }

    /// Whether `path` is the visitor, come without a bond and without one still.
    [[nodiscard]] bool mayBond(std::string_view path) const {
        return isOpen_ && path_ == path && !isBonded_;
    }

    /// There is no visitor and no acquaintance any more; the path of who it was.
    [[nodiscard]] std::optional<std::string> forget();

private:
    [[nodiscard]] bool isCaller(const bluez::Device& device) const;
    void came(std::string_view path, const bluez::Device& device);
    void went(std::string_view path);
    void follow(const bluez::Device& device);
    void lookAround();

    const bluez::ObjectTree& objects_;
    bluez::Links& links_;
    const Teller& tell_;
    std::string adapter_;
    bool isOpen_ = false;
    std::set<std::string, std::less<>> present_; ///< connected, and known not to be new
    std::optional<std::string> path_;            ///< the visitor's
    bool isBonded_ = false;                      ///< the visitor
    Visitor told_;                               ///< of the visitor, last
    std::optional<std::string> acquaintance_;    ///< its path
};

} // namespace wegslot::coupling
