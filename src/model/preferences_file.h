// The preferences as one JSON file that its user can read and only its user may read. Changes are
// gathered for one turn of the event loop and then replace the file whole, so that a slider
// that is dragged does not write a hundred times, and a crash never leaves half a file.
#pragma once

#include "base/scheduler.h"
#include "model/preferences_store.h"

#include <filesystem>
#include <string_view>

namespace wegslot {

class PreferencesFile final : public MemoryStore {
public:
    enum class Access { whole, readOnly };

    /// Loads `file`; a missing one is empty. One that cannot be understood is kept beside it as
    /// "<name>.damaged" (with a number when that is taken) and counts as empty; one that cannot
    /// be read is left alone, and nothing is written over it. Both are logged. With `readOnly` no
    /// file is ever touched.
    PreferencesFile(std::filesystem::path file, Scheduler& scheduler,
                    Access access = Access::whole);

    /// Writes what was still waiting.
    ~PreferencesFile() override;

    /// "wegslot/preferences.json" under the user's folder for configuration.
    [[nodiscard]] static std::filesystem::path
    pathUnder(const std::filesystem::path& configuration);

    void write(std::string_view name, PreferenceValue value) override;

    /// Writes now what is waiting. Failures are logged and otherwise ignored; the next change
    /// tries again.
    void flush();

private:
    const std::filesystem::path file_;
    Scheduler& scheduler_;
    bool writable_;
    Timer writing_;
};

} // namespace wegslot
