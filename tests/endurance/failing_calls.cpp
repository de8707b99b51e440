// Preloaded into a program, stands between it and the calls that change files: one of them, counted from the
// program's start, fails, stops half-way, or is where the program is ended.
//   LUMAFOLD_FAULT=N:fail=ERRNO   the N-th call fails
//   LUMAFOLD_FAULT=N:from=ERRNO   it and all after it fail
//   LUMAFOLD_FAULT=N:half         the N-th call, if it writes, writes half of what it is given
//   LUMAFOLD_FAULT=N:kill=SIGNAL  the signal is raised just before the N-th call
//   LUMAFOLD_FAULT_LOG=FILE       gets a line for each call: its name and its path
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum class Fault { None, Fail, From, Half, Kill };

template <typename Function>
Function Next(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

struct Plan {
    long at = 0;
    Fault fault = Fault::None;
    int number = 0; ///< of the error or the signal
    int log = -1;

    Plan() {
        const char *text = std::getenv("LUMAFOLD_FAULT"), *path = std::getenv("LUMAFOLD_FAULT_LOG");
        char word[8] = "";
        if (text != nullptr && std::sscanf(text, "%ld:%7[a-z]=%d", &at, word, &number) < 2) std::abort();
        for (const auto& [name, meant] : {std::pair{"fail", Fault::Fail},
                                          {"from", Fault::From},
                                          {"half", Fault::Half},
                                          {"kill", Fault::Kill}}) {
            if (std::strcmp(word, name) == 0) fault = meant;
        }
        if (path != nullptr) log = Next(&open, "open")(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    }
};

const Plan& ThePlan() {
    static const Plan plan;
    return plan;
}

long calls = 0;
/// Of the files open for writing.
std::string paths[256];

std::string* PathOf(int descriptor) {
    const bool known = descriptor >= 0 && descriptor < 256 && !paths[descriptor].empty();
    return known ? &paths[descriptor] : nullptr;
}

/// Whether this call must fail; errno is set then.
bool MustFail(const char* name, const char* path) {
    const Plan& plan = ThePlan();
    ++calls;
    if (plan.log >= 0) {
        const std::string line = std::string(name) + " " + path + "\n";
        if (Next(&write, "write")(plan.log, line.data(), line.size()) < 0) std::abort();
    }
    if (plan.fault == Fault::Kill && calls == plan.at) std::raise(plan.number);
    const bool fails =
        plan.fault == Fault::Fail ? calls == plan.at : plan.fault == Fault::From && calls >= plan.at;
    if (fails) errno = plan.number;
    return fails;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    if (writes && MustFail("open", path)) return -1;
    const int descriptor = Next(&open, "open")(path, flags, mode);
    if (writes && descriptor >= 0 && descriptor < 256) paths[descriptor] = path;
    return descriptor;
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    const std::string* path = PathOf(descriptor);
    if (path != nullptr && MustFail("write", path->c_str())) return -1;
    if (path != nullptr && ThePlan().fault == Fault::Half && calls == ThePlan().at) count = (count + 1) / 2;
    return Next(&write, "write")(descriptor, bytes, count);
}

int fsync(int descriptor) {
    const std::string* path = PathOf(descriptor);
    return path != nullptr && MustFail("fsync", path->c_str()) ? -1 : Next(&fsync, "fsync")(descriptor);
}

// The descriptor is gone even when this fails.
int close(int descriptor) {
    std::string* path = PathOf(descriptor);
    const bool fails = path != nullptr && MustFail("close", path->c_str());
    if (path != nullptr) path->clear();
    const int error = errno, closed = Next(&close, "close")(descriptor);
    if (fails) errno = error;
    return fails ? -1 : closed;
}

int rename(const char* from, const char* to) noexcept {
    return MustFail("rename", to) ? -1 : Next(&rename, "rename")(from, to);
}
int mkdir(const char* path, mode_t mode) noexcept {
    return MustFail("mkdir", path) ? -1 : Next(&mkdir, "mkdir")(path, mode);
}
int chmod(const char* path, mode_t mode) noexcept {
    return MustFail("chmod", path) ? -1 : Next(&chmod, "chmod")(path, mode);
}
int unlink(const char* path) noexcept {
    return MustFail("unlink", path) ? -1 : Next(&unlink, "unlink")(path);
}
int unlinkat(int folder, const char* path, int flags) noexcept {
    return MustFail("unlinkat", path) ? -1 : Next(&unlinkat, "unlinkat")(folder, path, flags);
}

} // extern "C"
