#include "accounts/account_store.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "c_owners.h"
#include "device/application_ids.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

} // namespace

AccountStore::AccountStore(const DeviceLayout& layout) : folder_(layout.applicationData(ids::mail) / "accounts") {}

std::vector<int> AccountStore::ids() const {
    std::vector<int> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder_, error)) {
        const auto id = wholeNumber(entry.path().stem().string());
        if (entry.path().extension() == ".json" && id) {
            found.push_back(*id);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

MailAccount AccountStore::read(int id) const {
    const auto file = fileOf(id);
    std::ifstream stream(file, std::ios::binary);
    if (!stream.is_open()) {
        throw std::runtime_error("account " + std::to_string(id) +
                                 " is not connected to a server; deskwatch mail connect does that");
    }
    try {
        return readAccountJson(std::string(std::istreambuf_iterator<char>(stream), {}));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

void AccountStore::write(const MailAccount& account) const {
    std::error_code ignored;
    fs::create_directories(folder_, ignored);
    const auto file = fileOf(account.id);
    const auto text = accountJson(account);
    constexpr auto toTheDisk =
        static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
    constexpr int ownerReads = 0600;
    GError* error = nullptr;
    if (g_file_set_contents_full(file.c_str(), text.data(), static_cast<gssize>(text.size()), toTheDisk, ownerReads,
                                 &error) == FALSE) {
        throw std::runtime_error("cannot write " + file.string() + ": " + c::takeMessage(error));
    }
}

void AccountStore::remove(int id) const {
    std::error_code error;
    if (!fs::remove(fileOf(id), error) && error) {
        throw std::runtime_error("cannot remove " + fileOf(id).string() + ": " + error.message());
    }
}

FileDescriptor AccountStore::lock(int id) const {
    std::error_code error;
    fs::create_directories(folder_, error);
    const auto file = folder_ / (std::to_string(id) + ".lock");
    FileDescriptor descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!descriptor.isOpen()) {
        throw std::runtime_error("cannot open " + file.string() + ": " + std::strerror(errno));
    }
    if (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        throw std::runtime_error("another command is at account " + std::to_string(id) +
                                 "; two handshakes of one account would spoil each other's keys");
    }
    return descriptor;
}

fs::path AccountStore::fileOf(int id) const {
    return folder_ / (std::to_string(id) + ".json");
}

} // namespace deskwatch
