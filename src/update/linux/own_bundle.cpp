#include "update/linux/own_bundle.h"

#include "update/linux/only_ours.h"

#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace wegslot {

std::optional<OwnBundle> bundleOf(const std::filesystem::path& program) {
    std::error_code failed;
    const auto folder = std::filesystem::canonical(program, failed).parent_path();
    if (failed) return std::nullopt;
    // It says who may update this program: beside one in a folder for everybody anybody can lay it.
    if (!isOursOrTheSystems(folder) || !isOursOrTheSystems(folder / infoFile)) return std::nullopt;
    std::ifstream file(folder / infoFile, std::ios::binary);
    if (!file) return std::nullopt;
    return OwnBundle{folder, readBundleInfo(std::string(std::istreambuf_iterator(file), {}))};
}

} // namespace wegslot
