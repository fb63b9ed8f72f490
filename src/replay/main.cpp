// wegslot-replay: runs the whole core on a recorded trace and prints what it did.

#include "base/text.h"
#include "replay/replay.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {
namespace {

constexpr int exitFailure = 1;
constexpr int exitInvalid = 2;

constexpr auto help = R"(Gebruik: wegslot-replay [--set NAAM=WAARDE]... BESTAND

Speelt een opname af op de hele kern van Wegslot, in virtuele tijd, en schrijft
wat de kern deed naar de standaarduitvoer, één JSON-object per regel.

  BESTAND             de opname (JSON Lines), of - voor de standaardinvoer
  --set NAAM=WAARDE   gebruik deze voorkeur in plaats van die in de opname;
                      mag herhaald worden, bijvoorbeeld --set awayDelay=10
  --help              toon deze tekst
  --version           toon de versie

Eindigt met 0, met 2 en één regel bij een ongeldige opname of aanroep, en met 1
als de opname niet te lezen is.
)";

struct Arguments {
    std::string file;
    Preferences overrides;
};

int complain(const std::string& message, int status) {
    std::fflush(stdout);
    std::fprintf(stderr, "wegslot-replay: %s\n", printable(message).c_str());
    return status;
}

Result<Arguments> parse(const std::vector<std::string_view>& words) {
    Arguments arguments;
    bool fileGiven = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--set") {
            const std::string_view pair = i + 1 < words.size() ? words[++i] : "";
            const auto equals = pair.find('=');
            if (equals == std::string_view::npos) return Failure{"--set verwacht NAAM=WAARDE"};
            const auto name = pair.substr(0, equals);
            auto value = readPreference(name, pair.substr(equals + 1));
            if (!value)
                return Failure{"--set " + std::string(pair) + ": " +
                               value.failure().message.builtIn()};
            arguments.overrides.insert_or_assign(std::string(name), *std::move(value));
            continue;
        }
        const bool isSwitch = words[i].size() > 1 && words[i].starts_with('-');
        if (isSwitch) return Failure{"onbekende schakelaar " + std::string(words[i])};
        if (fileGiven) return Failure{"meer dan één bestand: " + std::string(words[i])};
        arguments.file = words[i];
        fileGiven = true;
    }
    if (!fileGiven) return Failure{"geen bestand opgegeven (zie --help)"};
    return arguments;
}

int replay(const Arguments& arguments) {
    const bool fromInput = arguments.file == "-";
    std::ifstream file(arguments.file);
    // A folder can be opened, and then holds nothing.
    if (!fromInput && (!file || std::filesystem::is_directory(arguments.file)))
        return complain("kan " + arguments.file + " niet lezen", exitFailure);

    Replay replay([](std::string_view line) { std::fwrite(line.data(), 1, line.size(), stdout); },
                  arguments.overrides);
    const auto result = replay.run(fromInput ? std::cin : file);
    if (!result) return complain(result.failure().message.builtIn(), exitInvalid);
    if (std::fflush(stdout) != 0) return complain("kan de uitvoer niet schrijven", exitFailure);
    return 0;
}

int run(const std::vector<std::string_view>& words) {
    for (const auto word : words) {
        if (word == "--help") return std::fputs(help, stdout), 0;
        if (word == "--version") return std::puts("wegslot-replay " WEGSLOT_VERSION), 0;
    }
    const auto arguments = parse(words);
    if (!arguments) return complain(arguments.failure().message.builtIn(), exitInvalid);
    return replay(*arguments);
}

} // namespace
} // namespace wegslot

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    return wegslot::run({argv + 1, argv + argc});
}
