// Makes a key of a pasted identity from the command line, and waits a while for it to be heard.
#pragma once

#include "app/key_commands.h"
#include "identity/pasted_keys.h"

#include <functional>
#include <string>

namespace wegslot {

class IdentityAdder {
public:
    /// What there is to say when it has ended, well or not. The key is there in the first case,
    /// heard or not.
    using Done = std::function<void(const Result<std::string>& outcome)>;

    /// `done` is called once, from the scheduler. All must outlive this.
    IdentityAdder(AppModel& model, Identities& identities, IdentityStore& store,
                  Scheduler& scheduler, const KnownIdentity& known, const Keep& keep,
                  const PrintLine& print, Done done);

private:
    [[nodiscard]] std::optional<Failure> add(IdentityStore& store, const KnownIdentity& known,
                                             const Keep& keep);
    void look();
    void finish(const Result<std::string>& outcome);

    AppModel& model_;
    PastedKeys keys_;
    Uuid id_;
    std::string name_;
    Done done_;
    Timer looking_;
    Timer patience_;
};

} // namespace wegslot
