// Archives that no archiver would write, member by member, for tests.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace wegslot {

using Bytes = std::vector<std::uint8_t>;

/// One member as a test wants it, well formed unless told otherwise.
struct TarMember {
    std::string name;
    char type = '0';
    std::string content = {};
    std::string link = {};
    unsigned mode = 0644;
    std::string prefix = {};
    std::string size = {}; ///< instead of that of the content
    std::string magic = std::string("ustar\0"
                                    "00",
                                    8);
    int checksumError = 0;

    [[nodiscard]] std::string bytes() const {
        std::string header(512, '\0');
        const auto put = [&header](std::size_t at, const std::string& text) {
            header.replace(at, text.size(), text);
        };
        const auto octal = [](std::size_t width, unsigned long number) {
            char text[32];
            std::snprintf(text, sizeof text, "%0*lo", static_cast<int>(width), number);
            return std::string(text);
        };
        put(0, name);
        put(100, octal(7, mode));
        put(108, octal(7, 0));
        put(116, octal(7, 0));
        put(124, size.empty() ? octal(11, content.size()) : size);
        put(136, octal(11, 0));
        put(148, std::string(8, ' '));
        header[156] = type;
        put(157, link);
        put(257, magic);
        put(345, prefix);
        unsigned long sum = 0;
        for (const char byte : header)
            sum += static_cast<unsigned char>(byte);
        put(148, octal(6, sum + static_cast<unsigned long>(checksumError)) + std::string("\0 ", 2));
        std::string whole = header + content;
        whole.resize((whole.size() + 511) / 512 * 512, '\0');
        return whole;
    }
};

/// Packs what is added piece by piece, so that a bomb need never be whole.
class Zipper {
public:
    explicit Zipper(int level = 9) {
        deflateInit2(&stream_, level, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY);
    }
    Zipper(const Zipper&) = delete;
    Zipper& operator=(const Zipper&) = delete;
    ~Zipper() { deflateEnd(&stream_); }

    void add(const std::string& plain) { deflateAll(plain, Z_NO_FLUSH); }

    [[nodiscard]] Bytes finish() {
        deflateAll({}, Z_FINISH);
        return packed_;
    }

private:
    void deflateAll(const std::string& plain, int flush) {
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
        stream_.avail_in = static_cast<uInt>(plain.size());
        do {
            Bytes block(65536);
            stream_.next_out = block.data();
            stream_.avail_out = static_cast<uInt>(block.size());
            deflate(&stream_, flush);
            block.resize(block.size() - stream_.avail_out);
            packed_.insert(packed_.end(), block.begin(), block.end());
        } while (stream_.avail_out == 0);
    }

    z_stream stream_{};
    Bytes packed_;
};

inline Bytes zipped(const std::string& plain) {
    Zipper zipper;
    zipper.add(plain);
    return zipper.finish();
}

inline const TarMember appMember{.name = "Wegslot.app/", .type = '5', .mode = 0755};
inline const std::string tarEnd(1024, '\0');

/// An application's folder and these members in it.
inline std::string tarOf(const std::vector<TarMember>& members) {
    std::string plain = appMember.bytes();
    for (const TarMember& member : members)
        plain += member.bytes();
    return plain + tarEnd;
}

} // namespace wegslot
