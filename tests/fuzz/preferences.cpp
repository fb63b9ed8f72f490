// The file of preferences as anybody may have typed it. Reading it never fails in another way than
// by saying so, what a setting then reads as is within its bounds, and what is written back is the
// same to who reads it next.

#include "base/virtual_time.h"
#include "model/linux/preferences_file.h"
#include "model/settings.h"
#include "tests/fuzz/expect.h"
#include "tests/support/temporary_folder.h"

#include <cstdint>
#include <fstream>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    const auto file = folder.path() / "preferences.json";
    std::filesystem::remove(PreferencesFile::copyOf(file));
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    VirtualTime time{TimePoint{}};
    PreferencesFile read(file, time);
    const Settings settings(read);
    read.write("fuzzed", true);
    const bool isKept = !read.flush();
    expect(isKept == !read.fault().get());
    if (!isKept) return 0;
    const PreferencesFile again(file, time, PreferencesFile::Access::readOnly);
    expect(!again.fault().get());
    expect(again.values() == read.values());
    return 0;
}
