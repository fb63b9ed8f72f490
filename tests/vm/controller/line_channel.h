// Where instructions come from and answers go: one connection that carries lines both ways.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "descriptor.h"

namespace controller {

class LineChannel {
public:
    using Answer = std::function<std::string(std::string_view line)>;

    /// One descriptor for both ways, or one for each.
    explicit LineChannel(Descriptor both);
    LineChannel(Descriptor input, Descriptor output);

    int descriptor() const { return input_.number(); }

    /// Reads what has come and answers every whole line. False when the other side has gone.
    bool serve(const Answer& answer);

private:
    bool write(std::string text);

    Descriptor input_;
    Descriptor output_;
    std::string received_;
};

} // namespace controller
