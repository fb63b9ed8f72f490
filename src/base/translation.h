// Texts for people, in their language. In the code they are Dutch, whole sentences, and the names
// by which a catalogue has their translations; without a catalogue they are shown as they stand.
// What is written for programs and for the log is never translated.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wegslot {

/// Where translations come from.
class Translations {
public:
    virtual ~Translations() = default;

    /// Nothing for a text that has none.
    [[nodiscard]] virtual std::optional<std::string> find(std::string_view text) const = 0;

    /// The form for `count` of a text that was registered in two forms, of which `one` is the
    /// first.
    [[nodiscard]] virtual std::optional<std::string> find(std::string_view one,
                                                          unsigned long count) const = 0;

    /// What all texts are translated by from now on; null for none, which is how it begins. Returns
    /// the ones before. For the start of a program and for tests: no lock guards it.
    static const Translations* use(const Translations* translations);
};

/// A text that is put into words where it is shown. `%1` to `%9` in it are places, filled in by
/// number, so that a language can have them in another order.
class Message {
public:
    Message() = default;

    /// What is the same in every language: a name, a number, what a system said.
    Message(std::string text) : text_(std::move(text)) {} // NOLINT: meant to convert
    Message(const char* text) : text_(text) {}            // NOLINT: meant to convert
    /// With places for what may not be the same.
    Message(const char* text, std::vector<Message> places)
        : text_(text),
          places_(std::move(places)) {}

    /// In the user's language, for the user's eyes.
    [[nodiscard]] std::string translated() const;

    /// As it stands in the code: for the log, for files, for other programs.
    [[nodiscard]] std::string builtIn() const;

    [[nodiscard]] bool isEmpty() const { return text_.empty(); }

    /// What in it is the same in every language, in the order of the places: names and numbers.
    [[nodiscard]] std::vector<std::string> verbatim() const;

    /// Whether the words are the same.
    friend bool operator==(const Message& one, const Message& other) {
        return one.builtIn() == other.builtIn();
    }

private:
    friend Message message(const char* text, std::vector<Message> places);
    friend Message asItStands(std::string text);
    friend Message quoted(std::string words, Message meaning);
    friend Message counted(const char* one, const char* many, unsigned long count,
                           std::vector<Message> places);

    std::string text_;
    std::string many_; ///< empty for a text without a number that decides its form
    unsigned long count_ = 0;
    bool isTranslated_ = false;
    bool isQuoted_ = false; ///< its one place holds what it means, and is no place in it
    std::vector<Message> places_;
};

/// As it stands in the code: tests name what they saw.
std::ostream& operator<<(std::ostream& out, const Message& message);

/// Has `text` taken into the catalogues' template, as the two below have theirs.
[[nodiscard]] Message message(const char* text, std::vector<Message> places = {});

/// In the form that `count` takes in a language: in Dutch `one` for 1 and `many` else.
[[nodiscard]] Message counted(const char* one, const char* many, unsigned long count,
                              std::vector<Message> places = {});

/// What another Wegslot tells as it stands in its code, without places: in the user's language
/// where there are words for it.
[[nodiscard]] Message asItStands(std::string text);

/// What a system or a library says, in its own language: shown where texts are as they stand, and
/// elsewhere `meaning`.
[[nodiscard]] Message quoted(std::string words, Message meaning);

/// `message` put into words at once.
[[nodiscard]] std::string translated(const char* text, std::vector<Message> places = {});

} // namespace wegslot
