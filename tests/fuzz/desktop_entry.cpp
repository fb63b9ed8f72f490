// A file among the installed applications, as any package or program may have written it.

#include "platform/linux/media/desktop_entry.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <string>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto entry = readDesktopEntry(text);
    if (!entry) return 0;
    expect(text.find("[Desktop Entry]") != std::string::npos);
    expect(entry->program.find('/') == std::string::npos);
    expect(entry->name.size() + entry->windowClass.size() < size);
    // What follows in another group changes nothing.
    expect(readDesktopEntry(text + "\n[Other]\nName=x\nName[nl]=y\nHidden=true\n") == entry);
    return 0;
}
