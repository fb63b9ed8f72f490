#include "dbus/message.h"

#include <systemd/sd-bus.h>

#include <cstring>

namespace wegslot::dbus {
namespace {

template <typename T>
std::optional<T> basic(sd_bus_message* message, char type) {
    T value{};
    if (sd_bus_message_read_basic(message, type, &value) <= 0) return std::nullopt;
    return value;
}

template <typename T>
std::optional<std::int64_t> number(sd_bus_message* message, char type) {
    const auto value = basic<T>(message, type);
    if (!value || !std::in_range<std::int64_t>(*value)) return std::nullopt;
    return static_cast<std::int64_t>(*value);
}

char nextType(sd_bus_message* message) {
    char type = 0;
    return sd_bus_message_peek_type(message, &type, nullptr) > 0 ? type : '\0';
}

std::string_view view(const char* text) { return text == nullptr ? "" : text; }

} // namespace

std::optional<std::string_view> Reader::text() {
    const char type = nextType(message_);
    if (type != 's' && type != 'o' && type != 'g') return std::nullopt;
    const auto value = basic<const char*>(message_, type);
    return value ? std::optional(view(*value)) : std::nullopt;
}

std::optional<bool> Reader::boolean() {
    if (nextType(message_) != 'b') return std::nullopt;
    const auto value = basic<int>(message_, 'b');
    return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<std::int64_t> Reader::integer() {
    switch (const char type = nextType(message_)) {
    case 'y':
        return number<std::uint8_t>(message_, type);
    case 'n':
        return number<std::int16_t>(message_, type);
    case 'q':
        return number<std::uint16_t>(message_, type);
    case 'i':
        return number<std::int32_t>(message_, type);
    case 'u':
        return number<std::uint32_t>(message_, type);
    case 'x':
        return number<std::int64_t>(message_, type);
    case 't':
        return number<std::uint64_t>(message_, type);
    default:
        return std::nullopt; // types are an open set of characters
    }
}

std::optional<double> Reader::real() {
    if (nextType(message_) != 'd') return std::nullopt;
    return basic<double>(message_, 'd');
}

std::optional<int> Reader::descriptor() {
    if (nextType(message_) != 'h') return std::nullopt;
    return basic<int>(message_, 'h');
}

std::optional<std::span<const std::uint8_t>> Reader::bytes() {
    if (!nextIs('a', "y")) return std::nullopt;
    const void* start = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(message_, 'y', &start, &size) < 0) return std::nullopt;
    return std::span(static_cast<const std::uint8_t*>(start), size);
}

std::vector<std::string> Reader::texts() {
    std::vector<std::string> list;
    const char* const contents = nextIs('a', "o") ? "o" : "s";
    if (!nextIs('a', contents) || sd_bus_message_enter_container(message_, 'a', contents) <= 0)
        return list;
    while (const auto entry = text())
        list.emplace_back(*entry);
    sd_bus_message_exit_container(message_);
    return list;
}

std::vector<std::int32_t> Reader::integers() {
    std::vector<std::int32_t> list;
    if (!nextIs('a', "i") || sd_bus_message_enter_container(message_, 'a', "i") <= 0) return list;
    while (const auto entry = basic<std::int32_t>(message_, 'i'))
        list.push_back(*entry);
    sd_bus_message_exit_container(message_);
    return list;
}

std::optional<std::string> Reader::secondOfPair() {
    const char* const contents = nextIs('r', "so") ? "so" : "ss";
    if (!nextIs('r', contents) || sd_bus_message_enter_container(message_, 'r', contents) <= 0)
        return std::nullopt;
    static_cast<void>(text());
    const auto second = text();
    std::optional<std::string> copy;
    if (second) copy = std::string(*second);
    sd_bus_message_exit_container(message_);
    return copy;
}

bool Reader::properties(const std::function<void(std::string_view name, Reader& value)>& visit) {
    return dictionary("{sv}", [&] {
        const auto name = text();
        if (name) variant([&](Reader& value) { visit(*name, value); });
    });
}

bool Reader::numbered(const std::function<void(std::uint16_t number, Reader& value)>& visit) {
    return dictionary("{qv}", [&] {
        const auto key = basic<std::uint16_t>(message_, 'q');
        if (key) variant([&](Reader& value) { visit(*key, value); });
    });
}

bool Reader::interfaces(
    const std::function<void(std::string_view name, Reader& properties)>& visit) {
    return dictionary("{sa{sv}}", [&] {
        if (const auto name = text()) visit(*name, *this);
    });
}

bool Reader::objects(const std::function<void(std::string_view path, Reader& interfaces)>& visit) {
    return dictionary("{oa{sa{sv}}}", [&] {
        if (const auto path = text()) visit(*path, *this);
    });
}

bool Reader::structures(const char* contents, const std::function<void(Reader& fields)>& visit) {
    const std::string element = "(" + std::string(contents) + ")";
    if (!nextIs('a', element.c_str()) ||
        sd_bus_message_enter_container(message_, 'a', element.c_str()) <= 0)
        return false;
    while (sd_bus_message_enter_container(message_, 'r', contents) > 0) {
        visit(*this);
        skipRest();
        sd_bus_message_exit_container(message_);
    }
    sd_bus_message_exit_container(message_);
    return true;
}

bool Reader::structure(const char* contents, const std::function<void(Reader& fields)>& visit) {
    if (!nextIs('r', contents) || sd_bus_message_enter_container(message_, 'r', contents) <= 0)
        return false;
    visit(*this);
    skipRest();
    sd_bus_message_exit_container(message_);
    return true;
}

bool Reader::variant(const std::function<void(Reader& value)>& visit) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message_, &type, &contents) <= 0 || type != 'v') return false;
    if (sd_bus_message_enter_container(message_, 'v', contents) <= 0) return false;
    visit(*this);
    skipRest();
    sd_bus_message_exit_container(message_);
    return true;
}

bool Reader::dictionary(const char* entry, const std::function<void()>& visit) {
    if (!nextIs('a', entry) || sd_bus_message_enter_container(message_, 'a', entry) <= 0)
        return false;
    const std::string contents(entry + 1, std::strlen(entry) - 2);
    while (sd_bus_message_enter_container(message_, 'e', contents.c_str()) > 0) {
        visit();
        skipRest();
        sd_bus_message_exit_container(message_);
    }
    sd_bus_message_exit_container(message_);
    return true;
}

bool Reader::nextIs(char type, const char* contents) const {
    char found = 0;
    const char* inside = nullptr;
    if (sd_bus_message_peek_type(message_, &found, &inside) <= 0 || found != type) return false;
    return contents == nullptr || view(inside) == contents;
}

void Reader::skipRest() {
    while (sd_bus_message_at_end(message_, 0) == 0 && sd_bus_message_skip(message_, nullptr) > 0) {
    }
}

std::optional<std::string> Message::error() const {
    const sd_bus_error* const error = sd_bus_message_get_error(message_);
    if (error == nullptr) return std::nullopt;
    return std::string(view(error->name));
}

std::string_view Message::errorText() const {
    const sd_bus_error* const error = sd_bus_message_get_error(message_);
    return error == nullptr ? "" : view(error->message);
}

std::string_view Message::path() const { return view(sd_bus_message_get_path(message_)); }

std::string_view Message::member() const { return view(sd_bus_message_get_member(message_)); }

std::string_view Message::sender() const { return view(sd_bus_message_get_sender(message_)); }

bool Message::isForUsAlone() const { return sd_bus_message_get_destination(message_) != nullptr; }

} // namespace wegslot::dbus
