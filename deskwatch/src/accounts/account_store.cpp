#include "accounts/account_store.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "device/application_ids.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what, const fs::path& file) {
    throw std::runtime_error("cannot " + what + " " + file.string() + ": " + std::strerror(errno));
}

/// Writes a file that only its owner reads, to the disk.
void writeDurably(const fs::path& file, const std::string& text) {
    const FileDescriptor descriptor(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!descriptor.isOpen()) {
        fail("write", file);
    }
    for (std::size_t written = 0; written < text.size();) {
        const auto count = ::write(descriptor.get(), text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            fail("write", file);
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (fsync(descriptor.get()) != 0) {
        fail("write", file);
    }
}

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
    std::error_code error;
    fs::create_directories(folder_, error);
    const auto file = fileOf(account.id);
    const auto aside = folder_ / (std::to_string(account.id) + ".new");
    try {
        writeDurably(aside, accountJson(account));
    } catch (const std::runtime_error&) {
        fs::remove(aside, error);
        throw;
    }
    if (std::rename(aside.c_str(), file.c_str()) != 0) {
        fail("write", file);
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
        fail("open", file);
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
