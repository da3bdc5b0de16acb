#pragma once
#include <bundle.h>
#include <stdbool.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef enum {
    MESSAGE_PORT_ERROR_NONE,
    MESSAGE_PORT_ERROR_IO_ERROR = -5,
    MESSAGE_PORT_ERROR_OUT_OF_MEMORY = -12,
    MESSAGE_PORT_ERROR_INVALID_PARAMETER = -22,
    MESSAGE_PORT_ERROR_PORT_NOT_FOUND = -0x01130000 | 0x01,
    MESSAGE_PORT_ERROR_CERTIFICATE_NOT_MATCH,
    MESSAGE_PORT_ERROR_MAX_EXCEEDED,
    MESSAGE_PORT_ERROR_RESOURCE_UNAVAILABLE
} message_port_error_e;
typedef void (*message_port_message_cb)(int, const char*, const char*, bool, bundle*, void*);
int message_port_register_local_port(const char*, message_port_message_cb, void*);
int message_port_unregister_local_port(int);
int message_port_check_remote_port(const char*, const char*, bool*);
int message_port_send_message(const char*, const char*, bundle*);
#ifdef __cplusplus
}
#endif
