#include "message_port.h"

#include "bundle_handle.h"
#include "guard.h"
#include "port_exchange.h"
#include "text.h"

using host::guarded;
using host::PortExchange;

namespace {

bool isName(const char* text) {
    return text != nullptr && *text != '\0';
}

} // namespace

int message_port_register_local_port(const char* local_port, message_port_message_cb callback, void* user_data) {
    if (!isName(local_port) || callback == nullptr || !host::isUtf8(local_port)) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, MESSAGE_PORT_ERROR_IO_ERROR,
                        [&] { return PortExchange::get().open(local_port, callback, user_data); });
}

int message_port_unregister_local_port(int local_port_id) {
    if (local_port_id <= 0) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, MESSAGE_PORT_ERROR_IO_ERROR,
                        [&] { return PortExchange::get().close(local_port_id); });
}

int message_port_check_remote_port(const char* remote_app_id, const char* remote_port, bool* exist) {
    if (!isName(remote_app_id) || !isName(remote_port) || exist == nullptr) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, MESSAGE_PORT_ERROR_IO_ERROR, [&] {
        *exist = PortExchange::get().isOpen(remote_app_id, remote_port);
        return MESSAGE_PORT_ERROR_NONE;
    });
}

int message_port_send_message(const char* remote_app_id, const char* remote_port, bundle* message) {
    if (!isName(remote_app_id) || !isName(remote_port) || message == nullptr) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, MESSAGE_PORT_ERROR_IO_ERROR,
                        [&] { return PortExchange::get().send(remote_app_id, remote_port, *message); });
}
