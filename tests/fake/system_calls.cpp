#include "system_calls.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "fake_platform.h"

using fake::FakePlatform;

namespace fake {

guint SystemCalls::addTimer(guint seconds, GSourceFunc callback, gpointer userData) {
    timers_[++lastId_] = {now_ + seconds, seconds, callback, userData};
    return lastId_;
}

std::optional<guint> SystemCalls::nextTimer(guint until) const {
    std::optional<guint> next;
    for (const auto& [id, timer] : timers_) {
        if (timer.due <= until && (!next || timer.due < timers_.at(*next).due)) {
            next = id;
        }
    }
    return next;
}

void SystemCalls::fire(guint id) {
    auto& timer = timers_.at(id);
    now_ = timer.due;
    timer.due += timer.interval;
    if (timer.callback(timer.userData) == G_SOURCE_REMOVE) {
        timers_.erase(id);
    }
}

void SystemCalls::passSeconds(guint seconds) {
    const guint end = now_ + seconds;
    while (const auto id = nextTimer(end)) {
        fire(*id);
    }
    now_ = end;
}

} // namespace fake

namespace {

/// The code with which a call fails that is not written down, if it does. Without a platform every call works.
std::optional<int> faultOf(const char* function) {
    return FakePlatform::exists() ? FakePlatform::current().faults.onCall(function) : std::nullopt;
}

/// Whether a call of a function that reports through errno fails; the fault's code is then the error number.
bool failsWithErrno(const char* function) {
    const auto fault = faultOf(function);
    if (fault) {
        errno = *fault;
    }
    return fault.has_value();
}

void takeBack(void* memory) {
    if (FakePlatform::exists()) {
        FakePlatform::current().takeBack(memory);
    }
}

} // namespace

// The linker sends the calls of the tested objects to __wrap_<name> and makes the library's own function __real_<name>.
extern "C" {

gboolean __real_g_source_remove(guint tag);
long __real_sysconf(int name);
int __real_open(const char* path, int flags, ...);
int __real_fclose(FILE* file);
int __real_rename(const char* from, const char* to);
int __real_mkdir(const char* path, mode_t mode);
int __real_chmod(const char* path, mode_t mode);
int __real_unlink(const char* path);
GDBusNodeInfo* __real_g_dbus_node_info_new_for_xml(const gchar* xml, GError** error);
void* __real_malloc(size_t size);
void __real_free(void* memory);
void __real_g_free(void* memory);
void* realNew(size_t size, const std::nothrow_t& tag) __asm__("__real__Znw" FAKE_SIZE_MANGLED "RKSt9nothrow_t");
void* realArrayNew(size_t size, const std::nothrow_t& tag) __asm__("__real__Zna" FAKE_SIZE_MANGLED "RKSt9nothrow_t");

void* wrapNew(size_t size, const std::nothrow_t& tag) __asm__("__wrap__Znw" FAKE_SIZE_MANGLED "RKSt9nothrow_t");
void* wrapArrayNew(size_t size, const std::nothrow_t& tag) __asm__("__wrap__Zna" FAKE_SIZE_MANGLED "RKSt9nothrow_t");

void __wrap_g_usleep(gulong microseconds) {
    auto& platform = FakePlatform::current();
    platform.call("g_usleep", microseconds);
    if (platform.system.whileSleeping) {
        platform.system.whileSleeping();
    }
}

guint __wrap_g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    auto& platform = FakePlatform::current();
    platform.call("g_timeout_add_seconds", interval);
    return platform.system.addTimer(interval, function, data);
}

gboolean __wrap_g_source_remove(guint tag) {
    auto& platform = FakePlatform::current();
    platform.call("g_source_remove");
    return platform.system.removeTimer(tag) ? TRUE : __real_g_source_remove(tag);
}

long __wrap_sysconf(int name) {
    if (name == _SC_GETPW_R_SIZE_MAX && FakePlatform::exists() && FakePlatform::current().system.userEntrySize) {
        return *FakePlatform::current().system.userEntrySize;
    }
    return __real_sysconf(name);
}

int __wrap_getpwnam_r(const char* name, passwd* entry, char* buffer, size_t size, passwd** result) {
    auto& platform = FakePlatform::current();
    *result = nullptr;
    if (const auto fault = platform.call("getpwnam_r", name, size)) {
        return *fault;
    }
    const auto user = platform.system.users.find(name);
    if (user == platform.system.users.end()) {
        return 0;
    }
    if (size <= user->first.size()) {
        return ERANGE;
    }
    std::memcpy(buffer, user->first.c_str(), user->first.size() + 1);
    *entry = {};
    entry->pw_name = buffer;
    entry->pw_uid = user->second;
    *result = entry;
    return 0;
}

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (FakePlatform::exists()) {
        const auto& moved = FakePlatform::current().system.movedFiles;
        if (const auto place = moved.find(path); place != moved.end()) {
            return __real_open(place->second.c_str(), flags, mode);
        }
    }
    return __real_open(path, flags, mode);
}

int __wrap_fclose(FILE* file) {
    if (FakePlatform::exists()) {
        FakePlatform::current().call("fclose");
    }
    return __real_fclose(file);
}

int __wrap_rename(const char* from, const char* to) {
    return failsWithErrno("rename") ? -1 : __real_rename(from, to);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    return failsWithErrno("mkdir") ? -1 : __real_mkdir(path, mode);
}

int __wrap_chmod(const char* path, mode_t mode) {
    return failsWithErrno("chmod") ? -1 : __real_chmod(path, mode);
}

int __wrap_unlink(const char* path) {
    return failsWithErrno("unlink") ? -1 : __real_unlink(path);
}

GDBusNodeInfo* __wrap_g_dbus_node_info_new_for_xml(const gchar* xml, GError** error) {
    if (FakePlatform::current().faults.onCall("g_dbus_node_info_new_for_xml")) {
        g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_PARSE, "the test says so");
        return nullptr;
    }
    return __real_g_dbus_node_info_new_for_xml(xml, error);
}

void* __wrap_malloc(size_t size) {
    return faultOf("malloc") ? nullptr : __real_malloc(size);
}

void __wrap_free(void* memory) {
    takeBack(memory);
    __real_free(memory);
}

void __wrap_g_free(void* memory) {
    takeBack(memory);
    __real_g_free(memory);
}

void* wrapNew(size_t size, const std::nothrow_t& tag) {
    return faultOf("operator new") ? nullptr : realNew(size, tag);
}

void* wrapArrayNew(size_t size, const std::nothrow_t& tag) {
    return faultOf("operator new[]") ? nullptr : realArrayNew(size, tag);
}
}
