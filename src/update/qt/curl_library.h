// libcurl, loaded when something is first to be fetched: with all that it brings it takes 4 MB and
// 10 ms, which a Wegslot without a feed never needs.
#pragma once

#include "base/result.h"

#include <curl/curl.h>

namespace wegslot {

/// Its functions that are used here, under the names that they have without "curl_".
struct CurlLibrary {
    decltype(&curl_easy_init) easy_init = nullptr;
    decltype(&curl_easy_setopt) easy_setopt = nullptr;
    decltype(&curl_easy_getinfo) easy_getinfo = nullptr;
    decltype(&curl_easy_header) easy_header = nullptr;
    decltype(&curl_easy_strerror) easy_strerror = nullptr;
    decltype(&curl_easy_cleanup) easy_cleanup = nullptr;
    decltype(&curl_multi_init) multi_init = nullptr;
    decltype(&curl_multi_setopt) multi_setopt = nullptr;
    decltype(&curl_multi_add_handle) multi_add_handle = nullptr;
    decltype(&curl_multi_remove_handle) multi_remove_handle = nullptr;
    decltype(&curl_multi_socket_action) multi_socket_action = nullptr;
    decltype(&curl_multi_info_read) multi_info_read = nullptr;
    decltype(&curl_multi_cleanup) multi_cleanup = nullptr;
    decltype(&curl_slist_append) slist_append = nullptr;
    decltype(&curl_slist_free_all) slist_free_all = nullptr;
    decltype(&curl_url) url = nullptr;
    decltype(&curl_url_set) url_set = nullptr;
    decltype(&curl_url_get) url_get = nullptr;
    decltype(&curl_url_cleanup) url_cleanup = nullptr;
    decltype(&curl_free) free = nullptr;

    /// The same for as long as the program runs. The failure says why it cannot be loaded.
    static const Result<CurlLibrary>& loaded();
};

/// For who has seen that it is loaded.
[[nodiscard]] inline const CurlLibrary& curl() { return *CurlLibrary::loaded(); }

} // namespace wegslot
