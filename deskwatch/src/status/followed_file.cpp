#include "status/followed_file.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace deskwatch {

FollowedFile::FollowedFile(std::filesystem::path file, Listener listener, std::streamoff begin)
    : file_(std::move(file)), listener_(std::move(listener)), begin_(begin), watch_(file_, [this] { read(); }) {}

void FollowedFile::read() {
    if (!stream_.is_open()) {
        if (std::filesystem::exists(file_) && !std::filesystem::is_regular_file(file_)) {
            throw std::runtime_error(file_.string() + " is not a regular file");
        }
        stream_.open(file_, std::ios::binary);
        stream_.seekg(begin_);
    }
    stream_.clear(); // its end was reached the last time
    std::array<char, 65536> buffer{};
    while (stream_.read(buffer.data(), buffer.size()), stream_.gcount() > 0) {
        listener_(std::string(buffer.data(), static_cast<std::size_t>(stream_.gcount())));
    }
}

} // namespace deskwatch
