#include "history/linux/history_file.h"

#include "history/linux/history_writer.h"
#include "log/log.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>
#include <variant>

namespace wegslot::history {
namespace {

struct Clear {};

struct SetDays {
    int days;
};

using Order = std::variant<Minute, Clear, SetDays>;

template <typename T>
auto isA() {
    return [](const Order& order) { return std::holds_alternative<T>(order); };
}

struct Do {
    HistoryWriter& writer;

    void operator()(const Minute& minute) const { writer.keep(minute); }
    void operator()(Clear /*order*/) const { writer.clear(); }
    void operator()(SetDays order) const { writer.setDays(order.days); }
};

} // namespace

struct HistoryFile::Orders {
    std::mutex mutex{};
    std::deque<Order> waiting{};
    int days = 0;
    bool lossIsTold = false; ///< since the thread last had nothing to do
    bool isEnding = false;

    [[nodiscard]] bool isOff() {
        const std::lock_guard lock(mutex);
        return days == 0;
    }

    /// Whether a minute was lost for it, and nobody was told of one yet.
    [[nodiscard]] bool add(Minute minute) {
        const std::lock_guard lock(mutex);
        waiting.emplace_back(std::move(minute));
        if (std::ranges::count_if(waiting, isA<Minute>()) <= static_cast<std::ptrdiff_t>(capacity))
            return false;
        waiting.erase(std::ranges::find_if(waiting, isA<Minute>()));
        return !std::exchange(lossIsTold, true);
    }

    void add(Clear order) {
        const std::lock_guard lock(mutex);
        clear();
        waiting.emplace_back(order);
    }

    void add(SetDays order) {
        const std::lock_guard lock(mutex);
        days = order.days;
        std::erase_if(waiting, isA<SetDays>());
        if (days == 0) clear();
        waiting.emplace_back(order);
    }

    std::optional<Order> next() {
        const std::lock_guard lock(mutex);
        if (waiting.empty()) {
            lossIsTold = false;
            return std::nullopt;
        }
        Order order = std::move(waiting.front());
        waiting.pop_front();
        return order;
    }

    /// Nothing is waited for, neither an order nor the end.
    bool isQuiet() {
        const std::lock_guard lock(mutex);
        return waiting.empty() && !isEnding;
    }

    void end() {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }

private:
    void clear() {
        std::erase_if(waiting, isA<Minute>());
        std::erase_if(waiting, isA<Clear>());
    }
};

HistoryFile::HistoryFile(std::filesystem::path file, int days)
    : orders_(std::make_shared<Orders>()),
      bell_(threads_.start(
          [orders = orders_,
           writer = std::make_shared<HistoryWriter>(std::move(file))](std::string_view /*ring*/) {
              while (const auto order = orders->next())
                  std::visit(Do{*writer}, *order);
              while (orders->isQuiet() && writer->removeOld()) {
              }
              return std::nullopt;
          },
          1)) {
    setDays(days);
}

HistoryFile::~HistoryFile() { orders_->end(); }

std::filesystem::path HistoryFile::pathUnder(const std::filesystem::path& state) {
    return state / "wegslot" / "history.db";
}

void HistoryFile::keep(Minute minute) {
    if (orders_->isOff()) return;
    if (orders_->add(std::move(minute)))
        Log::write("Geschiedenis: de schijf antwoordt niet, de oudste minuten vervallen");
    wake();
}

void HistoryFile::setDays(int days) {
    orders_->add(SetDays{std::clamp(days, 0, mostDays)});
    wake();
}

void HistoryFile::clear() {
    orders_->add(Clear{});
    wake();
}

// Where one rings already, that does for both: it is taken before the orders are.
void HistoryFile::wake() { bell_.put("!"); }

} // namespace wegslot::history
