// The line to the virtual controller: an instruction goes out, its answer comes back.
#pragma once

#include <string>

namespace wegslot {

class ControlLine {
public:
    /// Connects to the control socket at `path`; throws when nobody listens there.
    explicit ControlLine(const char* path);
    ~ControlLine();
    ControlLine(const ControlLine&) = delete;
    ControlLine& operator=(const ControlLine&) = delete;

    /// What follows the "ok"; throws when the controller refuses.
    std::string tell(const std::string& instruction);

    /// The value of `name` in what `device-status` says of `device`.
    std::string valueOf(const std::string& device, const std::string& name);

private:
    int socket_;
};

} // namespace wegslot
