#include "system_calls_of_sqlite.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <stdexcept>
#include <string>

#include "fake_platform.h"

namespace {

bool fails(const char* name) {
    if (!fake::FakePlatform::exists()) {
        return false;
    }
    const auto fault = fake::FakePlatform::current().faults.onCall(std::string(systemCallsOfSqlite) + name);
    if (fault) {
        errno = *fault;
    }
    return fault.has_value();
}

/// One of SQLite's system calls, which all answer -1 when they fail. It is known by the address of its name.
template <const char* name, typename Result, typename... Arguments>
struct Led {
    using Call = Result (*)(Arguments...);

    static inline Call real = nullptr;

    static Result call(Arguments... arguments) { return fails(name) ? Result(-1) : real(arguments...); }

    static void take(sqlite3_vfs* files) {
        real = reinterpret_cast<Call>(files->xGetSystemCall(files, name));
        if (real != nullptr) { // the platform's library may be built without it
            files->xSetSystemCall(files, name, reinterpret_cast<sqlite3_syscall_ptr>(call));
        }
    }
};

constexpr char openName[] = "open";
constexpr char accessName[] = "access";
constexpr char statName[] = "stat";
constexpr char fstatName[] = "fstat";
constexpr char ftruncateName[] = "ftruncate";
constexpr char readName[] = "read";
constexpr char preadName[] = "pread";
constexpr char pread64Name[] = "pread64";
constexpr char writeName[] = "write";
constexpr char pwriteName[] = "pwrite";
constexpr char pwrite64Name[] = "pwrite64";
constexpr char fallocateName[] = "fallocate";
constexpr char unlinkName[] = "unlink";
constexpr char openDirectoryName[] = "openDirectory";
constexpr char fcntlName[] = "fcntl";

int (*realFcntl)(int, int, ...) = nullptr;

int ledFcntl(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return fails(fcntlName) ? -1 : realFcntl(file, command, argument);
}

} // namespace

void leadSystemCallsOfSqlite() {
    sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
    if (files == nullptr || files->iVersion < 3) {
        throw std::runtime_error("SQLite's system calls cannot be led");
    }
    Led<openName, int, const char*, int, int>::take(files);
    Led<accessName, int, const char*, int>::take(files);
    Led<statName, int, const char*, struct stat*>::take(files);
    Led<fstatName, int, int, struct stat*>::take(files);
    Led<ftruncateName, int, int, off_t>::take(files);
    Led<readName, ssize_t, int, void*, size_t>::take(files);
    Led<preadName, ssize_t, int, void*, size_t, off_t>::take(files);
    Led<pread64Name, ssize_t, int, void*, size_t, off_t>::take(files);
    Led<writeName, ssize_t, int, const void*, size_t>::take(files);
    Led<pwriteName, ssize_t, int, const void*, size_t, off_t>::take(files);
    Led<pwrite64Name, ssize_t, int, const void*, size_t, off_t>::take(files);
    Led<fallocateName, int, int, off_t, off_t>::take(files);
    Led<unlinkName, int, const char*>::take(files);
    Led<openDirectoryName, int, const char*, int*>::take(files);
    realFcntl = reinterpret_cast<int (*)(int, int, ...)>(files->xGetSystemCall(files, fcntlName));
    files->xSetSystemCall(files, fcntlName, reinterpret_cast<sqlite3_syscall_ptr>(ledFcntl));
}

// SQLite finds these instead of the C library's, because the program comes first where a library looks for a name.
extern "C" {

int fdatasync(int /*file*/) {
    return fails("fdatasync") ? -1 : 0;
}

int fsync(int /*file*/) {
    return fails("fsync") ? -1 : 0;
}
}
