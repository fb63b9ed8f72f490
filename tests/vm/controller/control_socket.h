// The place in the file system where scripts reach the virtual controller while it runs.
#pragma once

#include <optional>
#include <string>

#include "descriptor.h"
#include "line_channel.h"

namespace controller {

class ControlSocket {
public:
    /// Replaces a socket left at that path. What went wrong, if anything.
    std::optional<std::string> listen(const std::string& path);

    int descriptor() const { return socket_.number(); }

    /// The next caller, if there is one.
    std::optional<LineChannel> accept();

private:
    Descriptor socket_;
};

} // namespace controller
