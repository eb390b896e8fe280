// A library that a program is started with (LD_PRELOAD): it sees the system calls on the files of one folder,
// lets them fail, and writes them down. The date stands still, so that the same run writes the same bytes.
// tests/faults/run plays with it.
//
//     TAV_FAULT_FOLDER   the folder, from the root on
//     TAV_FAULT_LOG      the calls, one on a line, in fields separated by tabs: name; "failed", -1 (refused by the
//                        system), "made" (of a file that was not there before) or 0; inode; a size or an offset; count of
//                        the bytes written, which follow the line; path; second path. At the end "allocations", their
//                        number and empty fields
//     TAV_FAULT_CALL     the number of the call that fails, from 1 on; "7-": the seventh and all after it
//     TAV_FAULT_ERROR    with which errno (28, a full disk: only calls that take space fail); 0: the call does
//                        not fail, but reads or writes half of what was asked
//     TAV_FAULT_MEMORY   the number of the allocation that fails, from the first call in the folder on
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
}

namespace {

template <class Real>
Real Next(const char* name) {
    return reinterpret_cast<Real>(::dlsym(RTLD_NEXT, name));
}

const char* Setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

long Number(const char* name) {
    return std::strtol(Setting(name), nullptr, 10);
}

std::atomic<long> allocations{-1};  // negative until the first call in the folder
thread_local bool inside = false;   // calls and allocations of this library itself

struct Faults {
    std::mutex one_at_a_time;
    std::string folder = Setting("TAV_FAULT_FOLDER");
    int log = ::open(Setting("TAV_FAULT_LOG"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    long failing = Number("TAV_FAULT_CALL");
    bool all_after = std::strchr(Setting("TAV_FAULT_CALL"), '-') != nullptr;
    int error = static_cast<int>(Number("TAV_FAULT_ERROR"));
    long calls = 0;

    Faults() {
        // On one processor the calls have one order.
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &one);
        if (!folder.empty()) ::sched_setaffinity(0, sizeof one, &one);
    }
    void Log(const std::string& line) const {
        if (::write(log, line.data(), line.size()) < 0) std::abort();
    }
};
Faults& TheFaults() {
    static auto* const faults = new Faults;  // outlives what runs at the end of the process
    return *faults;
}

struct Inside {
    Inside() { inside = true; }
    ~Inside() { inside = false; }
};

std::string PathOf(int descriptor) {
    char path[PATH_MAX];
    const ssize_t length =
        ::readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, sizeof path);
    return length < 0 ? std::string() : std::string(path, static_cast<std::size_t>(length));
}
std::string PathAt(int folder, const char* name) {
    return folder == AT_FDCWD || name[0] == '/' ? name : PathOf(folder) + "/" + name;
}

ino_t InodeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

// What of a call goes into the log besides its name.
struct Call {
    std::string path;
    std::string second = {};
    long number = 0;
    std::string_view bytes = {};
    std::size_t* size = nullptr;  // of what is read or written
};

bool TakesSpace(std::string_view name, const Call& call) {
    return !call.bytes.empty() || name == "ftruncate" || name == "fsync" || name == "mkdir" ||
           name.starts_with("rename") || (name == "open" && (call.number & O_CREAT) != 0);
}

template <class Result, class Real>
Result Through(const char* name, const Call& call, Result failed, Real real) {
    Faults& faults = TheFaults();
    if (faults.folder.empty() || !call.path.starts_with(faults.folder)) return real();
    const std::lock_guard lock(faults.one_at_a_time);
    if (allocations < 0) allocations = 0;
    ++faults.calls;
    const bool meant = faults.calls == faults.failing || (faults.all_after && faults.calls > faults.failing);
    if (meant && faults.error == 0 && call.size != nullptr) *call.size = (*call.size + 1) / 2;
    const bool fails = meant && faults.error != 0 && (faults.error != ENOSPC || TakesSpace(name, call));
    const ino_t before = InodeOf(call.path);
    errno = fails ? faults.error : errno;
    const Result result = fails ? failed : real();
    const int error = errno;
    const ino_t inode = before != 0 ? before : InodeOf(call.path);
    const char* became = fails                       ? "failed"
                         : result == failed          ? "-1"
                         : before == 0 && inode != 0 ? "made"
                                                     : "0";
    std::string line = name;
    for (const std::string& field : {std::string(became), std::to_string(inode), std::to_string(call.number),
                                     std::to_string(call.bytes.size()), call.path, call.second}) {
        line.append("\t").append(field);
    }
    faults.Log(line.append("\n").append(result == failed ? "" : call.bytes));
    errno = error;
    return result;
}

bool Allocates() {
    if (inside || allocations < 0) return true;
    static const long failing = Number("TAV_FAULT_MEMORY");
    if (++allocations != failing) return true;
    errno = ENOMEM;
    return false;
}

__attribute__((destructor)) void LogAllocations() {
    const Inside scope;
    TheFaults().Log("allocations\t" + std::to_string(allocations) + "\t\t\t0\t\t\n");
}

}  // namespace

// A function of the system: what it is on, what it returns when it has to fail.
#define FAULTY(result, name, parameters, arguments, failed, ...)                                  \
    result name parameters {                                                                      \
        static const auto real = Next<result(*) parameters>(#name);                               \
        if (inside) return real arguments;                                                        \
        const Inside scope;                                                                       \
        return Through<result>(#name, Call{__VA_ARGS__}, failed, [&] { return real arguments; }); \
    }
extern "C" {

FAULTY(ssize_t, read, (int file, void* to, size_t size), (file, to, size), -1, PathOf(file), "", 0, {}, &size)
FAULTY(ssize_t, pread, (int file, void* to, size_t size, off_t at), (file, to, size, at), -1, PathOf(file),
       "", 0, {}, &size)
FAULTY(ssize_t, pwrite, (int file, const void* from, size_t size, off_t at), (file, from, size, at), -1,
       PathOf(file), "", at, {static_cast<const char*>(from), size}, &size)
FAULTY(ssize_t, write, (int file, const void* from, size_t size), (file, from, size), -1, PathOf(file), "",
       ::lseek(file, 0, SEEK_CUR), {static_cast<const char*>(from), size}, &size)
FAULTY(int, ftruncate, (int file, off_t size), (file, size), -1, PathOf(file), "", size)
FAULTY(int, fsync, (int file), (file), -1, PathOf(file))
FAULTY(int, fdatasync, (int file), (file), -1, PathOf(file))
FAULTY(int, flock, (int file, int how), (file, how), -1, PathOf(file))
FAULTY(int, fchmod, (int file, mode_t mode), (file, mode), -1, PathOf(file))
FAULTY(int, futimens, (int file, const timespec* times), (file, times), -1, PathOf(file))
FAULTY(int, fstat, (int file, struct stat* status), (file, status), -1, PathOf(file))
FAULTY(int, stat, (const char* path, struct stat* status), (path, status), -1, path)
FAULTY(int, lstat, (const char* path, struct stat* status), (path, status), -1, path)
FAULTY(int, fstatat, (int at, const char* path, struct stat* status, int how), (at, path, status, how), -1,
       PathAt(at, path))
FAULTY(int, access, (const char* path, int how), (path, how), -1, path)
FAULTY(int, mkdir, (const char* path, mode_t mode), (path, mode), -1, path)
FAULTY(int, chmod, (const char* path, mode_t mode), (path, mode), -1, path)
FAULTY(int, unlink, (const char* path), (path), -1, path)
FAULTY(int, rmdir, (const char* path), (path), -1, path)
FAULTY(int, unlinkat, (int at, const char* path, int how), (at, path, how), -1, PathAt(at, path))
FAULTY(int, rename, (const char* from, const char* to), (from, to), -1, from, to)
FAULTY(int, renameat2, (int at, const char* from, int to_at, const char* to, unsigned how),
       (at, from, to_at, to, how), -1, PathAt(at, from), PathAt(to_at, to))
FAULTY(DIR*, opendir, (const char* path), (path), nullptr, path)
FAULTY(dirent*, readdir, (DIR * folder), (folder), nullptr, PathOf(::dirfd(folder)))
FAULTY(char*, realpath, (const char* path, char* to), (path, to), nullptr, path)

int openat(int at, const char* path, int how, ...) {
    std::va_list rest;
    va_start(rest, how);
    const mode_t mode = (how & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    static const auto real = Next<int (*)(int, const char*, int, ...)>("openat");
    if (inside) return real(at, path, how, mode);
    const Inside scope;
    return Through("open", {PathAt(at, path), "", how}, -1, [&] { return real(at, path, how, mode); });
}
int open(const char* path, int how, ...) {
    std::va_list rest;
    va_start(rest, how);
    const mode_t mode = (how & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openat(AT_FDCWD, path, how, mode);
}

// Names in a row instead of names by chance.
int mkostemp(char* pattern, int how) {
    static int number = 0;
    for (;;) {
        const std::string name = std::to_string(++number + 100000);
        std::memcpy(pattern + std::strlen(pattern) - 6, name.data(), 6);
        const int file = open(pattern, how | O_RDWR | O_CREAT | O_EXCL, 0600);
        if (file >= 0 || errno != EEXIST) return file;
    }
}
char* mkdtemp(char* pattern) {
    static int number = 0;
    for (;;) {
        const std::string name = std::to_string(++number + 100000);
        std::memcpy(pattern + std::strlen(pattern) - 6, name.data(), 6);
        if (mkdir(pattern, 0700) == 0) return pattern;
        if (errno != EEXIST) return nullptr;
    }
}

// Locks of a range are the only calls of it that can fail.
int fcntl(int file, int what, ...) {
    std::va_list rest;
    va_start(rest, what);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    static const auto real = Next<int (*)(int, int, ...)>("fcntl");
    if (inside || (what != F_OFD_SETLK && what != F_OFD_GETLK)) return real(file, what, argument);
    const Inside scope;
    return Through("fcntl", {PathOf(file)}, -1, [&] { return real(file, what, argument); });
}

// By the names of libraries whose files may be large.
#define ALIAS(result, name, parameters) result name##64 parameters __attribute__((alias(#name)))
ALIAS(int, open, (const char* path, int how, ...));
ALIAS(int, fcntl, (int file, int what, ...));
ALIAS(ssize_t, pread, (int file, void* to, size_t size, off_t at));
ALIAS(ssize_t, pwrite, (int file, const void* from, size_t size, off_t at));
ALIAS(int, ftruncate, (int file, off_t size));
ALIAS(int, fstat, (int file, struct stat64* status));
ALIAS(int, stat, (const char* path, struct stat64* status));
ALIAS(int, lstat, (const char* path, struct stat64* status));

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (clock == CLOCK_REALTIME) *time = {1'300'000'000, 0};
    return static_cast<int>(result);
}
time_t time(time_t* to) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (to != nullptr) *to = now.tv_sec;
    return now.tv_sec;
}
int gettimeofday(timeval* to, void*) noexcept {
    *to = {time(nullptr), 0};
    return 0;
}

void* malloc(std::size_t size) {
    return Allocates() ? __libc_malloc(size) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
    return Allocates() ? __libc_calloc(count, size) : nullptr;
}
void* realloc(void* old, std::size_t size) {
    return Allocates() ? __libc_realloc(old, size) : nullptr;
}

}  // extern "C"
