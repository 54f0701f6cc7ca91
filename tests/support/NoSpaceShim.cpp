// Preloaded into a program under test (LD_PRELOAD) to make the disk look full for database
// files: every write to a file whose name holds ".KDB" (journals and temporary files included)
// fails with ENOSPC; every other write goes through.
#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

bool isDatabase(int fd) {
    char link[64];
    char path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = ::readlink(link, path, sizeof path - 1);
    if (length <= 0) return false;
    path[length] = '\0';
    return std::strstr(path, ".KDB") != nullptr;
}

template <typename Function>
Function real(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ssize_t write(int fd, const void* buffer, size_t size) {
    if (isDatabase(fd)) return errno = ENOSPC, -1;
    static const auto next = real<ssize_t (*)(int, const void*, size_t)>("write");
    return next(fd, buffer, size);
}

__attribute__((visibility("default"))) ssize_t pwrite(int fd, const void* buffer, size_t size, off_t offset) {
    if (isDatabase(fd)) return errno = ENOSPC, -1;
    static const auto next = real<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
    return next(fd, buffer, size, offset);
}

__attribute__((visibility("default"))) ssize_t pwrite64(int fd, const void* buffer, size_t size, off64_t offset) {
    if (isDatabase(fd)) return errno = ENOSPC, -1;
    static const auto next = real<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    return next(fd, buffer, size, offset);
}

}  // extern "C"
