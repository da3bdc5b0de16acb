#ifndef VCONF_H
#define VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

/// The device's shared settings. Keys under "db/" and "file/" persist; keys under "memory/" are gone when the device
/// boots.

typedef struct _keynode_t keynode_t;

/// Called on the main loop of the watching process after each write, whichever process made it and whether or not the
/// value is another one. The node has the value of that time and lives for the call: of writes that came before the
/// main loop ran, the last is heard alone, and an earlier one once more if another watched key was written in between.
typedef void (*vconf_callback_fn)(keynode_t* node, void* user_data);

/// Reads a key. Returns 0; or -1 when it was never set, which leaves *intval alone, or when it holds no integer, which
/// overwrites *intval.
int vconf_get_int(const char* in_key, int* intval);

/// Writes a key. Returns 0 or -1.
int vconf_set_int(const char* in_key, const int intval);

/// The text of a key, or null. The caller releases it with free().
char* vconf_get_str(const char* in_key);

/// Writes a key. Returns 0 or -1.
int vconf_set_str(const char* in_key, const char* strval);

/// Watches a key; several callbacks may watch the same one. Returns 0, or -1 when the key was never set or the callback
/// watches it already.
int vconf_notify_key_changed(const char* in_key, vconf_callback_fn cb, void* user_data);

/// Ends a watch. Returns 0, or -1 when there is none. A callback that ends another watch of its key is still followed
/// by that one's.
int vconf_ignore_key_changed(const char* in_key, vconf_callback_fn cb);

/// The key's name; it belongs to the node.
char* vconf_keynode_get_name(keynode_t* keynode);

/// The key's new integer, -1 when it holds none.
int vconf_keynode_get_int(keynode_t* keynode);

/// The key's new text, null when it holds none; it belongs to the node.
char* vconf_keynode_get_str(keynode_t* keynode);

#ifdef __cplusplus
}
#endif

#endif
