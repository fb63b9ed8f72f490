#include "identity/linux/secret_text.h"

#include <algorithm>
#include <cerrno>

#include <termios.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// A terminal that shows nothing of what is typed while this lives.
class Unseen {
public:
    explicit Unseen(int terminal) : terminal_(terminal) {
        isTerminal_ = tcgetattr(terminal_, &before_) == 0;
        if (!isTerminal_) return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(terminal_, TCSANOW, &silent);
    }
    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;
    ~Unseen() {
        if (isTerminal_) tcsetattr(terminal_, TCSANOW, &before_);
    }

    [[nodiscard]] bool isTerminal() const { return isTerminal_; }

private:
    int terminal_;
    bool isTerminal_ = false;
    termios before_{};
};

} // namespace

std::optional<std::pmr::string> secretText(int descriptor, std::size_t most,
                                           std::pmr::memory_resource& memory,
                                           const std::function<bool(std::string_view)>& isEnough) {
    std::pmr::string text(&memory);
    text.resize(most + 1);
    std::size_t length = 0;
    while (length < text.size()) {
        const ssize_t got = read(descriptor, text.data() + length, text.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        length += static_cast<std::size_t>(got);
        if (got == 0 || isEnough({text.data(), length})) break;
    }
    text.resize(length);
    return text;
}

std::optional<std::pmr::string> pastedText(int descriptor, std::size_t most,
                                           std::pmr::memory_resource& memory,
                                           const std::function<bool(std::string_view)>& isEnough) {
    const Unseen unseen(descriptor);
    return secretText(descriptor, most, memory, [&](std::string_view text) {
        return unseen.isTerminal() && text.ends_with('\n') && isEnough(text);
    });
}

} // namespace wegslot
