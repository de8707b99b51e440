#include "hosts/cli/interrupt.h"

#include <csignal>
#include <unistd.h>

#include "hosts/codecs/files.h"

namespace lumafold {
namespace {

volatile std::sig_atomic_t held = 0;
volatile std::sig_atomic_t raised = 0;

// An effect can run for seconds between two commands, so waiting for the next one would feel dead. All a
// build has is memory and perhaps one temporary file; leaving from here is as tidy as it gets.
extern "C" void HandleInterrupt(int) {
    raised = 1;
    if (held != 0) return;
    if (isatty(STDERR_FILENO) != 0) {
        constexpr char kLeaveBar[] = "\r\033[K";
        [[maybe_unused]] const auto written = write(STDERR_FILENO, kLeaveBar, sizeof(kLeaveBar) - 1);
    }
    RemovePendingTemporary();
    _exit(kInterruptedStatus);
}

} // namespace

void WatchForInterrupts() {
    for (const int number : {SIGINT, SIGTERM}) {
        // A program started in the background with interrupts ignored stays deaf to them.
        if (std::signal(number, &HandleInterrupt) == SIG_IGN) std::signal(number, SIG_IGN);
    }
}

HoldInterrupts::HoldInterrupts() { held = 1; }
HoldInterrupts::~HoldInterrupts() { held = 0; }

bool Interrupted() { return raised != 0; }

} // namespace lumafold
