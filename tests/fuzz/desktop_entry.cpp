// A file among the installed applications, as any package or program may have written it.

#include "platform/linux/media/desktop_entry.h"
#include "platform/linux/media/desktop_entry_text.h"
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

    // One field is changed and no other, wherever it stood.
    auto hidden = *entry;
    hidden.hidden = true;
    const std::string changed = withFields(text, {{"Hidden", "true"}});
    expect(readDesktopEntry(changed) == hidden);
    expect(withFields(changed, {{"Hidden", "true"}}) == changed);
    hidden.hidden = false;
    expect(readDesktopEntry(withFields(changed, {{"Hidden", std::nullopt}})) == hidden);
    return 0;
}
