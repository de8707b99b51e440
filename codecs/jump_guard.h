// Picture libraries that report an error by a jump. It leads back into the latest Guarded call and leaves
// that as an exception; the steps run there may therefore hold nothing that needs a destructor.
#pragma once

#include <csetjmp>
#include <cstdio>

#include "codecs/decode_common.h"

namespace lumafold {

class JumpGuard {
public:
    template <typename Step>
    void Guarded(Step step) {
        if (!Ran(step)) throw DecodeError{message_};
    }

protected:
    /// For the library's error handler, only while a step runs.
    [[noreturn]] void Fail(const char* text) {
        std::snprintf(message_, sizeof message_, "%s", text);
        std::longjmp(jump_, 1);
    }

private:
    template <typename Step>
    bool Ran(Step& step) {
        if (setjmp(jump_) != 0) return false;
        step();
        return true;
    }

    std::jmp_buf jump_{};
    char message_[256] = {};
};

} // namespace lumafold
