#ifndef TESK_CONSUMER_IPC_MGR_H
#define TESK_CONSUMER_IPC_MGR_H

#include <bundle.h>

/// The channel to the mail application: a message port on which its requests arrive, and requests back to it.
class TeskConsumerIpcMgr {
public:
    /// The process's one instance, or null while memory is short.
    static TeskConsumerIpcMgr* getInstance();

    TeskConsumerIpcMgr();
    virtual ~TeskConsumerIpcMgr();
    TeskConsumerIpcMgr(const TeskConsumerIpcMgr&) = delete;
    TeskConsumerIpcMgr& operator=(const TeskConsumerIpcMgr&) = delete;

    /// Opens the port. Returns whether that worked.
    bool init();

    /// Closes the port. Returns whether that worked. The port belongs to the process, so no instance is needed.
    static bool deinit();

    /// Sends a request to the mail application. It is lost when that cannot take it; no answer comes.
    void sendEasItpolicyReq(const char* req, const char* msg);

    /// Runs a request at once as if it had come over the port.
    void policyTest(const char* req, const char* msg);

private:
    static void __teskItpolicyReqCb(int localPortId, const char* remoteAppId, const char* remotePort,
                                    bool trustedRemotePort, bundle* message, void* userData);
};

#endif
