// Unpacks one gzip member (RFC 1952) block by block, for callers that inspect the content and must
// not be made to keep all of it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace wegslot {

class Gunzip {
public:
    explicit Gunzip(std::span<const std::uint8_t> packed);
    Gunzip(const Gunzip&) = delete;
    Gunzip& operator=(const Gunzip&) = delete;
    ~Gunzip();

    /// Fills `block`, whole but for the last time. Answers how many bytes it is; 0 at the end and
    /// after a failure.
    [[nodiscard]] std::size_t read(std::span<std::uint8_t> block);

    /// Whether everything was unpacked, rightly, and nothing came after it.
    [[nodiscard]] bool isComplete() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace wegslot
