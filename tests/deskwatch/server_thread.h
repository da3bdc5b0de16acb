#ifndef SERVER_THREAD_H
#define SERVER_THREAD_H

#include <future>
#include <string>
#include <thread>

#include "c_owners.h"
#include "exchange_server/http_server.h"

/// A desk server that answers as long as this object lives, from a thread of its own.
class ServerThread {
public:
    explicit ServerThread(deskwatch::DeskServer& server, const std::string& certificate = "") {
        std::promise<std::string> url;
        auto known = url.get_future();
        thread_ = std::thread([this, &server, certificate, &url] {
            g_main_context_push_thread_default(context_.get());
            {
                const deskwatch::HttpServer http(server, 0, certificate, [](const std::string&) {});
                url.set_value(http.url());
                g_main_loop_run(loop_.get());
            }
            g_main_context_pop_thread_default(context_.get());
        });
        url_ = known.get();
    }

    ~ServerThread() {
        g_main_context_invoke(
            context_.get(),
            [](gpointer loop) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop*>(loop));
                return G_SOURCE_REMOVE;
            },
            loop_.get());
        thread_.join();
    }
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

    const std::string& url() const { return url_; }

private:
    c::Owner<GMainContext, g_main_context_unref> context_{g_main_context_new()};
    c::MainLoopOwner loop_{g_main_loop_new(context_.get(), FALSE)};
    std::string url_;
    std::thread thread_;
};

#endif
