// What proving an image costs: its hash and its signature, in processor time, and the memory that
// takes on top of the image itself.

#include "tests/support/signing.h"
#include "update/verify.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace wegslot;

constexpr std::size_t megabyte = 1'000'000;

/// The most memory this process has had, in bytes; forgets it when asked to.
class PeakMemory {
public:
    static void forget() { std::ofstream("/proc/self/clear_refs") << "5"; }

    static double bytes() {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmHWM:")) return 1024 * std::stod(line.substr(6));
        return 0;
    }
};

/// As the feed offers it and the updater proves it.
void verifyImage(benchmark::State& state) {
    std::vector<std::uint8_t> image(static_cast<std::size_t>(state.range(0)) * megabyte);
    for (std::size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13U);
    const Signer owner;
    const std::string signature = owner.sign(image);
    const std::string hash = sha256(image);
    PeakMemory::forget();
    const double before = PeakMemory::bytes();
    for (auto _ : state)
        if (sha256(image) != hash || !isSigned(image, signature, owner.publicKey))
            state.SkipWithError("an honest image was refused");
    state.counters["extra_MB"] = (PeakMemory::bytes() - before) / megabyte;
}
BENCHMARK(verifyImage)->Arg(5)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
