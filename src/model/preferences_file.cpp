#include "model/preferences_file.h"

#include "model/log.h"
#include "model/replace_file.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace wegslot {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// A file's content; nothing when it is there but cannot be read.
std::optional<std::string> contentOf(const fs::path& file) {
    std::error_code error;
    if (!fs::exists(file, error) && !error) return std::string();
    std::ifstream stream(file, std::ios::binary);
    if (!stream || fs::is_directory(file, error)) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// Nothing for a value that no preference has (null, which is how NaN was written).
std::optional<PreferenceValue> decoded(const Json& value) {
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number()) return value.get<double>();
    if (value.is_string()) return value.get<std::string>();
    if (value.is_structured()) return Data{value.dump()};
    return std::nullopt;
}

struct Encode {
    Json operator()(bool value) const { return value; }
    Json operator()(double value) const { return value; }
    Json operator()(const std::string& value) const { return value; }
    Json operator()(const Data& value) const { return Json::parse(value.bytes, nullptr, false); }
};

std::string encoded(const Preferences& values) {
    Json object = Json::object();
    for (const auto& [name, value] : values)
        object[name] = std::visit(Encode{}, value);
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

fs::path freeName(const fs::path& wanted) {
    fs::path name = wanted;
    for (int number = 1; fs::exists(name); ++number)
        name = wanted.string() + "." + std::to_string(number);
    return name;
}

} // namespace

PreferencesFile::PreferencesFile(fs::path file, Scheduler& scheduler, Access access)
    : file_(std::move(file)),
      scheduler_(scheduler),
      writable_(access == Access::whole) {
    const auto content = contentOf(file_);
    if (!content) {
        writable_ = false;
        Log::write("Voorkeuren niet leesbaar, wijzigingen worden niet bewaard: " + file_.string());
        return;
    }
    if (content->empty()) return;
    const Json object = Json::parse(*content, nullptr, false);
    if (!object.is_object() && !writable_) {
        Log::write("Voorkeuren onleesbaar: " + file_.string());
        return;
    }
    if (!object.is_object()) {
        const fs::path kept = freeName(file_.string() + ".damaged");
        std::error_code error;
        fs::rename(file_, kept, error);
        writable_ = !error;
        Log::write("Voorkeuren onleesbaar, bewaard als " + kept.string());
        return;
    }
    for (const auto& [name, value] : object.items())
        if (auto preference = decoded(value)) MemoryStore::write(name, *std::move(preference));
}

PreferencesFile::~PreferencesFile() { flush(); }

fs::path PreferencesFile::pathUnder(const fs::path& configuration) {
    return configuration / "wegslot" / "preferences.json";
}

void PreferencesFile::write(std::string_view name, PreferenceValue value) {
    MemoryStore::write(name, std::move(value));
    if (!writing_) writing_ = scheduler_.after(Nanoseconds{0}, [this] { flush(); });
}

void PreferencesFile::flush() {
    if (!writing_) return;
    writing_.reset();
    if (!writable_) return;
    constexpr mode_t ownerOnly = 0600;
    if (const int error = replaceFile(file_, encoded(values()), ownerOnly))
        Log::write("Voorkeuren niet bewaard: " + file_.string() + ": " + std::strerror(error));
}

} // namespace wegslot
