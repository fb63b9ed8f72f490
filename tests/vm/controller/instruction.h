// What a test tells the virtual controller to do: one line of text each, read here and carried
// out by the director.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "advertiser.h"
#include "flood.h"
#include "scan.h"

namespace controller {

/// device NAME address=AA:BB:CC:DD:EE:FF [type=public|random] [rssi=DBM] [interval=SECONDS]
///        [data=HEX] [name=TEXT] [manufacturer=HEX] [connectable]
struct PutDevice {
    std::string name;
    Advertisement advertisement;
    double interval = 0.3;
};

/// rssi NAME DBM
struct SetRssi {
    std::string name;
    int rssi = 0;
};

/// silent NAME, loud NAME
struct SetLoudness {
    enum class Loudness { Silent, Loud };

    std::string name;
    Loudness loudness = Loudness::Loud;
};

/// filter-duplicates obey|ignore
struct SetDuplicateFilter {
    DuplicateFilter filter = DuplicateFilter::Ignore;
};

/// flood count=DEVICES rate=REPORTS-A-SECOND seconds=SECONDS
struct StartFlood {
    FloodPlan plan;
};

/// What the last flood delivered: flood-result
struct TellFloodResult {};

/// What the controller is doing: status
struct TellStatus {};

/// Pull the controller out of the machine, put it back: unplug, plug
struct Unplug {};

struct Plug {};

/// End the program: quit
struct Quit {};

/// Why a line is no instruction, in a few words.
struct Misunderstood {
    std::string why;
};

using Instruction = std::variant<PutDevice, SetRssi, SetLoudness, SetDuplicateFilter, StartFlood,
                                 TellFloodResult, TellStatus, Unplug, Plug, Quit, Misunderstood>;

Instruction parseInstruction(std::string_view line);

} // namespace controller
