// The writing side of the D-Bus seam: appends values to a message one after the other, containers
// through a function that fills them. Types are D-Bus signatures; a value that does not fit (text
// that is not UTF-8, an invalid path) spoils the message, which must then not be sent.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

struct sd_bus_message;

namespace wegslot::dbus {

class Writer {
public:
    using Fill = std::function<void(Writer&)>;

    explicit Writer(sd_bus_message* message) : message_(message) {}

    void text(const std::string& value);
    void path(const std::string& value);
    void boolean(bool value);
    void byte(std::uint8_t value);
    void int16(std::int16_t value);
    void uint16(std::uint16_t value);
    void int32(std::int32_t value);
    void uint32(std::uint32_t value);
    void int64(std::int64_t value);
    void real(double value);
    /// Sends a copy of an open file; the caller keeps its own.
    void descriptor(int value);
    void bytes(std::span<const std::uint8_t> value);

    // `contents`: the signature of what `fill` appends (of one element, for an array).

    void array(const char* contents, const Fill& fill);
    void structure(const char* contents, const Fill& fill);
    void entry(const char* contents, const Fill& fill); ///< of a dictionary
    void variant(const char* contents, const Fill& fill);

    /// Has the asker get an error instead (InvalidArgs): there is nothing to answer with. `why`:
    /// for a person; empty leaves the words to the library.
    void refuse(std::string why = {}) {
        whole_ = false;
        refusal_ = std::move(why);
    }

    [[nodiscard]] const std::string& refusal() const { return refusal_; }

    /// Whether everything did fit.
    [[nodiscard]] bool isWhole() const { return whole_; }

private:
    void basic(char type, const void* value);
    void container(char type, const char* contents, const Fill& fill);

    void check(int result) { whole_ = whole_ && result >= 0; }

    sd_bus_message* message_;
    bool whole_ = true;
    std::string refusal_;
};

} // namespace wegslot::dbus
