// What an installed Wegslot asks of a release before it takes anything from it, asked of one that
// tools/release made: accept_release INFO FEED IMAGE. Ends with 1 and the objection, if there is
// one.

#include "update/archive_reader.h"
#include "update/bundle_info.h"
#include "update/release.h"
#include "update/verify.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <optional>
#include <span>
#include <sstream>
#include <string>

namespace {

using namespace wegslot;

std::string contentOf(const char* path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::optional<std::string> objection(const BundleInfo& info, const std::string& feed,
                                     const std::string& content) {
    const std::span image(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    const auto release = readRelease(feed);
    if (!release) return "feed: " + release.failure().message.builtIn();
    if (!info.key || info.feed.empty()) return "this bundle does not update itself";
    if (release->build != info.build) return "another build than that of the bundle";
    if (release->version != info.version) return "another version than that of the bundle";
    if (sha256(image) != release->sha256) return "another hash than that of the image";
    if (!isSigned(image, release->signature, *info.key)) return "not signed";
    return objectionTo(image);
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): the test sees that as well
int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const BundleInfo info = readBundleInfo(contentOf(argv[1]));
    const auto found = objection(info, contentOf(argv[2]), contentOf(argv[3]));
    if (found) std::puts(found->c_str());
    return found ? 1 : 0;
}
