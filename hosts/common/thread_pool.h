// Threads that a host lends to whoever has n independent pieces of work to do.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/runner.h"

namespace lumafold {

/// Runs pieces of work on the thread that asks and on workers beside it. A piece may itself run pieces.
class ThreadPool final : public Runner {
public:
    /// As many threads at once as `jobs` says, the asking one among them; fewer where the system gives no
    /// more.
    explicit ThreadPool(int jobs);
    ~ThreadPool() override;

    std::size_t Workers() const override { return workers_.size() + 1; }

    /// What a piece that was begun threw is thrown from here, or when a later one is begun.
    void Settle() const override;

private:
    struct Batch {
        const Piece piece;
        const void* const work;
        const std::size_t count;
        std::size_t next = 0, running = 0;
        std::exception_ptr failure{};
        Batch* around = nullptr; ///< the one that was there before

        bool HasNext() const { return next < count; }
        bool Ended() const { return !HasNext() && running == 0; }
    };

    /// When a piece throws, no further ones are begun, and the first exception is thrown from here.
    void Run(std::size_t count, Piece piece, const void* work) const override;
    /// Two pieces for each thread may wait; who brings one more does one of them.
    void Start(Piece piece, const void* work) const override;
    void Work() const;
    void RunNext(Batch& batch, std::unique_lock<std::mutex>& lock) const;
    void Remove(const Batch& batch) const;
    Batch* OpenBatch() const;
    Batch* OpenErrand() const;
    void DropEndedErrands() const;

    mutable std::mutex mutex_;
    mutable std::condition_variable workCame_, pieceEnded_;
    // The latest batch, which is served first: those around it wait for it. They are linked to one another,
    // so that running pieces needs no memory.
    mutable Batch* latest_ = nullptr;
    mutable std::deque<Batch> errands_; // of one piece each, served after batches, the earliest first
    bool ends_ = false;
    std::vector<std::thread> workers_;
};

} // namespace lumafold
