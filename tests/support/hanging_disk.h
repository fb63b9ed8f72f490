// A disk that hangs. Only root has one: a test asks whether it is there.
#pragma once

#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

#include <optional>
#include <string>

#include <sys/mount.h>
#include <unistd.h>

namespace wegslot {

/// A disk with one file whose content cannot be changed, nor that be refused, until it is ended.
class HangingDisk {
public:
    HangingDisk() {
        if (geteuid() != 0) return;
        server_.emplace(Program::Start{.words = {HANGING_DISK, folder_.path().string()}});
        isThere_ = becomesTrue([this] { return says("ready"); });
    }
    HangingDisk(const HangingDisk&) = delete;
    HangingDisk& operator=(const HangingDisk&) = delete;
    ~HangingDisk() { end(); }

    void end() {
        if (!isThere_) return;
        isThere_ = false;
        server_->stop();
        umount2(folder_.path().c_str(), MNT_DETACH);
    }
    [[nodiscard]] bool isThere() const { return isThere_; }
    [[nodiscard]] bool says(const std::string& text) const {
        return server_->output().find(text) != std::string::npos;
    }
    [[nodiscard]] std::string file() const { return (folder_.path() / "file").string(); }

private:
    TemporaryFolder folder_;
    std::optional<Program> server_;
    bool isThere_ = false;
};

} // namespace wegslot
