#include "coupling/page.h"

#include "base/text.h"
#include "coupling/obstacle_words.h"

#include <cmath>
#include <utility>

namespace wegslot::coupling {
namespace {

Choice main(Action action, Message label) {
    return {.action = action, .label = std::move(label), .isMain = true};
}

Choice back() { return {.action = Action::back, .label = message("Terug")}; }

Choice close() { return {.action = Action::close, .label = message("Sluit")}; }

Message seconds(Seconds value) { return std::to_string(std::lround(value.count())); }

/// In two groups of three, as phones show it.
std::string spelled(std::uint32_t code) {
    std::string digits = std::to_string(code % 1'000'000);
    digits.insert(0, 6 - digits.size(), '0');
    return digits.substr(0, 3) + " " + digits.substr(3);
}

class PageOf {
public:
    explicit PageOf(const PageFacts& facts) : facts_(facts) {}

    Page operator()(const step::Choosing&) const {
        Page page{.title = message("Wat wil je koppelen?"),
                  .text = message("Wegslot koppelt het één keer met deze computer, kijkt of het in "
                                  "je zak te horen is, en maakt er dan een sleutel van."),
                  .choices = {close(),
                              {.action = Action::watch, .label = message("Horloge")},
                              {.action = Action::android, .label = message("Android-telefoon")},
                              {.action = Action::iphone, .label = message("iPhone")}}};
        if (facts_.canPaste)
            page.choices.insert(page.choices.begin() + 1,
                                {.action = Action::paste, .label = message("Plak identiteit")});
        return page;
    }

    Page operator()(const step::Pasting& step) const {
        return {.title = message("Plak de identiteit"),
                .text =
                    message("Van een Mac, een andere computer of een programma dat haar uitleest: "
                            "32 hexadecimale cijfers, base64 of een stuk plist. Ze wordt niet "
                            "getoond en blijft op deze computer."),
                .detail = step.fault ? step.fault->message : Message(),
                .choices = {back(), main(Action::paste, message("Maak er een sleutel van"))},
                .asksForIdentity = true};
    }

    Page operator()(const step::Pasted& step) const {
        return {.title = message("%1 is een sleutel", {step.name}),
                .text = message("Wegslot luistert er alleen naar. Hoort het niets, ontgrendel het "
                                "apparaat dan; zit je zoals altijd, stel het dan in het paneel in "
                                "met Stel in vanaf hier."),
                .choices = {main(Action::close, message("Klaar"))}};
    }

    Page operator()(const step::Preparing&) const {
        return {.title = message("Even kijken of het kan"),
                .text = message("Deze computer wordt zichtbaar voor je apparaat. Zolang het "
                                "koppelen duurt, let Wegslot niet op je sleutels."),
                .choices = {back()}};
    }

    Page operator()(const step::Visible& step) const {
        return {.title = message("Tik op %1", {step.name}),
                .text = whereToTap(),
                .detail = step.again
                              ? message("De verbinding viel weg. Tik er nog eens op.")
                              : message("Het duurt soms een halve minuut. Staat het er dan niet? "
                                        "Zet Bluetooth op je apparaat uit en weer aan, en vergeet "
                                        "daar een oude koppeling met deze computer."),
                .until = step.until,
                .choices = {back()}};
    }

    Page operator()(const step::Acquainted& step) const {
        return {.title = step.visitor.name
                             ? message("Deze computer kent %1 nog", {*step.visitor.name})
                             : message("Deze computer kent dit apparaat nog"),
                .text = message("Er is een koppeling van eerder. Die moet hier weg voordat er een "
                                "nieuwe kan komen. Vergeet hem ook op je apparaat zelf."),
                .until = step.until,
                .choices = {{.action = Action::no, .label = message("Laat staan")},
                            main(Action::yes, message("Verwijder de oude"))}};
    }

    Page operator()(const step::Bonding& step) const {
        return {.title = facts_.kind == Kind::watch ? message("Bevestig op je horloge")
                                                    : message("Bevestig op je telefoon"),
                .text = message("Je apparaat vraagt of het mag koppelen. Zeg daar ja."),
                .until = step.until,
                .choices = {back()}};
    }

    Page operator()(const step::Comparing& step) const {
        return {.title = message("Toont je apparaat dezelfde code?"),
                .text = message("Bevestig de code ook op je apparaat zelf."),
                .code = spelled(step.code),
                .until = step.until,
                .choices = {{.action = Action::no, .label = message("Nee, een andere")},
                            {.action = Action::yes, .label = message("Ja, dezelfde")}}};
    }

    Page operator()(const step::Identifying& step) const {
        return {.title = message("Gekoppeld, nog een ogenblik"),
                .text =
                    message("Je apparaat moet nog zeggen waaraan het voortaan te herkennen is."),
                .until = step.until,
                .choices = {back()}};
    }

    Page operator()(const step::Owning& step) const {
        return {.title = step.visitor.name ? message("Is %1 van jou?", {*step.visitor.name})
                                           : message("Is dit apparaat van jou?"),
                .text = message("Het is nu met deze computer gekoppeld. Zeg je nee, dan vergeet de "
                                "computer het weer."),
                .until = step.until,
                .choices = {{.action = Action::no, .label = message("Nee")},
                            {.action = Action::yes, .label = message("Ja")}}};
    }

    Page operator()(const step::PuttingBack&) const {
        return {.title = message("Een ogenblik"),
                .text = message("Wegslot zet Bluetooth terug zoals het was."),
                .choices = {close()}};
    }

    Page operator()(const step::ListeningLit& step) const {
        return {.title = facts_.kind == Kind::watch
                             ? message("Houd je horloge om")
                             : message("Houd het scherm van je telefoon aan"),
                .text = message("Wegslot luistert of het te horen is."),
                .until = step.until,
                .choices = {back()}};
    }

    Page operator()(const step::Pocketing&) const {
        if (facts_.kind == Kind::watch)
            return {.title = message("Nu zoals altijd"),
                    .text =
                        message("Laat je horloge om en doe gewoon wat je doet. Wegslot luistert "
                                "twee minuten."),
                    .choices = {back(), main(Action::proceed, message("Ga verder"))}};
        return {.title = message("Doe je telefoon in je zak"),
                .text = message("Vergrendel hem eerst en blijf zitten zoals je altijd zit. Wegslot "
                                "luistert twee minuten: zo wordt duidelijk wat het straks hoort."),
                .choices = {back(), main(Action::proceed, message("Hij zit in mijn zak"))}};
    }

    Page operator()(const step::ListeningAway& step) const {
        return {.title = message("Wegslot luistert"),
                .text = message("Doe gewoon wat je doet, en laat je apparaat waar het is."),
                .until = step.until,
                .choices = {back()}};
    }

    Page operator()(const step::Judged& step) const {
        if (std::holds_alternative<audibility::Silent>(step.audibility)) return silent(step);
        const auto* const moderate = std::get_if<audibility::Moderate>(&step.audibility);
        Page page = moderate == nullptr ? good(step) : withGaps(step, moderate->longestGap);
        page.choices.push_back(
            {.action = Action::setFromHere, .label = message("Stel in vanaf hier")});
        page.choices.push_back(main(Action::close, message("Klaar")));
        return page;
    }

    Page operator()(const step::Hindered& step) const {
        return {.title = message("Koppelen gaat nu niet"),
                .text = words(step.trouble),
                .choices = {close(), main(Action::proceed, message("Probeer opnieuw"))}};
    }

    Page operator()(const step::Failed& step) const {
        return {.title = message("Niet gekoppeld"),
                .text = failure(step),
                .choices = {close(), main(Action::proceed, message("Probeer opnieuw"))}};
    }

    Page operator()(const step::Closed&) const { return {}; }

private:
    [[nodiscard]] Message whereToTap() const {
        switch (facts_.kind) {
        case Kind::iphone:
            return message("Open op je iPhone Instellingen, Bluetooth. Het staat er als "
                           "hartslagmeter, omdat telefoons weinig anders tonen; er wordt niets "
                           "gemeten.");
        case Kind::android:
            return message("Open op je telefoon Instellingen, Bluetooth, Nieuw apparaat koppelen. "
                           "Het staat er als hartslagmeter, omdat telefoons weinig anders tonen; "
                           "er wordt niets gemeten.");
        case Kind::watch:
            break;
        }
        return message("Open op je horloge Instellingen, Bluetooth; op een Apple Watch staat het "
                       "onder de gezondheidsapparaten. Het staat er als hartslagmeter; er wordt "
                       "niets gemeten.");
    }

    /// What its owner may or must do with the entry on the device itself.
    [[nodiscard]] Message afterwards() const {
        if (facts_.kind == Kind::android)
            return message("Laat %1 op je telefoon staan: zonder een gekoppeld apparaat nemen "
                           "sommige telefoons een nieuwe identiteit.",
                           {facts_.name});
        return message("%1 mag je op je apparaat nu vergeten.", {facts_.name});
    }

    [[nodiscard]] Message thresholdOf(const step::Judged& step) const {
        const Message threshold = std::to_string(std::lround(step.threshold->value));
        if (step.unheard)
            return message("Het is nu even niet te horen; de drempel blijft %1 dBm. %2",
                           {threshold, afterwards()});
        return message("De drempel is %1 dBm, 15 dB onder wat het in je zak gaf. %2",
                       {threshold, afterwards()});
    }

    [[nodiscard]] Page good(const step::Judged& step) const {
        return {.title = message("%1 is een sleutel", {step.name}),
                .text = message("Het is goed te horen, ook waar je het draagt."),
                .detail = thresholdOf(step)};
    }

    [[nodiscard]] Page withGaps(const step::Judged& step, Seconds gap) const {
        const Seconds needed = lostTimeoutFor(gap);
        Page page{.title = message("%1 is een sleutel", {step.name}), .detail = thresholdOf(step)};
        if (facts_.lostTimeout >= needed) {
            page.text = message("Het zweeg tot %1 s. Wegslot wacht %2 s op een stille sleutel, en "
                                "merkt zo lang niet dat je weg bent.",
                                {seconds(gap), seconds(facts_.lostTimeout)});
            return page;
        }
        page.text = message("Het zweeg tot %1 s, en Wegslot houdt een sleutel na %2 s stilte voor "
                            "weg. Wacht het %3 s, dan gaat dat goed; zo lang merkt het dan ook "
                            "niet dat je weg bent.",
                            {seconds(gap), seconds(facts_.lostTimeout), seconds(needed)});
        page.choices.push_back(
            {.action = Action::takeLostTimeout, .label = message("Wacht %1 s", {seconds(needed)})});
        return page;
    }

    [[nodiscard]] Page silent(const step::Judged& step) const {
        return {.title = step.name.empty() ? message("Je apparaat is niet te horen")
                                           : message("%1 is niet te horen", {step.name}),
                .text = message("Daar waar je het draagt zwijgt het te lang, en dus kan het zelf "
                                "geen sleutel zijn. Was het scherm aan, en zat het daarna in je "
                                "zak, dan helpt nog eens luisteren niet."),
                .detail = message("Wat wel kan: een horloge, een label of armband met een vast "
                                  "adres, of op Android een app die een baken uitzendt. De "
                                  "koppeling wordt weer vergeten; vergeet %1 ook op je apparaat.",
                                  {facts_.name}),
                .choices = {{.action = Action::proceed, .label = message("Luister nog eens")},
                            main(Action::close, message("Sluit"))}};
    }

    [[nodiscard]] Message failure(const step::Failed& step) const {
        switch (step.ending) {
        case Ending::nobodyCame:
            return message("Niemand tikte op %1. Stond het er niet? Zet Bluetooth op je apparaat "
                           "uit en weer aan. Sommige telefoons tonen zulke apparaten pas na een "
                           "ontwikkelaarsoptie, en horloges met Wear OS hebben er een app voor "
                           "nodig.",
                           {facts_.name});
        case Ending::cancelledThere:
            return message("Je apparaat zei nee. Tik daar op Koppel, en kies hier opnieuw.");
        case Ending::noAnswer:
            return message("Je apparaat gaf geen antwoord. Houd het scherm aan en probeer het "
                           "opnieuw.");
        case Ending::otherCode:
            return message("De codes verschilden. Dan kan een ander ertussen zitten: er is niets "
                           "gekoppeld.");
        case Ending::bondFromBefore:
            return message("Je apparaat kent deze computer nog van eerder. Vergeet daar die "
                           "koppeling, en probeer het opnieuw.");
        case Ending::bondFailed:
            if (facts_.kind == Kind::watch)
                return message("Je horloge en deze computer werden het niet eens (%1).",
                               {printable(step.why)});
            return message("Je apparaat en deze computer werden het niet eens (%1). Opnieuw "
                           "proberen gaat dan zonder code.",
                           {printable(step.why)});
        case Ending::noIdentity:
            return message("Je apparaat koppelde, maar zei niet waaraan het te herkennen is. "
                           "Sommige horloges doen dat nooit; het kan dan geen sleutel zijn.");
        case Ending::notTheOwners:
            return message("Dat apparaat is hier weer vergeten. Vergeet %1 ook daar.",
                           {facts_.name});
        case Ending::tookTooLong:
            break;
        }
        return message("Het duurde te lang. Er is niets gekoppeld.");
    }

    const PageFacts& facts_;
};

} // namespace

Page pageOf(const Step& step, const PageFacts& facts) { return std::visit(PageOf(facts), step); }

} // namespace wegslot::coupling
