#pragma once
#ifdef __cplusplus
extern "C" {
#endif
typedef struct _keynode_t keynode_t;
typedef void (*vconf_callback_fn)(keynode_t*, void*);
int vconf_get_int(const char*, int*);
int vconf_set_int(const char*, int);
char* vconf_get_str(const char*);
int vconf_set_str(const char*, const char*);
int vconf_notify_key_changed(const char*, vconf_callback_fn, void*);
int vconf_ignore_key_changed(const char*, vconf_callback_fn);
char* vconf_keynode_get_name(keynode_t*);
int vconf_keynode_get_int(keynode_t*);
char* vconf_keynode_get_str(keynode_t*);
#ifdef __cplusplus
}
#endif
