// The workshop as the worker's script calls it: plain C, texts in UTF-8, byte ranges in this module's memory.
#include <emscripten.h>

#include "hosts/web/workshop.h"

// The script gives the module a function of this name.
EM_JS(void, LumafoldTellProgress, (const char* caption, int position, int total),
      { Module.tellProgress(UTF8ToString(caption), position, total); });

namespace lumafold {
namespace {

struct Worker {
    Workshop workshop{&LumafoldTellProgress};
    std::string answer;
};

// One a module, and the module goes with its worker.
Worker& TheWorker() {
    static Worker worker;
    return worker;
}

} // namespace
} // namespace lumafold

using lumafold::TheWorker;

extern "C" {

/// Room for `size` bytes, for the file that the next order is about; null when there is no memory for it.
EMSCRIPTEN_KEEPALIVE std::uint8_t* LumafoldInput(std::size_t size) try {
    TheWorker().workshop.Input().resize(size);
    return TheWorker().workshop.Input().data();
} catch (const std::bad_alloc&) {
    return nullptr;
}

/// Does an order; the answer is good until the next. Both are described in hosts/web/workshop.h.
EMSCRIPTEN_KEEPALIVE const char* LumafoldDo(const char* order) {
    TheWorker().answer = TheWorker().workshop.Do(order);
    return TheWorker().answer.c_str();
}

/// The bytes that the last order gave, good until the next.
EMSCRIPTEN_KEEPALIVE const std::uint8_t* LumafoldOutput() { return TheWorker().workshop.Output().data(); }
EMSCRIPTEN_KEEPALIVE std::size_t LumafoldOutputSize() { return TheWorker().workshop.Output().size(); }
}
