#include "update/gunzip.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace wegslot {
namespace {

enum class Progress { going, ended, failed };

/// Two's power of the largest window, and the library's way to ask for a gzip header and no other.
constexpr int gzipOnly = 15 + 16;

} // namespace

struct Gunzip::State {
    z_stream stream{};
    std::span<const std::uint8_t> rest;
    Progress progress = Progress::going;
};

Gunzip::Gunzip(std::span<const std::uint8_t> packed) : state_(std::make_unique<State>()) {
    state_->rest = packed;
    if (inflateInit2(&state_->stream, gzipOnly) != Z_OK) state_->progress = Progress::failed;
}

Gunzip::~Gunzip() { inflateEnd(&state_->stream); }

std::size_t Gunzip::read(std::span<std::uint8_t> block) {
    z_stream& stream = state_->stream;
    stream.next_out = block.data();
    stream.avail_out = static_cast<uInt>(block.size());
    while (stream.avail_out > 0 && state_->progress == Progress::going) {
        constexpr std::size_t most = std::numeric_limits<uInt>::max();
        const auto offered = static_cast<uInt>(std::min(state_->rest.size(), most));
        stream.next_in = const_cast<Bytef*>(state_->rest.data()); // NOLINT: the library only reads
        stream.avail_in = offered;
        const int result = inflate(&stream, Z_NO_FLUSH);
        state_->rest = state_->rest.subspan(offered - stream.avail_in);
        if (result == Z_STREAM_END) state_->progress = Progress::ended;
        // Without any progress, the end is missing.
        if (result != Z_OK && result != Z_STREAM_END) state_->progress = Progress::failed;
    }
    return state_->progress == Progress::failed ? 0 : block.size() - stream.avail_out;
}

bool Gunzip::isComplete() const {
    return state_->progress == Progress::ended && state_->rest.empty();
}

} // namespace wegslot
