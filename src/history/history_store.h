// Where the history goes.
#pragma once

#include "history/minute.h"

namespace wegslot::history {

class HistoryStore {
public:
    HistoryStore() = default;
    HistoryStore(const HistoryStore&) = delete;
    HistoryStore& operator=(const HistoryStore&) = delete;
    virtual ~HistoryStore() = default;

    /// Keeps `minute` in place of what it had of the same run and minute. Does not wait for a disk,
    /// and whether it succeeds is the store's business.
    virtual void keep(Minute minute) = 0;
};

} // namespace wegslot::history
