// Reports that a file may have new content: a program that wrote to it has closed it, or another
// file has taken its place. Watches the folders of the file and of whatever it links to, because
// editors do either.
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
