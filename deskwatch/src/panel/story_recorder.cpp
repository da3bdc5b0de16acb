#include "panel/story_recorder.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "text/value_output.h"

namespace deskwatch {

StoryRecorder::StoryRecorder(std::string folder, std::filesystem::path file, EventRing& ring,
                             std::function<void()> tell)
    : folder_(std::move(folder)), file_(std::move(file)), ring_(ring), tell_(std::move(tell)) {
    tellState();
}

void StoryRecorder::start() {
    if (process_) {
        return;
    }
    lines_ = 0;
    error_.clear();
    said_.clear();
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
    followed_.emplace(file_, [this](const std::string& text) {
        lines_ += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
        tellState();
    });
    process_.emplace(
        std::vector<std::string>{"--device", folder_, "record", file_.string()},
        [this](const std::string& line) { said_ = line; }, [this](int status) { onEnd(status); });
    tellState();
}

void StoryRecorder::stop() {
    if (process_) {
        process_->interrupt();
    }
}

std::string StoryRecorder::text() const {
    std::ifstream stream(file_, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void StoryRecorder::onEnd(int status) {
    followed_->read();
    followed_.reset();
    process_.reset();
    if (status != 0) {
        error_ = status < 0 ? "the recording ended suddenly" : said_; // what it said at its start does not explain that
    }
    tellState();
}

void StoryRecorder::tellState() {
    ring_.setState("recording", jsonText({{"on", process_.has_value() && lines_ > 0},
                                          {"lines", lines_},
                                          {"error", error_.empty() ? nlohmann::ordered_json(nullptr)
                                                                   : nlohmann::ordered_json(error_)}}));
    tell_();
}

} // namespace deskwatch
