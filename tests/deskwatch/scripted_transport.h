#ifndef SCRIPTED_TRANSPORT_H
#define SCRIPTED_TRANSPORT_H

#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "exchange/transport.h"
#include "wbxml/wbxml_codec.h"

/// A server that answers what a test wrote down, and keeps what it was sent.
class ScriptedTransport : public deskwatch::Transport {
public:
    explicit ScriptedTransport(std::deque<deskwatch::HttpReply> replies) : replies_(std::move(replies)) {}

    deskwatch::HttpReply send(const deskwatch::HttpRequest& request) override {
        requests.push_back(request);
        if (replies_.empty()) {
            throw std::runtime_error("no reply is left");
        }
        auto reply = replies_.front();
        replies_.pop_front();
        return reply;
    }

    void pause(int seconds) override { pauses.push_back(seconds); }

    /// A header of a request; empty when it has none of that name.
    std::string header(std::size_t request, const std::string& name) const {
        for (const auto& [candidate, value] : requests.at(request).headers) {
            if (candidate == name) {
                return value;
            }
        }
        return "";
    }

    deskwatch::WbxmlElement document(std::size_t request) const {
        return deskwatch::decodeWbxml(requests.at(request).body);
    }

    std::vector<deskwatch::HttpRequest> requests;
    std::vector<int> pauses;

private:
    std::deque<deskwatch::HttpReply> replies_;
};

#endif
