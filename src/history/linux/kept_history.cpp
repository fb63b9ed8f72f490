#include "history/linux/kept_history.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace wegslot::history {

int daysToKeep(double typed) {
    constexpr int usual = 7;
    if (std::isnan(typed)) return usual;
    return static_cast<int>(std::clamp(std::round(typed), 0.0, double{HistoryFile::mostDays}));
}

KeptHistory::KeptHistory(Surroundings surroundings)
    : around_(std::move(surroundings)),
      file_(around_.file, daysToKeep(around_.remembered.historyDays.get())),
      keeper_({.settings = around_.settings,
               .scanner = around_.scanner,
               .monitor = around_.monitor,
               .clock = around_.clock,
               .session = around_.session,
               .activity = around_.activity,
               .rowOf = [this](const Uuid& key) { return rowOf(key); },
               .store = file_}) {
    forgetRemovedKeys();
    days_ = around_.remembered.historyDays.follow([this](double typed) {
        const int days = daysToKeep(typed);
        keeper_.setKeeping(days > 0);
        file_.setDays(days);
    });
}

Row KeptHistory::rowOf(const Uuid& key) {
    KeyRows rows = around_.remembered.historyRows.get();
    if (const auto found = rows.find(key); found != rows.end()) return found->second;
    const Row row = freshRow(rows, around_.draw);
    rows.emplace(key, row);
    around_.remembered.historyRows.set(std::move(rows));
    return row;
}

/// Not at once: who takes back a removal has the same key again. What is kept of it stays, of a key
/// that nobody knows any more.
void KeptHistory::forgetRemovedKeys() {
    KeyRows rows = around_.remembered.historyRows.get();
    const auto& keys = around_.settings.keys.get();
    if (keys.empty()) return; // or the list could not be read
    const auto isGone = [&keys](const auto& row) {
        return std::ranges::find(keys, row.first, &KeyDevice::id) == keys.end();
    };
    if (std::erase_if(rows, isGone) > 0) around_.remembered.historyRows.set(std::move(rows));
}

} // namespace wegslot::history
