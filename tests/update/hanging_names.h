// A name server that never answers: in the program of a test, the system's own question waits until
// this has gone. Numbers are answered, for nobody is asked about those.
#pragma once

namespace wegslot {

class HangingNames {
public:
    HangingNames();
    HangingNames(const HangingNames&) = delete;
    HangingNames& operator=(const HangingNames&) = delete;
    /// Answers all who wait, that there is no such name.
    ~HangingNames();

    [[nodiscard]] bool wereAsked() const;
};

} // namespace wegslot
