#ifndef MESSAGE_PORT_H
#define MESSAGE_PORT_H

#include <stdbool.h>

#include "bundle.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    MESSAGE_PORT_ERROR_NONE = 0,
    MESSAGE_PORT_ERROR_IO_ERROR = -5,
    MESSAGE_PORT_ERROR_OUT_OF_MEMORY = -12,
    MESSAGE_PORT_ERROR_INVALID_PARAMETER = -22,
    MESSAGE_PORT_ERROR_PORT_NOT_FOUND = -0x01130000 | 0x01,
    MESSAGE_PORT_ERROR_CERTIFICATE_NOT_MATCH = -0x01130000 | 0x02,
    MESSAGE_PORT_ERROR_MAX_EXCEEDED = -0x01130000 | 0x03,
    MESSAGE_PORT_ERROR_RESOURCE_UNAVAILABLE = -0x01130000 | 0x04
} message_port_error_e;

/// Called on the main loop for each message. The texts and the bundle belong to the framework and live for the call;
/// remote_port is null when the sender named none.
typedef void (*message_port_message_cb)(int local_port_id, const char* remote_app_id, const char* remote_port,
                                        bool trusted_remote_port, bundle* message, void* user_data);

/// Opens a port of this application. Returns a positive port id, or a negative message_port_error_e.
int message_port_register_local_port(const char* local_port, message_port_message_cb callback, void* user_data);

/// Closes a port. Returns 0 or a message_port_error_e.
int message_port_unregister_local_port(int local_port_id);

/// Whether an application has that port open now. Returns 0 or a message_port_error_e.
int message_port_check_remote_port(const char* remote_app_id, const char* remote_port, bool* exist);

/// Delivers only to a port that is open now; starts nothing. A message of more than 16 KiB after base64 encoding
/// answers MESSAGE_PORT_ERROR_MAX_EXCEEDED: 12223 bytes of one value with a key of three letters are the most. Returns
/// 0 or a message_port_error_e at once.
int message_port_send_message(const char* remote_app_id, const char* remote_port, bundle* message);

#ifdef __cplusplus
}
#endif

#endif
