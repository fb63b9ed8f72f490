#include "update/archive_reader.h"

#include "base/text.h"
#include "update/gunzip.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <vector>

namespace wegslot {
namespace {

// The header of a member (POSIX.1-1988, ustar).
constexpr std::size_t blockSize = 512;
using Block = std::array<std::uint8_t, blockSize>;

struct Field {
    std::size_t start;
    std::size_t size;
};
constexpr Field nameField{0, 100};
constexpr Field modeField{100, 8};
constexpr Field sizeField{124, 12};
constexpr Field checksumField{148, 8};
constexpr std::size_t typeAt = 156;
constexpr Field linkField{157, 100};
constexpr Field magicField{257, 8};
constexpr Field prefixField{345, 155};

/// "ustar", its end, and version 00: other writers, with meanings of their own, differ here.
constexpr std::string_view magic{"ustar\00000", 8};

/// Archives are filled up to a multiple of twenty blocks.
constexpr std::uint64_t mostPadding = 1000;

/// More than a hundred times as many as there are, and little to remember.
constexpr std::size_t mostMembers = 100'000;

std::string_view bytesOf(const Block& block, Field field) {
    return {reinterpret_cast<const char*>(block.data()) + field.start, field.size};
}

/// Up to the first zero byte.
std::string textOf(const Block& block, Field field) {
    const auto bytes = bytesOf(block, field);
    return std::string(bytes.substr(0, bytes.find('\0')));
}

/// Octal digits, then a zero byte or a blank. Nothing for the other ways that some can read.
std::optional<std::uint64_t> numberOf(const Block& block, Field field) {
    const auto bytes = bytesOf(block, field);
    const auto end = bytes.find_first_not_of("01234567");
    const bool ends =
        end != std::string_view::npos && end > 0 &&
        bytes.find_first_not_of(std::string_view("\0 ", 2), end) == std::string_view::npos;
    if (!ends) return std::nullopt;
    std::uint64_t number = 0;
    for (const char digit : bytes.substr(0, end))
        number = number * 8 + static_cast<std::uint64_t>(digit - '0');
    return number;
}

bool isEmpty(const Block& block) {
    return std::ranges::all_of(block, [](std::uint8_t byte) { return byte == 0; });
}

/// The sum of all bytes, those of the sum itself read as blanks.
bool hasRightChecksum(const Block& block) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        const bool own = i >= checksumField.start && i < checksumField.start + checksumField.size;
        sum += own ? std::uint8_t{' '} : block[i];
    }
    return numberOf(block, checksumField) == sum;
}

std::vector<std::string> partsOf(std::string_view path) {
    std::vector<std::string> parts;
    while (true) {
        const auto slash = path.find('/');
        parts.emplace_back(path.substr(0, slash));
        if (slash == std::string_view::npos) return parts;
        path.remove_prefix(slash + 1);
    }
}

/// Whether each part of a path names something: not nothing, not where it is, not what is above.
bool isPlain(const std::vector<std::string>& parts) {
    return std::ranges::none_of(
        parts, [](const std::string& part) { return part.empty() || part == "." || part == ".."; });
}

/// Looks at one member after the other, in their order.
class Members {
public:
    explicit Members(std::uint64_t most) : most_(most) {}

    [[nodiscard]] std::optional<std::string> objectionTo(const Block& header) {
        if (!hasRightChecksum(header) || bytesOf(header, magicField) != magic)
            return "geen kop van een gewoon archief na " + printable(name_);
        const std::string prefix = textOf(header, prefixField);
        name_ = (prefix.empty() ? "" : prefix + "/") + textOf(header, nameField);
        const auto objection = objectionToMember(header);
        if (!objection) return std::nullopt;
        return *objection + ": " + printable(name_);
    }

    [[nodiscard]] bool any() const { return !seen_.empty(); }

    /// What the header looked at last tells.
    [[nodiscard]] const ArchiveMember& last() const { return member_; }

    /// How many bytes of content follow it.
    [[nodiscard]] std::uint64_t size() const { return size_; }

private:
    [[nodiscard]] std::optional<std::string> objectionToMember(const Block& header) {
        const auto size = numberOf(header, sizeField);
        const auto mode = numberOf(header, modeField);
        if (!size || !mode) return "onleesbaar getal";
        size_ = *size;
        total_ += size_;
        if (size_ > most_ || total_ > most_) return "te groot";
        constexpr std::uint64_t permissions = 0777;
        if ((*mode & ~permissions) != 0) return "bijzondere rechten";
        const char type = static_cast<char>(header[typeAt]);
        // A folder's name may end in a slash.
        std::string path = name_;
        if (type == '5' && path.ends_with('/')) path.pop_back();
        member_ = {.kind = ArchiveMember::Kind::file,
                   .path = partsOf(path),
                   .mode = static_cast<unsigned>(*mode),
                   .target = {}};
        const auto& parts = member_.path;
        if (!isUtf8(path) || printable(path) != path || !isPlain(parts) ||
            parts.front() != bundleFolder)
            return "naam buiten de app";
        if (parts.size() == 1 && type != '5') return "de app is geen map";
        if (isBelowLink(parts)) return "ligt achter een koppeling";
        if (!seen_.insert(path).second) return "komt tweemaal voor";
        if (seen_.size() > mostMembers) return "te veel bestanden";
        if (type == '0') return std::nullopt;
        if (size_ != 0) return "inhoud die er niet hoort";
        member_.kind = ArchiveMember::Kind::folder;
        if (type == '5') return std::nullopt;
        if (type != '2') return "geen gewoon bestand";
        member_.kind = ArchiveMember::Kind::link;
        member_.target = textOf(header, linkField);
        return objectionToLink(path, parts, member_.target);
    }

    [[nodiscard]] std::optional<std::string> objectionToLink(const std::string& path,
                                                             const std::vector<std::string>& parts,
                                                             const std::string& target) {
        links_.insert(path);
        // Upwards first, as far as the application's folder, and then only down: after a name,
        // which may be a link itself, nobody knows where upwards leads.
        auto above = static_cast<std::ptrdiff_t>(parts.size()) - 2;
        bool down = false;
        for (const std::string& part : partsOf(target)) {
            const bool up = part == "..";
            above -= up ? 1 : 0;
            if (part.empty() || above < 0 || (up && down)) return "koppeling naar buiten";
            down = down || (!up && part != ".");
        }
        return std::nullopt;
    }

    /// What is written there would land where the link leads.
    [[nodiscard]] bool isBelowLink(const std::vector<std::string>& parts) const {
        std::string path;
        for (const std::string& part : parts) {
            path += (path.empty() ? "" : "/") + part;
            if (links_.contains(path)) return true;
        }
        return false;
    }

    std::uint64_t most_;
    std::string name_ = "het begin";
    ArchiveMember member_{};
    std::uint64_t size_ = 0;
    std::uint64_t total_ = 0;
    std::set<std::string> seen_;
    std::set<std::string> links_;
};

/// For whoever only wants to know whether there is an objection.
struct Nobody final : ArchiveReceiver {
    std::optional<Message> member(const ArchiveMember&) override { return std::nullopt; }
    std::optional<Message> content(std::span<const std::uint8_t>) override { return std::nullopt; }
};

} // namespace

std::optional<Message> readArchive(std::span<const std::uint8_t> image, ArchiveReceiver& receiver,
                                   std::uint64_t most) {
    Gunzip unpacked(image);
    Members members(most);
    Block block;
    std::size_t got = 0;
    const auto next = [&] {
        got = unpacked.read(block);
        return got == block.size();
    };
    while (next() && !isEmpty(block)) {
        if (auto objection = members.objectionTo(block)) return *std::move(objection);
        if (auto failure = receiver.member(members.last())) return failure;
        for (std::uint64_t left = members.size(); left > 0;) {
            if (!next()) return "het archief is niet heel";
            const auto part = std::min<std::uint64_t>(left, block.size());
            if (auto failure = receiver.content(std::span(block).first(part))) return failure;
            left -= part;
        }
    }
    // The end is an empty block. Whatever else came after it, some would read on.
    if (got != block.size()) return "het archief is niet heel";
    std::uint64_t padding = 0;
    while (next())
        if (!isEmpty(block) || ++padding > mostPadding) return "inhoud na het einde";
    if (got != 0 || !unpacked.isComplete()) return "het archief is niet heel";
    return members.any() ? std::nullopt : std::optional<Message>("het archief is leeg");
}

std::optional<std::string> objectionTo(std::span<const std::uint8_t> image, std::uint64_t most) {
    Nobody nobody;
    const auto objection = readArchive(image, nobody, most);
    return objection ? std::optional(objection->builtIn()) : std::nullopt;
}

} // namespace wegslot
