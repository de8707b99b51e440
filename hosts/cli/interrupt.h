// Ctrl-C and the wish to end: at once in general, and as soon as everything is tidy while several files are
// written.
#pragma once

namespace lumafold {

inline constexpr int kInterruptedStatus = 130;

/// From now on SIGINT, SIGTERM and SIGHUP, or what a console of Windows sends, end the program with
/// kInterruptedStatus and without a half-written file, unless they were ignored so far.
void WatchForInterrupts();

/// While one lives, an interrupt only raises the flag that Interrupted reads: whoever writes files looks at
/// it between them, takes back what is half done, and gives up.
class HoldInterrupts {
public:
    HoldInterrupts();
    HoldInterrupts(const HoldInterrupts&) = delete;
    HoldInterrupts& operator=(const HoldInterrupts&) = delete;
    ~HoldInterrupts();
};

bool Interrupted();

} // namespace lumafold
