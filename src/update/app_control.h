// The port through which an update acts on the running application and the desktop.
#pragma once

#include <string>

namespace wegslot {

class AppControl {
public:
    AppControl() = default;
    AppControl(const AppControl&) = delete;
    AppControl& operator=(const AppControl&) = delete;
    virtual ~AppControl() = default;

    /// Ends the application in good order; returns before it has.
    virtual void terminate() = 0;

    /// Shows the file or folder, selected, in the file manager, if there is one.
    virtual void reveal(const std::string& path) = 0;
};

} // namespace wegslot
