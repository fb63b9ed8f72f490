#include "scanner/device_names.h"

#include <array>
#include <utility>

namespace wegslot::DeviceNames {
namespace {

using Entry = std::pair<std::string_view, std::string_view>;

constexpr std::array<Entry, 5> families{{
    {"iPhone", "iPhone"},
    {"Watch", "Apple Watch"},
    {"iPad", "iPad"},
    {"AudioAccessory", "HomePod"},
    {"AppleTV", "Apple TV"},
}};

constexpr std::array<Entry, 4> symbols{{
    {"watch", "applewatch"},
    {"iphone", "iphone"},
    {"ipad", "ipad"},
    {"mac", "laptopcomputer"},
}};

// Every word looked for is ASCII, so lowering ASCII letters is enough.
std::string lowered(std::string text) {
    for (char& character : text)
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
    return text;
}

} // namespace

std::string friendly(std::string_view model) {
    for (const auto& [prefix, family] : families)
        if (model.starts_with(prefix)) return std::string(family);
    if (model.find("Mac") != std::string_view::npos) return "Mac";
    return std::string(model);
}

std::string symbol(const std::optional<std::string>& name,
                   const std::optional<std::string>& model) {
    const std::string text = lowered(name.value_or("") + " " + model.value_or(""));
    for (const auto& [word, symbol] : symbols)
        if (text.find(word) != std::string::npos) return std::string(symbol);
    return "dot.radiowaves.left.and.right";
}

} // namespace wegslot::DeviceNames
