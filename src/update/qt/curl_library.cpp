#include "update/qt/curl_library.h"

#include <string>

#include <dlfcn.h>

namespace wegslot {
namespace {

Failure failure() {
    const char* const reason = dlerror();
    return Failure{
        Message("libcurl: %1", {reason == nullptr ? message("niet te laden") : Message(reason)})};
}

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

Result<CurlLibrary> load() {
    void* const library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return failure();
    CurlLibrary found;
    decltype(&curl_global_init) global_init = nullptr;
    const bool isWhole = find(library, "curl_global_init", global_init) &&
                         find(library, "curl_easy_init", found.easy_init) &&
                         find(library, "curl_easy_setopt", found.easy_setopt) &&
                         find(library, "curl_easy_getinfo", found.easy_getinfo) &&
                         find(library, "curl_easy_header", found.easy_header) &&
                         find(library, "curl_easy_strerror", found.easy_strerror) &&
                         find(library, "curl_easy_cleanup", found.easy_cleanup) &&
                         find(library, "curl_multi_init", found.multi_init) &&
                         find(library, "curl_multi_setopt", found.multi_setopt) &&
                         find(library, "curl_multi_add_handle", found.multi_add_handle) &&
                         find(library, "curl_multi_remove_handle", found.multi_remove_handle) &&
                         find(library, "curl_multi_socket_action", found.multi_socket_action) &&
                         find(library, "curl_multi_info_read", found.multi_info_read) &&
                         find(library, "curl_multi_cleanup", found.multi_cleanup) &&
                         find(library, "curl_slist_append", found.slist_append) &&
                         find(library, "curl_slist_free_all", found.slist_free_all) &&
                         find(library, "curl_url", found.url) &&
                         find(library, "curl_url_set", found.url_set) &&
                         find(library, "curl_url_get", found.url_get) &&
                         find(library, "curl_url_cleanup", found.url_cleanup) &&
                         find(library, "curl_free", found.free);
    if (!isWhole) return failure();
    if (global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        return Failure{message("libcurl: begint niet")};
    return found;
}

} // namespace

const Result<CurlLibrary>& CurlLibrary::loaded() {
    static const Result<CurlLibrary> library = load(); // never unloaded: it may have threads
    return library;
}

} // namespace wegslot
