#include "app/linux/file_watch.h"

#include <array>
#include <cstddef>
#include <utility>

#include <sys/inotify.h>
#include <unistd.h>

namespace wegslot {

FileWatch::FileWatch(Descriptors& descriptors, const std::filesystem::path& file,
                     std::function<void()> changed)
    : changed_(std::move(changed)),
      handle_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (handle_ < 0) return;
    std::error_code none;
    const auto target = std::filesystem::canonical(file, none);
    for (const auto& path : {file, none ? file : target}) {
        names_.insert(path.filename().string());
        inotify_add_watch(handle_, path.parent_path().c_str(), IN_CLOSE_WRITE | IN_MOVED_TO);
    }
    reading_ = descriptors.onReadable(handle_, [this] { read(); });
}

FileWatch::~FileWatch() {
    reading_ = {};
    if (handle_ >= 0) close(handle_);
}

void FileWatch::read() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    bool isMeant = false;
    for (ssize_t size = 0; (size = ::read(handle_, buffer.data(), buffer.size())) > 0;)
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            // One that was lost may have been ours.
            isMeant = isMeant || (event->mask & IN_Q_OVERFLOW) != 0 ||
                      (event->len > 0 && names_.contains(event->name));
            at += sizeof(inotify_event) + event->len;
        }
    if (!isMeant) return;
    const auto act = changed_; // a copy: it may end this
    act();
}

} // namespace wegslot
