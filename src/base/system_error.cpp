#include "base/system_error.h"

#include <cerrno>
#include <cstring>

namespace wegslot {
namespace {

/// Those that a person may meet, who can do something about most.
Message meaning(int number) {
    switch (number) {
    case EACCES:
    case EPERM:
        return message("geen toegang");
    case ENOENT:
        return message("bestaat niet");
    case EEXIST:
        return message("bestaat al");
    case ENOTDIR:
        return message("een deel van het pad is geen map");
    case EISDIR:
        return message("is een map");
    case ENOSPC:
    case EDQUOT:
        return message("er is geen ruimte meer");
    case EROFS:
        return message("daar kan alleen gelezen worden");
    case EIO:
        return message("lezen of schrijven mislukt");
    case ENOEXEC:
        return message("is geen programma");
    case ECONNREFUSED:
        return message("verbinding geweigerd");
    default:
        return message("systeemfout %1", {std::to_string(number)});
    }
}

} // namespace

Message systemError(int number) {
    const char* const words = strerrordesc_np(number);
    return quoted(words == nullptr ? std::to_string(number) : words, meaning(number));
}

} // namespace wegslot
