// The members of an image. The input is the archive before it is zipped, so that the campaign
// reaches its members; the zip itself is flipped bit by bit in the unit tests.

#include "tests/fuzz/expect.h"
#include "update/archive_reader.h"

#include <cstdint>
#include <vector>

#include <zlib.h>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    z_stream stream{};
    constexpr int gzip = 15 + 16;
    expect(deflateInit2(&stream, 1, Z_DEFLATED, gzip, 8, Z_DEFAULT_STRATEGY) == Z_OK);
    std::vector<std::uint8_t> packed(deflateBound(&stream, size));
    stream.next_in = const_cast<Bytef*>(data); // NOLINT: the library only reads
    stream.avail_in = static_cast<uInt>(size);
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    expect(deflate(&stream, Z_FINISH) == Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    const auto objection = objectionTo(packed);
    expect(!objection || !objection->empty());
    // Nothing is accepted that does not end in empty blocks.
    if (!objection) expect(size % 512 == 0 && data[size - 1] == 0);
    return 0;
}
