// The display names of applications, from the installed desktop entries. Asked for the application
// that records, at most once a second, and reads the files anew each time, because one may just
// have been installed.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace wegslot {

class ApplicationNames {
public:
    /// Far above any real entry (the largest with all their translations are some 50 kB); a file
    /// above it is not read.
    static constexpr std::size_t largestEntry = std::size_t{256} * 1024;

    /// Far above any desktop; the rest is not looked at.
    static constexpr std::size_t mostEntries = 10000;

    /// How far below applications/ entries are looked for, so that a link in a circle ends.
    static constexpr int deepestFolder = 4;

    /// `dataFolders` in order of preference; the entries are in applications/ of each.
    explicit ApplicationNames(std::vector<std::filesystem::path> dataFolders)
        : dataFolders_(std::move(dataFolders)) {}

    /// The folders by the base directory rules, from the user's home and the values of
    /// XDG_DATA_HOME and XDG_DATA_DIRS, empty when not set. Relative ones are passed over.
    [[nodiscard]] static std::vector<std::filesystem::path>
    dataFolders(const std::filesystem::path& home, const std::string& dataHome,
                const std::string& dataDirs);

    /// The name of the application whose entry is called `identifier`, else of the first that
    /// starts a program of that name or has windows of that class. No ".app" is left in it. Where
    /// none has a name, the identifier. For one line: no control characters, valid UTF-8.
    [[nodiscard]] std::string nameOf(const std::string& identifier) const;

private:
    std::vector<std::filesystem::path> dataFolders_;
};

} // namespace wegslot
