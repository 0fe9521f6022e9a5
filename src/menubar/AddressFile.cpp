#include "menubar/AddressFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "statusnotifier/Registry.h"

namespace nevo::menubar {

using statusnotifier::ItemAddress;
using statusnotifier::Registry;

namespace {
std::filesystem::path addressFile() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (folder == nullptr || *folder == '\0') return {};
    return std::filesystem::path(folder) / "nevo-menubar-items";
}
}  // namespace

std::vector<ItemAddress> loadAddresses() {
    std::vector<ItemAddress> addresses;
    std::ifstream stream(addressFile());
    ItemAddress address;
    while (addresses.size() < Registry::mostItems && stream >> address.owner >> address.path) {
        bool isAddress = sd_bus_service_name_is_valid(address.owner.c_str()) > 0 &&
                         sd_bus_object_path_is_valid(address.path.c_str()) > 0;
        if (isAddress) addresses.push_back(address);
    }
    return addresses;
}

void saveAddresses(const std::vector<ItemAddress>& addresses) {
    auto file = addressFile();
    if (file.empty()) return;
    auto draft = file;
    draft += ".new";
    std::ofstream stream(draft, std::ios::trunc);
    for (const ItemAddress& address : addresses) {
        stream << address.owner << ' ' << address.path << '\n';
    }
    stream.close();
    std::error_code ignored;
    if (stream) std::filesystem::rename(draft, file, ignored);
}

}  // namespace nevo::menubar
