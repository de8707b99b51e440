// Who does the engine's work: n independent pieces, in any order. The engine starts no thread; whoever calls
// it may lend a runner that has some. What runs at once never decides a byte.
#pragma once

#include <cstddef>

#include "platform/non_copyable.h"

namespace lumafold {

/// Runs pieces on the caller's own thread, one after the other. Hosts with threads derive from it.
class Runner : NonCopyable {
public:
    virtual ~Runner() = default;

    /// How many pieces may run at once, at least 1.
    virtual std::size_t Workers() const { return 1; }

    /// Calls `work(i)` for each i below `count`, and returns when all have ended. `work` must not throw, and
    /// may run on several threads at once.
    template <typename Work>
    void ForEach(std::size_t count, const Work& work) const {
        Run(
            count, [](const void* w, std::size_t i) { (*static_cast<const Work*>(w))(i); }, &work);
    }

    /// Has `work()` done beside the caller, who goes on, by the time Settle returns; until then `work` stays
    /// where it is. Where too many wait, one of them is done before this returns. `work` must not throw.
    template <typename Work>
    void Begin(const Work& work) const {
        Start([](const void* w, std::size_t) { (*static_cast<const Work*>(w))(); }, &work);
    }
    /// Returns when all that was begun has ended.
    virtual void Settle() const {}

protected:
    using Piece = void (*)(const void* work, std::size_t index);
    virtual void Run(std::size_t count, Piece piece, const void* work) const {
        for (std::size_t i = 0; i < count; ++i)
            piece(work, i);
    }
    virtual void Start(Piece piece, const void* work) const { piece(work, 0); }
};

} // namespace lumafold
