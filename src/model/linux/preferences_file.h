// The preferences as one JSON file that only its user can read. Changes are collected for one turn
// of the event loop and then replace the whole file, so that dragging a slider does not write a
// hundred times and a crash never leaves half a file. What the user edits by hand meanwhile is
// merged in; a file with a mistake in it is left for them to mend.
#pragma once

#include "base/observable.h"
#include "base/result.h"
#include "base/scheduler.h"
#include "model/preferences_store.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace wegslot {

class PreferencesFile final : public MemoryStore {
public:
    enum class Access { whole, readOnly };

    /// Deeper nested nothing is that anybody means.
    static constexpr std::size_t deepest = 32;

    /// Loads `file`; a missing one is empty. In the place of one that cannot be read or understood
    /// the last good one is used, from its copy. With `readOnly` no file is ever touched.
    PreferencesFile(std::filesystem::path file, Scheduler& scheduler,
                    Access access = Access::whole);

    /// Writes what was still waiting.
    ~PreferencesFile() override; // NOLINT(bugprone-exception-escape)

    /// "wegslot/preferences.json" under the user's folder for configuration.
    [[nodiscard]] static std::filesystem::path
    pathUnder(const std::filesystem::path& configuration);

    /// The copy of the last good one, beside it.
    [[nodiscard]] static std::filesystem::path copyOf(const std::filesystem::path& file);

    void write(std::string_view name, PreferenceValue value) override;

    /// Writes now what is waiting, over what the file holds by now; says why it could not. A
    /// failure is logged too; what was to be written waits for the next change.
    std::optional<Failure> flush();

    /// Takes over what somebody else changed in the file. Where we changed the same and have not
    /// written it yet, ours stays.
    void reread();

    /// Why the file cannot be used, with the place; nothing is written until it can.
    [[nodiscard]] const Observable<std::optional<Failure>>& fault() const { return fault_; }

    [[nodiscard]] Subscription onChangeByOthers(std::function<void()> listener) override;

private:
    void load();
    void setFault(std::optional<Failure> fault);
    void adopt(Preferences values);
    void keepCopy(const std::string& content) const;

    const std::filesystem::path file_;
    Scheduler& scheduler_;
    const bool writable_;
    Observable<std::optional<Failure>> fault_;
    Preferences known_;                            ///< what the file held when last looked at
    std::set<std::string, std::less<>> unwritten_; ///< names that we changed since
    Observable<int> changedByOthers_;
    Timer writing_;
};

} // namespace wegslot
