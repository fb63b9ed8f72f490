// An open file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace controller {

class Descriptor {
public:
    Descriptor() = default;

    explicit Descriptor(int number) : number_(number) {}

    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor() { close(); }

    /// Negative if none is open.
    int number() const { return number_; }

    bool isOpen() const { return number_ >= 0; }

    void close() {
        if (isOpen()) ::close(number_);
        number_ = -1;
    }

private:
    int number_ = -1;
};

} // namespace controller
