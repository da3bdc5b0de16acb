/* A mail application's part in enforcing policies, for a watch: it launches the service, waits until the service's
 * message port is open, sends, and sends again when the service has ended in between. Launch it with the extra data
 * "req" and "msg" of a request; it tells on standard error what it does. docs/client.md explains each step. */
#include <app_control.h>
#include <bundle.h>
#include <glib.h>
#include <message_port.h>
#include <service_app.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define SERVICE "com.velmor.tesk-agent"
#define PORT "eas-itpolicy-port"

enum { PAUSE_MS = 100, MOST_TRIES = 100 }; /* ten seconds */
enum { MOST_BYTES = 12190 };               /* of "req" and "msg" together */

struct request {
    char* req;
    char* msg;
    int tries;
};

static GQueue outbox = G_QUEUE_INIT; /* of struct request, in the order in which they are to arrive */
static guint timer;

static void request_free(struct request* request) {
    free(request->req);
    free(request->msg);
    g_free(request);
}

/* Any launch request starts the service, or gives a running one ten more seconds. */
static void launch_service(void) {
    app_control_h launch = NULL;
    app_control_create(&launch);
    app_control_set_app_id(launch, SERVICE);
    const int result = app_control_send_launch_request(launch, NULL, NULL);
    if (result != APP_CONTROL_ERROR_NONE) {
        fprintf(stderr, "mail_client: launch refused: %d\n", result);
    }
    app_control_destroy(launch);
}

static int send_request(const struct request* request) {
    if (strlen(request->req) + strlen(request->msg) > MOST_BYTES) {
        return MESSAGE_PORT_ERROR_MAX_EXCEEDED; /* the platform would lose the next message, too */
    }
    bundle* const message = bundle_create();
    bundle_add_str(message, "req", request->req);
    bundle_add_str(message, "msg", request->msg);
    const int result = message_port_send_message(SERVICE, PORT, message);
    bundle_free(message);
    return result;
}

/* Errors that a repetition can mend: the port is not open yet, or the service ended while it read. */
static bool may_be_repeated(int result) {
    return result == MESSAGE_PORT_ERROR_PORT_NOT_FOUND || result == MESSAGE_PORT_ERROR_IO_ERROR ||
           result == MESSAGE_PORT_ERROR_RESOURCE_UNAVAILABLE;
}

static bool service_listens(void) {
    bool exists = false;
    return message_port_check_remote_port(SERVICE, PORT, &exists) == MESSAGE_PORT_ERROR_NONE && exists;
}

/* Sends what waits. A request that fails stays first, so that the order is kept. */
static gboolean send_waiting(gpointer unused) {
    (void)unused;
    while (!g_queue_is_empty(&outbox)) {
        struct request* const request = g_queue_peek_head(&outbox);
        const int result = service_listens() ? send_request(request) : MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
        if (may_be_repeated(result) && ++request->tries < MOST_TRIES) {
            if (request->tries % 10 == 0) { /* it may have ended itself meanwhile */
                launch_service();
            }
            return G_SOURCE_CONTINUE;
        }
        fprintf(stderr, "mail_client: %s: %s (%d)\n", request->req, result == 0 ? "sent" : "not sent", result);
        request_free(g_queue_pop_head(&outbox));
    }
    timer = 0;
    return G_SOURCE_REMOVE;
}

static void on_launch(app_control_h launch, void* unused) {
    (void)unused;
    struct request* const request = g_new0(struct request, 1);
    if (app_control_get_extra_data(launch, "req", &request->req) != APP_CONTROL_ERROR_NONE) {
        request_free(request); /* somebody opens the application */
        return;
    }
    if (app_control_get_extra_data(launch, "msg", &request->msg) != APP_CONTROL_ERROR_NONE) {
        request->msg = strdup("");
    }
    g_queue_push_tail(&outbox, request);
    launch_service();
    if (timer == 0) {
        timer = g_timeout_add(PAUSE_MS, send_waiting, NULL);
    }
}

/* The service's only request: the wearer chose to stop synchronising instead of setting a lock. */
static void on_request(int port, const char* sender, const char* sender_port, bool trusted, bundle* message,
                       void* unused) {
    (void)port, (void)sender_port, (void)trusted, (void)unused;
    char* req = NULL;
    if (bundle_get_str(message, "req", &req) == BUNDLE_ERROR_NONE && req != NULL) {
        fprintf(stderr, "mail_client: %s asks: %s\n", sender, req);
    }
}

static bool on_create(void* unused) {
    (void)unused;
    return message_port_register_local_port(PORT, on_request, NULL) > 0;
}

static void on_terminate(void* unused) {
    (void)unused;
    g_queue_clear_full(&outbox, (GDestroyNotify)request_free);
}

int main(int argc, char** argv) {
    service_app_lifecycle_callback_s callbacks = {on_create, on_terminate, on_launch};
    return service_app_main(argc, argv, &callbacks, NULL);
}
