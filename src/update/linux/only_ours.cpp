#include "update/linux/only_ours.h"

#include <string_view>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// Many systems give each user a group of their own and let it write.
bool isOwnGroup(gid_t group) {
    const passwd* const user = getpwuid(geteuid());
    const std::string_view name = user == nullptr ? "" : user->pw_name;
    const struct group* const found = getgrgid(group);
    return found != nullptr && name == found->gr_name && *found->gr_mem == nullptr;
}

bool isOf(const std::filesystem::path& path, bool rootToo) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) != 0 || S_ISLNK(facts.st_mode)) return false;
    if (facts.st_uid != geteuid() && !(rootToo && facts.st_uid == 0)) return false;
    if ((facts.st_mode & S_IWOTH) != 0) return false;
    return (facts.st_mode & S_IWGRP) == 0 || isOwnGroup(facts.st_gid);
}

} // namespace

bool isOnlyOurs(const std::filesystem::path& path) { return isOf(path, false); }

bool isOursOrTheSystems(const std::filesystem::path& path) { return isOf(path, true); }

} // namespace wegslot
