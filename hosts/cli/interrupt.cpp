#include "hosts/cli/interrupt.h"

#include <atomic>
#ifdef _WIN32
#include <mutex>

#include <io.h>
#include <windows.h>
#else
#include <csignal>
#endif
#include <unistd.h>

#include "codecs/files.h"

namespace lumafold {
namespace {

#ifdef _WIN32
constexpr char kLeaveBar[] = "\r\n";
#else
constexpr char kLeaveBar[] = "\r\033[K";
#endif

// An effect can run for seconds between two commands, so waiting for the next one would feel dead. All a
// build has is memory and perhaps one temporary file; leaving from here is as tidy as it gets.
void TidyUp() {
    if (isatty(STDERR_FILENO) != 0) {
        [[maybe_unused]] const auto written = write(STDERR_FILENO, kLeaveBar, sizeof(kLeaveBar) - 1);
    }
    RemovePendingTemporaries();
}

#ifdef _WIN32

std::atomic<bool> raised = false;
// The system tells on a thread of its own: who holds interrupts off must not start to while that one leaves.
std::mutex heldMutex;
int held = 0;

BOOL WINAPI HandleInterrupt(DWORD) {
    raised = true;
    const std::lock_guard lock(heldMutex);
    if (held > 0) return TRUE;
    TidyUp();
    // Nothing may run on: not the other thread, not what would wait for it.
    TerminateProcess(GetCurrentProcess(), kInterruptedStatus);
    return TRUE;
}

#else

std::atomic<int> held = 0;
static_assert(std::atomic<int>::is_always_lock_free); // a signal handler reads it
volatile std::sig_atomic_t raised = 0;

extern "C" void HandleInterrupt(int) {
    raised = 1;
    if (held != 0) return;
    TidyUp();
    _exit(kInterruptedStatus);
}

#endif

} // namespace

#ifdef _WIN32

void WatchForInterrupts() { SetConsoleCtrlHandler(&HandleInterrupt, TRUE); }

HoldInterrupts::HoldInterrupts() {
    const std::lock_guard lock(heldMutex);
    ++held;
}
HoldInterrupts::~HoldInterrupts() {
    const std::lock_guard lock(heldMutex);
    --held;
}

#else

void WatchForInterrupts() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        // A program started in the background with interrupts ignored stays deaf to them.
        if (std::signal(number, &HandleInterrupt) == SIG_IGN) std::signal(number, SIG_IGN);
    }
    // A file that may not grow further is an error to report, and no reason to die with half of it on disk.
    std::signal(SIGXFSZ, SIG_IGN);
}

HoldInterrupts::HoldInterrupts() { ++held; }
HoldInterrupts::~HoldInterrupts() { --held; }

#endif

bool Interrupted() { return raised != 0; }

} // namespace lumafold
