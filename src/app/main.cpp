// wegslot: locks the computer when its user walks away with their keys.

#include "app/arguments.h"
#include "app/linux/folders.h"
#include "app/linux/user_language.h"
#include "app/qt/application.h"
#include "base/text.h"
#include "update/bundle_info.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int exitUsage = 2;

int complain(const std::string& message, int status) {
    // It may repeat what was typed, or what somebody had typed.
    std::fprintf(stderr, "wegslot: %s\n", wegslot::printable(message).c_str());
    return status;
}

} // namespace

int main(int argc, char** argv) {
    using namespace wegslot;
    const UserLanguage language(folders::variable);
    const auto command = parseArguments({argv + 1, argv + argc});
    if (!command) return complain(command.failure().message.translated(), exitUsage);
    // These answer without bus, display or event loop.
    if (std::holds_alternative<command::Help>(*command)) {
        std::fputs(helpText().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    if (std::holds_alternative<command::Version>(*command)) {
        std::puts(versionLine(WEGSLOT_VERSION, WEGSLOT_BUILD).c_str());
        return EXIT_SUCCESS;
    }
    return runApplication(*command, {.version = WEGSLOT_VERSION, .build = WEGSLOT_BUILD}, argc,
                          argv);
}
