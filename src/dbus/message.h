// The reading side of the D-Bus seam: takes the values out of a received message one after the
// other. A value of another type than was asked for is skipped, so that nonsense from a peer is
// never fatal. Valid only while the callback that received the message runs.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct sd_bus_message;

namespace wegslot::dbus {

/// Reads forward through a message or through the content of one container in it.
class Reader {
public:
    explicit Reader(sd_bus_message* message) : message_(message) {}

    // Each takes the next value if it has the type, and gives nothing otherwise.

    [[nodiscard]] std::optional<std::string_view> text(); ///< s, o or g
    [[nodiscard]] std::optional<bool> boolean();          ///< b
    [[nodiscard]] std::optional<std::int64_t> integer();  ///< y, n, q, i, u, x; t that fits
    [[nodiscard]] std::optional<double> real();           ///< d
    /// h; open for as long as the message is there.
    [[nodiscard]] std::optional<int> descriptor();
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> bytes(); ///< ay
    [[nodiscard]] std::vector<std::string> texts(); ///< as or ao; empty otherwise

    [[nodiscard]] std::vector<std::int32_t> integers(); ///< ai; empty otherwise

    /// The second of a pair of texts ((so) or (ss)).
    [[nodiscard]] std::optional<std::string> secondOfPair();

    /// Walks a dictionary with text keys and variant values (a{sv}). What `visit` does not read
    /// of a value is skipped. False when the next value is no such dictionary.
    bool properties(const std::function<void(std::string_view name, Reader& value)>& visit);

    /// Walks a dictionary of numbers and variant values (a{qv}).
    bool numbered(const std::function<void(std::uint16_t number, Reader& value)>& visit);

    /// Walks a dictionary of interfaces with their properties (a{sa{sv}}); `visit` gets a reader
    /// that stands before the properties.
    bool interfaces(const std::function<void(std::string_view name, Reader& properties)>& visit);

    /// Walks a dictionary of objects with their interfaces (a{oa{sa{sv}}}).
    bool objects(const std::function<void(std::string_view path, Reader& interfaces)>& visit);

    /// Walks a list of structures, each of `contents`: a signature without its brackets.
    bool structures(const char* contents, const std::function<void(Reader& fields)>& visit);

    /// Enters a structure of `contents`, a signature without its brackets. False when the next
    /// value is none such.
    bool structure(const char* contents, const std::function<void(Reader& fields)>& visit);

    /// Enters a variant for one value. False when the next value is none.
    bool variant(const std::function<void(Reader& value)>& visit);

private:
    bool dictionary(const char* entry, const std::function<void()>& visit);
    [[nodiscard]] bool nextIs(char type, const char* contents = nullptr) const;
    void skipRest();

    sd_bus_message* message_;
};

/// A message that came in: a signal, or the answer to a call.
class Message {
public:
    explicit Message(sd_bus_message* message) : message_(message) {}

    [[nodiscard]] Reader read() const { return Reader{message_}; }

    /// The name of the error, for an answer that is one.
    [[nodiscard]] std::optional<std::string> error() const;

    /// What the error says to a person; empty for an answer that is none.
    [[nodiscard]] std::string_view errorText() const;

    [[nodiscard]] std::string_view path() const;
    [[nodiscard]] std::string_view member() const;
    [[nodiscard]] std::string_view sender() const;
    /// Sent to this connection, not to all that listen.
    [[nodiscard]] bool isForUsAlone() const;

private:
    sd_bus_message* message_;
};

} // namespace wegslot::dbus
