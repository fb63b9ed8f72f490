// What is kept of a minute as bytes, small because there are many: a strength that was heard takes
// three. Nothing here says which minute it is, nor of which key: who keeps the bytes knows that.
#pragma once

#include "base/result.h"
#include "history/minute.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot::history {

/// So many judgements a minute can have, a thousand times what is usual; what is beyond is left
/// out. A few bytes may say that they stand for many.
inline constexpr std::size_t mostJudgements = 1U << 16U;

/// Instants to the millisecond, rounded down, and strengths held within a byte: -128 to 127 dBm.
/// `start` is that of the minute.
[[nodiscard]] std::string packed(const KeyMinute& key, TimePoint start);
[[nodiscard]] std::string packed(const std::vector<TimePoint>& judged, TimePoint start);
/// In the words of happening_text.h.
[[nodiscard]] std::string packed(const std::vector<Event>& events, TimePoint start);

/// What was packed with the same `start`; a failure for bytes that nobody packed.
[[nodiscard]] Result<KeyMinute> unpackedKey(std::string_view bytes, TimePoint start);
[[nodiscard]] Result<std::vector<TimePoint>> unpackedJudged(std::string_view bytes,
                                                            TimePoint start);
[[nodiscard]] Result<std::vector<Event>> unpackedEvents(std::string_view bytes, TimePoint start);

} // namespace wegslot::history
