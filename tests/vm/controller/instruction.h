// What a test tells the virtual controller to do: one line of text each, read here and carried
// out by the director. NAME is a device's; TEXT is escaped as in text.h; HEX is pairs of digits.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "device.h"
#include "flood.h"
#include "scan.h"

namespace controller {

/// device NAME address=AA:BB:CC:DD:EE:FF [type=public|random] [rssi=DBM] [interval=SECONDS]
///        [data=HEX] [name=TEXT] [manufacturer=HEX] [connectable]
/// and, for when it is connected,
///        [link-rssi=DBM] [advertises-while-linked] [mute] [mtu=BYTES] [unpairable] [silent]
///        [gap-name=TEXT] [model=TEXT] [battery=open|protected] [mouse]
/// and, to go by private addresses instead of its own,
///        [irk=HEX | changing] [changes-every=SECONDS]
/// and, for when it connects to us,
///        [pairs=when-refused|at-once|when-asked] [owner=types|answers|nothing] [asks-always]
///        [older-pairing] [keeps-identity]
/// The key of irk= has its least significant byte first. A device under a name in use replaces
/// the earlier one, which loses its link.
struct PutDevice {
    std::string name;
    DeviceDescription description;
};

/// How strongly it is heard: rssi NAME DBM for advertisements, link-rssi NAME DBM over a link
struct SetRssi {
    enum class Of { Advertisements, Link };

    std::string name;
    Of of = Of::Advertisements;
    int rssi = 0;
};

/// One word, then NAME.
struct SwitchDevice {
    enum class To {
        /// silent, loud: whether it advertises
        Silent,
        Loud,
        /// connectable, non-connectable: how it advertises; the data stays as it is
        Connectable,
        NotConnectable,
        /// mute, unmute: whether it answers on the attribute channel
        Mute,
        Unmute,
        /// admit: connections to it succeed, as at first
        Admit,
        /// refuse: they are lost before anything was said
        Refuse,
        /// forget: it loses its bond
        Forget
    };

    std::string name;
    To to = To::Loud;
};

/// The controller gives connections to it up with this status, two hexadecimal digits: fail NAME
/// [STATUS]. Kernel 6.1 then makes no further connection before the adapter was off.
struct FailConnections {
    std::string name;
    Fail failure;
};

/// Its link is lost for this reason, two hexadecimal digits: drop NAME [REASON]
struct DropLink {
    std::string name;
    std::uint8_t reason = static_cast<std::uint8_t>(Status::ConnectionTimeout);
};

/// The text of its Model Number, any bytes: model NAME TEXT
struct SetModel {
    std::string name;
    std::string model;
};

/// It says these bytes on the attribute channel, whatever they mean: garbage NAME HEX
struct SayGarbage {
    std::string name;
    Bytes bytes;
};

/// It goes by another private address, which is the answer: rotate NAME
struct ChangeAddress {
    std::string name;
};

/// What we advertise, set by set: see
struct SeeAdvertising {};

/// It connects to us, if we advertise that it may: connect NAME
struct Connect {
    std::string name;
};

/// It pairs on the link that it has made to us: pair NAME
struct Pair {
    std::string name;
};

/// It asks, on the link that it has made to us, what we serve, or once more for what it was
/// refused: look NAME
struct Look {
    std::string name;
};

/// What its owner says to the question of a pairing: answer NAME yes|no|DIGITS
struct AnswerQuestion {
    std::string name;
    OwnersAnswer answer;
};

/// What a device that connects to us has seen, and how its pairing goes: central-status NAME
struct TellCentral {
    std::string name;
};

/// How the controller can advertise, for the next time that it is plugged in; whether it refuses to
/// counts at once: advertising older|extended [sets=NUMBER] [refuses]
struct SetAdvertisingAbility {
    AdvertisingAbility ability;
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

/// What the controller is doing, and which devices are connected: status
struct TellStatus {};

/// What a device is doing, and what was done to it so far: device-status NAME
struct TellDevice {
    std::string name;
};

/// The controller reports itself broken, two hexadecimal digits: hardware-error [CODE]
struct ReportHardwareError {
    std::uint8_t code = 0;
};

/// Pull the controller out of the machine, put it back: unplug, plug
struct Unplug {};

struct Plug {};

/// End the program: quit
struct Quit {};

/// Why a line is no instruction, in a few words.
struct Misunderstood {
    std::string why;
};

using Instruction =
    std::variant<PutDevice, SetRssi, SwitchDevice, FailConnections, DropLink, SetModel, SayGarbage,
                 ChangeAddress, SeeAdvertising, Connect, Pair, Look, AnswerQuestion, TellCentral,
                 SetAdvertisingAbility, SetDuplicateFilter, StartFlood, TellFloodResult, TellStatus,
                 TellDevice, ReportHardwareError, Unplug, Plug, Quit, Misunderstood>;

Instruction parseInstruction(std::string_view line);

} // namespace controller
