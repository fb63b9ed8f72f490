#include "base/translation.h"

#include <ostream>
#include <utility>

namespace wegslot {
namespace {

const Translations* inUse = nullptr;

/// `text` with what `words` says of each place in it. A place that there is nothing for stays.
template <class Words>
std::string filled(const std::string& text, std::size_t places, const Words& words) {
    std::string whole;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPlace = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' &&
                             text[i + 1] <= '9' &&
                             static_cast<std::size_t>(text[i + 1] - '1') < places;
        if (!isPlace) {
            whole += text[i];
            continue;
        }
        ++i;
        whole += words(static_cast<std::size_t>(text[i] - '1'));
    }
    return whole;
}

} // namespace

const Translations* Translations::use(const Translations* translations) {
    return std::exchange(inUse, translations);
}

std::string Message::translated() const {
    if (isQuoted_) return inUse == nullptr ? text_ : places_.front().translated();
    std::optional<std::string> found;
    if (isTranslated_ && inUse != nullptr)
        found = many_.empty() ? inUse->find(text_) : inUse->find(text_, count_);
    const std::string& own = many_.empty() || count_ == 1 ? text_ : many_;
    return filled(found ? *found : own, places_.size(),
                  [this](std::size_t place) { return places_[place].translated(); });
}

std::string Message::builtIn() const {
    if (isQuoted_) return text_;
    return filled(many_.empty() || count_ == 1 ? text_ : many_, places_.size(),
                  [this](std::size_t place) { return places_[place].builtIn(); });
}

std::vector<std::string> Message::verbatim() const {
    if (!isTranslated_ && places_.empty()) return {text_};
    std::vector<std::string> all;
    for (const Message& place : places_)
        for (std::string& text : place.verbatim())
            all.push_back(std::move(text));
    return all;
}

std::ostream& operator<<(std::ostream& out, const Message& message) {
    return out << message.builtIn();
}

Message message(const char* text, std::vector<Message> places) {
    Message message(text);
    message.isTranslated_ = true;
    message.places_ = std::move(places);
    return message;
}

Message counted(const char* one, const char* many, unsigned long count,
                std::vector<Message> places) {
    Message message(one);
    message.isTranslated_ = true;
    message.many_ = many;
    message.count_ = count;
    message.places_ = std::move(places);
    return message;
}

Message asItStands(std::string text) {
    Message message(std::move(text));
    message.isTranslated_ = true;
    return message;
}

Message quoted(std::string words, Message meaning) {
    Message message(std::move(words));
    message.isQuoted_ = true;
    message.places_ = {std::move(meaning)};
    return message;
}

std::string translated(const char* text, std::vector<Message> places) {
    return message(text, std::move(places)).translated();
}

} // namespace wegslot
