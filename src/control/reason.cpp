#include "control/reason.h"

#include "monitor/away_message.h"
#include "monitor/pause.h"
#include "scanner/radio_words.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace wegslot::control {
namespace {

using Names = std::vector<Message>;

struct Known {
    std::string_view code;
    std::size_t least; ///< arguments
    std::size_t most;
    Message (*words)(const Names& names);
};

constexpr std::array known{
    Known{"bluetoothOff", 0, 0, [](const Names&) { return radioWords(CentralState::poweredOff); }},
    Known{"bluetoothStarting", 0, 0,
          [](const Names&) { return radioWords(CentralState::resetting); }},
    Known{"bluetoothUnsupported", 0, 0,
          [](const Names&) { return radioWords(CentralState::unsupported); }},
    Known{"bluetoothDenied", 0, 0,
          [](const Names&) { return radioWords(CentralState::unauthorized); }},
    Known{"bluetoothNotRunning", 0, 0, [](const Names&) { return withoutRadioService(); }},
    Known{"bluetoothCoupling", 0, 0, [](const Names&) { return lentRadio(); }},
    Known{"userActive", 0, 0, [](const Names&) { return text(pause::Active{}); }},
    Known{"cameraInUse", 0, 0, [](const Names&) { return text(pause::Camera{}); }},
    Known{"microphoneInUse", 0, 1,
          [](const Names& names) {
              return text(pause::Microphone{names.empty() ? ActivityDetector::unnamedApplication
                                                          : names.front().builtIn()});
          }},
    Known{"pauseAsked", 0, 0, [](const Names&) { return message("Pauze gevraagd"); }},
    Known{"warningCancelled", 0, 0,
          [](const Names&) { return message("Waarschuwing geannuleerd"); }},
    Known{"keysAway", 0, Reason::mostArguments,
          [](const Names& names) { return awayMessage(names); }},
    Known{"switchedOff", 0, 0, [](const Names&) { return message("Bewaking uitgezet"); }},
    Known{"noKeys", 0, 0, [](const Names&) { return message("Geen sleutels"); }},
    Known{"screenUnlocked", 0, 0, [](const Names&) { return message("Scherm ontgrendeld"); }},
    Known{"lockNotConfirmed", 0, 0,
          [](const Names&) { return message("Geen bevestiging van lock ontvangen"); }},
    Known{"guardBegins", 0, 0, [](const Names&) { return message("Bewaking begint"); }},
    Known{"keyNear", 0, 0, [](const Names&) { return message("Sleutel in de buurt"); }},
    Known{"keyNotNear", 0, 0, [](const Names&) { return message("Sleutel niet meer dichtbij"); }},
    Known{"lockAsked", 0, 0, [](const Names&) { return message("Lock gevraagd"); }},
    Known{"screenLocked", 0, 0, [](const Names&) { return message("Scherm gelockt"); }}};

bool goesWith(const Known& entry, const std::vector<std::string>& arguments) {
    return arguments.size() >= entry.least && arguments.size() <= entry.most &&
           std::ranges::all_of(arguments, [](const std::string& argument) {
               return argument.size() <= Reason::longestArgument;
           });
}

Message filled(const Known& entry, const std::vector<std::string>& arguments) {
    return entry.words(Names(arguments.begin(), arguments.end()));
}

} // namespace

std::optional<Message> words(const Reason& reason) {
    const auto* const entry = std::ranges::find(known, reason.code, &Known::code);
    if (entry == known.end() || !goesWith(*entry, reason.arguments)) return std::nullopt;
    return filled(*entry, reason.arguments);
}

Reason reasonOf(const Message& words) {
    const std::vector<std::string> arguments = words.verbatim();
    for (const Known& entry : known)
        if (goesWith(entry, arguments) && filled(entry, arguments) == words)
            return {.code = std::string(entry.code), .arguments = arguments};
    return {};
}

} // namespace wegslot::control
