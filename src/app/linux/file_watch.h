// Tells when a file has another content: when a program closes it that wrote to it, and when
// another file takes its place. Watches the folders that it and what it leads to stand in, because
// editors do the one or the other.
#pragma once

#include "base/descriptors.h"

#include <filesystem>
#include <functional>
#include <set>
#include <string>

namespace wegslot {

class FileWatch {
public:
    /// The folder must be there; where it cannot be watched, nothing is told. `descriptors` must
    /// outlive this.
    FileWatch(Descriptors& descriptors, const std::filesystem::path& file,
              std::function<void()> changed);
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
    ~FileWatch();

private:
    void read();

    std::function<void()> changed_;
    int handle_;
    std::set<std::string> names_;
    Subscription reading_;
};

} // namespace wegslot
