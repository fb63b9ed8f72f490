// What is to be put back on adapters that were made to let others bond with them: a file, because a
// program that is killed puts nothing back, and of all that coupling changes this alone outlives
// it.
#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace wegslot::coupling {

class PairableNote {
public:
    explicit PairableNote(std::filesystem::path file);

    /// "wegslot/pairable" under the user's folder for data, beside the identities.
    [[nodiscard]] static std::filesystem::path pathUnder(const std::filesystem::path& data);

    /// The addresses of adapters that nobody could bond with before. A note that cannot be read as
    /// one is removed, and the log says so.
    [[nodiscard]] std::set<std::string> adapters() const;

    /// Notes the adapter with `address`, before it is changed. An error number, 0 for none.
    [[nodiscard]] int add(const std::string& address) const;

    /// It is as it was. The last one takes the file with it.
    void remove(const std::string& address) const;

private:
    [[nodiscard]] int write(const std::set<std::string>& addresses) const;

    const std::filesystem::path file_;
};

} // namespace wegslot::coupling
