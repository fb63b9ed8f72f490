#include "model/linux/preferences_file.h"

#include "base/system_error.h"
#include "files/linux/file_content.h"
#include "files/linux/replace_file.h"
#include "log/log.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace wegslot {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// In bytes: some hundred thousand keys.
constexpr std::size_t largestFile = 16 << 20U;

/// A file's content; nothing when it is there but cannot be read.
std::optional<std::string> textOf(const fs::path& file) {
    std::error_code error;
    if (!fs::exists(file, error) && !error) return std::string();
    return contentOf(file, largestFile);
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

/// A place in `content`, as editors count.
std::string placeOf(std::string_view content, std::size_t offset) {
    const std::string_view before = content.substr(0, std::min(offset, content.size()));
    const auto line = 1 + std::ranges::count(before, '\n');
    const std::size_t start = before.rfind('\n') + 1; // 0 where there is none
    const auto isFirstByte = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    const auto column = 1 + std::ranges::count_if(before.substr(start), isFirstByte);
    return "regel " + std::to_string(line) + ", kolom " + std::to_string(column);
}

/// Where `content` is nested deeper than is meant: the library would go as deep.
std::optional<std::size_t> tooDeepAt(std::string_view content) {
    std::size_t depth = 0;
    bool isInText = false;
    for (std::size_t i = 0; i < content.size(); ++i) {
        const char sign = content[i];
        if (isInText && sign == '\\') ++i;
        if (sign == '"') isInText = !isInText;
        if (isInText) continue;
        if (sign == '[' || sign == '{') ++depth;
        if (depth > PreferencesFile::deepest) return i;
        if ((sign == ']' || sign == '}') && depth > 0) --depth;
    }
    return std::nullopt;
}

/// The values of a file; where it is wrong, if it is none.
Result<Preferences> understood(const std::string& content) {
    Preferences values;
    if (content.empty()) return values;
    if (const auto offset = tooDeepAt(content))
        return Failure{message("%1: te diep genest", {placeOf(content, *offset)})};
    Json object;
    try {
        object = Json::parse(content);
    } catch (const Json::parse_error& error) {
        // The library counts from one, up to the byte that it could not take.
        return Failure{placeOf(content, error.byte > 0 ? error.byte - 1 : 0)};
    } catch (const Json::exception&) {
        return Failure{message("een getal is te groot")};
    }
    if (!object.is_object()) return Failure{message("%1: geen object", {placeOf(content, 0)})};
    for (const auto& [name, value] : object.items())
        if (auto preference = decoded(value)) values.insert_or_assign(name, *std::move(preference));
    return values;
}

} // namespace

PreferencesFile::PreferencesFile(fs::path file, Scheduler& scheduler, Access access)
    : file_(std::move(file)),
      scheduler_(scheduler),
      writable_(access == Access::whole) {
    load();
}

// Only memory that has run out throws here.
PreferencesFile::~PreferencesFile() { flush(); } // NOLINT(bugprone-exception-escape)

fs::path PreferencesFile::pathUnder(const fs::path& configuration) {
    return configuration / "wegslot" / "preferences.json";
}

fs::path PreferencesFile::copyOf(const fs::path& file) { return file.string() + ".good"; }

void PreferencesFile::load() {
    reread();
    if (!fault_.get()) return keepCopy(textOf(file_).value_or(""));
    if (const auto copy = textOf(copyOf(file_)))
        if (auto values = understood(*copy)) adopt(*std::move(values));
}

void PreferencesFile::reread() {
    const auto content = textOf(file_);
    if (!content)
        return setFault(Failure{message(
            "Voorkeuren niet leesbaar, wijzigingen worden niet bewaard: %1", {file_.string()})});
    auto values = understood(*content);
    if (!values)
        return setFault(Failure{
            message("Voorkeuren onleesbaar: %1: %2; tot dat hersteld is gelden de vorige en wordt "
                    "niets bewaard",
                    {file_.string(), values.failure().message})});
    setFault(std::nullopt);
    // Who deleted or emptied it, or is just about to fill it, means no other settings.
    if (content->empty()) return;
    adopt(*std::move(values));
    if (!unwritten_.empty() && !writing_)
        writing_ = scheduler_.after(Nanoseconds{0}, [this] { flush(); });
}

void PreferencesFile::setFault(std::optional<Failure> fault) {
    if (fault == fault_.get()) return;
    Log::say(fault ? fault->message : message("Voorkeuren weer leesbaar: %1", {file_.string()}));
    fault_.set(std::move(fault));
}

/// Takes over what differs from what the file held before, but for what we changed ourselves.
void PreferencesFile::adopt(Preferences values) {
    Preferences merged = this->values();
    bool isChanged = false;
    const auto takeOver = [&](const std::string& name) {
        if (unwritten_.contains(name)) return;
        isChanged = true;
        const auto found = values.find(name);
        if (found == values.end())
            merged.erase(name);
        else
            merged.insert_or_assign(name, found->second);
    };
    for (const auto& [name, value] : values)
        if (const auto known = known_.find(name); known == known_.end() || known->second != value)
            takeOver(name);
    for (const auto& [name, value] : known_)
        if (!values.contains(name)) takeOver(name);
    known_ = std::move(values);
    if (!isChanged) return;
    replace(std::move(merged));
    changedByOthers_.set(0);
}

void PreferencesFile::keepCopy(const std::string& content) const {
    if (!writable_ || content.empty() || textOf(copyOf(file_)) == content) return;
    constexpr mode_t ownerOnly = 0600;
    if (const int error = replaceFile(copyOf(file_), content, ownerOnly))
        Log::write("Kopie van de voorkeuren niet bewaard: " + systemError(error).builtIn());
}

void PreferencesFile::write(std::string_view name, PreferenceValue value) {
    MemoryStore::write(name, std::move(value));
    unwritten_.emplace(name);
    if (!writing_) writing_ = scheduler_.after(Nanoseconds{0}, [this] { flush(); });
}

std::optional<Failure> PreferencesFile::flush() {
    writing_.reset();
    if (!writable_ || unwritten_.empty()) return std::nullopt;
    reread();
    writing_.reset();
    if (fault_.get()) return fault_.get();
    const std::string content = encoded(values());
    constexpr mode_t ownerOnly = 0600;
    if (const int error = replaceFile(file_, content, ownerOnly)) {
        const Failure failure{
            message("Voorkeuren niet bewaard: %1: %2", {file_.string(), systemError(error)})};
        Log::say(failure.message);
        return failure;
    }
    known_ = values();
    unwritten_.clear();
    keepCopy(content);
    return std::nullopt;
}

Subscription PreferencesFile::onChangeByOthers(std::function<void()> listener) {
    return changedByOthers_.onChange([act = std::move(listener)](int) { act(); });
}

} // namespace wegslot
