// A library to be loaded before the others (LD_PRELOAD), which lets a program's changes to files fail, or
// kills the program at one of them. Counted are the calls of this process on regular files and on folders,
// from 1 on; what the C library's own streams (stdio) write is not.
//
//   BV_FAIL_AT=N      the N-th write, sync or rename fails with "No space left on device"; "N+": all from
//   there on BV_KILL_AT=N      SIGKILL before the N-th write, sync, rename, link, removal or change of length
//   BV_FAULT_FILES=T  only calls on files whose path has the text T in it are counted
//   BV_FAULT_TOLD=F   the file F gets a line, "write /path/of/the/file", when a call fails or kills: a job
//   that
//                     leaves no such file has fewer than N of them
//
// A test goes through N = 1, 2, ... until F is not made any more: see tests/support/faulty_disk.h. Where the
// program is built with AddressSanitizer, that looks for itself at the head of the list:
// ASAN_OPTIONS=verify_asan_link_order=0.

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

enum class change { write, sync, rename, other };

std::atomic<int> counted{0};

void tell(const char* call, const char* path) {
    const char* told = std::getenv("BV_FAULT_TOLD");
    if (!told)
        return;
    char line[4200];
    const int length = std::snprintf(line, sizeof line, "%s %s\n", call, path);
    const int file = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, told, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    if (file < 0)
        return;
    if (syscall(SYS_write, file, line, static_cast<size_t>(length)) < 0)
        _exit(99); // a test that cannot be told must not pass
    syscall(SYS_close, file);
}

// Whether this call is one to fail. Does not return where it is one to be killed at.
bool strikes(change what, const char* call, const char* path) {
    const char* kill_at = std::getenv("BV_KILL_AT");
    const char* fail_at = std::getenv("BV_FAIL_AT");
    if (!kill_at && (!fail_at || what == change::other))
        return false;
    const char* among = std::getenv("BV_FAULT_FILES");
    if (among && !std::strstr(path, among))
        return false;
    const int number = ++counted;
    if (kill_at && number == std::atoi(kill_at)) {
        tell(call, path);
        kill(getpid(), SIGKILL);
    }
    if (!fail_at || what == change::other)
        return false;
    const int at = std::atoi(fail_at);
    const bool goes_on = std::strchr(fail_at, '+') != nullptr;
    if (number != at && !(goes_on && number > at))
        return false;
    tell(call, path);
    errno = ENOSPC;
    return true;
}

bool strikes(change what, const char* call, int file) {
    struct stat its {};
    if (fstat(file, &its) != 0 || !(S_ISREG(its.st_mode) || S_ISDIR(its.st_mode)))
        return false;
    char link[64];
    char path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    path[length > 0 ? length : 0] = 0;
    return strikes(what, call, path);
}

template <typename function>
function* next(const char* name) {
    return reinterpret_cast<function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

#define BV_ON_FILE(result, name, what, parameters, ...)                                                      \
    result name parameters {                                                                                 \
        static auto* const real = next<result parameters>(#name);                                            \
        return strikes(change::what, #name, file) ? -1 : real(__VA_ARGS__);                                  \
    }
#define BV_ON_PATH(name, what, parameters, ...)                                                              \
    int name parameters noexcept {                                                                           \
        static auto* const real = next<int parameters>(#name);                                               \
        return strikes(change::what, #name, to) ? -1 : real(__VA_ARGS__);                                    \
    }

extern "C" {

BV_ON_FILE(ssize_t, write, write, (int file, const void* bytes, size_t size), file, bytes, size)
BV_ON_FILE(ssize_t, writev, write, (int file, const iovec* pieces, int count), file, pieces, count)
BV_ON_FILE(ssize_t, pwrite, write, (int file, const void* bytes, size_t size, off_t at), file, bytes, size,
           at)
BV_ON_FILE(ssize_t, pwrite64, write, (int file, const void* bytes, size_t size, off64_t at), file, bytes,
           size, at)
BV_ON_FILE(int, fsync, sync, (int file), file)
BV_ON_FILE(int, fdatasync, sync, (int file), file)

int ftruncate(int file, off_t size) noexcept {
    static auto* const real = next<int(int, off_t)>("ftruncate");
    return strikes(change::other, "ftruncate", file) ? -1 : real(file, size);
}
int ftruncate64(int file, off64_t size) noexcept {
    static auto* const real = next<int(int, off64_t)>("ftruncate64");
    return strikes(change::other, "ftruncate64", file) ? -1 : real(file, size);
}

BV_ON_PATH(rename, rename, (const char* from, const char* to), from, to)
BV_ON_PATH(renameat, rename, (int folder, const char* from, int other, const char* to), folder, from, other,
           to)
BV_ON_PATH(renameat2, rename, (int folder, const char* from, int other, const char* to, unsigned flags),
           folder, from, other, to, flags)
BV_ON_PATH(link, other, (const char* from, const char* to), from, to)
BV_ON_PATH(unlink, other, (const char* to), to)
BV_ON_PATH(unlinkat, other, (int folder, const char* to, int flags), folder, to, flags)

} // extern "C"
