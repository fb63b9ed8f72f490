// What the core costs: per advertisement, per tick, per line of a trace.

#include "base/text.h"
#include "base/virtual_time.h"
#include "bench/passing_radio.h"
#include "bench/spread_id.h"
#include "core/app_model.h"
#include "hud/hidden_hud.h"
#include "identity/identities.h"
#include "replay/replay.h"
#include "stage/staged_platform.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace wegslot;
using bench::PassingRadio;
using bench::spreadId;

constexpr std::array<std::uint8_t, 4> makerData{0x4C, 0x00, 0x10, 0x05};

// The core with some keys, the first devices of the room, and strangers up to as many as asked for.
class Room {
public:
    explicit Room(std::uint64_t devices, std::uint64_t keys = 3) : devices_(devices) {
        model_.settings().pauseWhileActive.set(false);
        std::vector<KeyDevice> list;
        for (std::uint64_t key = 0; key < keys; ++key)
            list.push_back({.id = spreadId(key), .name = "Sleutel", .threshold = Dbm{-75}});
        model_.settings().keys.set(std::move(list));
        static_cast<void>(model_.monitor());
        central_.turnOn();
        for (int round = 0; round < 8; ++round) {
            for (std::uint64_t device = 0; device < devices_; ++device)
                hear(device, -60);
            time_.advance(std::chrono::milliseconds{500});
        }
    }

    void hear(std::uint64_t device, int rssi) {
        central_.hear({.id = spreadId(device), .rssi = rssi, .manufacturerData = makerData});
    }
    VirtualTime& time() { return time_; }

private:
    std::uint64_t devices_;
    VirtualTime time_{TimePoint{std::chrono::hours{500000}}};
    MemoryStore store_;
    PassingRadio central_;
    StagedPlatform platform_{time_, time_};
    AppModel model_{
        {store_, central_, platform_.ports, [] { return std::make_unique<HiddenHud>(); }}};
};

// Decode, filter, sample. Time passes as at 400 advertisements a second, without ticks.
void advertisement(benchmark::State& state) {
    const auto devices = static_cast<std::uint64_t>(state.range(0));
    Room room(devices);
    std::uint64_t next = 0;
    for (auto _ : state) {
        room.hear(next % devices, -50 - static_cast<int>(next % 40));
        ++next;
        room.time().sleep(std::chrono::microseconds{2500});
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(advertisement)->RangeMultiplier(10)->Range(10, 100'000);

// One tick over devices and keys with eight samples each in the window.
void tick(benchmark::State& state) {
    const auto devices = static_cast<std::uint64_t>(state.range(0));
    Room room(devices, static_cast<std::uint64_t>(state.range(1)));
    for (auto _ : state) {
        state.PauseTiming();
        // The samples stay as old as they were, so that each tick does the same work.
        for (std::uint64_t device = 0; device < devices; ++device) {
            room.hear(device, -60);
            room.hear(device, -62);
        }
        state.ResumeTiming();
        room.time().advance(std::chrono::seconds{1});
    }
}
BENCHMARK(tick)
    ->ArgsProduct({{10, 100, 1'000, 10'000, 100'000}, {3}})
    ->ArgsProduct({{1'000}, {1, 10, 100, 1'000}})
    ->Unit(benchmark::kMicrosecond);

// Whose a private address is that no object had before: nobody's, which takes longest. No identity
// has explained any yet, so both orders of each are tried.
void newAddress(benchmark::State& state) {
    Identities identities(*std::pmr::new_delete_resource());
    for (std::uint64_t i = 0; i < static_cast<std::uint64_t>(state.range(0)); ++i) {
        KnownIdentity known{.key = {}, .name = "Telefoon"};
        known.key.bytes = spreadId(i).bytes;
        identities.put(known);
    }
    std::vector<std::string> addresses;
    for (std::uint64_t i = 0; i < 1024; ++i) {
        std::string address = "4A";
        for (std::size_t octet = 0; octet < 5; ++octet)
            address += ":" + hexadecimal(spreadId(i).bytes[octet], 2);
        addresses.push_back(std::move(address));
    }
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(identities.whose(addresses[next++ % addresses.size()]));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(newAddress)->Arg(1)->Arg(8)->Arg(64);

std::string traceOf(std::size_t advertisements) {
    std::string trace = "{\"t\":0,\"bluetooth\":{\"state\":\"poweredOn\"}}\n";
    for (std::size_t i = 0; i < advertisements; ++i) {
        const std::string milliseconds = std::to_string(1000 + i * 2 % 1000).substr(1);
        trace += "{\"t\":" + std::to_string(i * 2 / 1000) + "." + milliseconds +
                 ",\"advertisement\":{\"id\":\"" + spreadId(i % 200).text() + "\",\"rssi\":-" +
                 std::to_string(40 + i % 50) + ",\"manufacturerData\":\"4c001005\"}}\n";
    }
    return trace;
}

// Advertisements a second through wegslot-replay's own code, reading included.
void replay(benchmark::State& state) {
    const auto advertisements = static_cast<std::size_t>(state.range(0));
    const std::string trace = traceOf(advertisements);
    for (auto _ : state) {
        std::istringstream input(trace);
        Replay run([](std::string_view line) { benchmark::DoNotOptimize(line); }, {});
        if (!run.run(input)) state.SkipWithError("the trace is not valid");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(replay)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
