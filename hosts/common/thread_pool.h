// Threads that a host lends to whoever has n independent pieces of work to do.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace lumafold {

/// Runs pieces of work on the thread that asks and on workers beside it. A piece may itself run pieces.
class ThreadPool {
public:
    /// As many threads at once as `jobs` says, the asking one among them; fewer where the system gives no
    /// more.
    explicit ThreadPool(int jobs);
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;
    ~ThreadPool();

    /// Calls `piece` with 0 to `count` - 1, each once, in any order, and returns when all have returned. When
    /// one throws, no further ones are begun, and the first exception is thrown from here.
    void Run(std::size_t count, const std::function<void(std::size_t)>& piece);

private:
    struct Batch {
        const std::function<void(std::size_t)>& piece;
        const std::size_t count;
        std::size_t next = 0, running = 0;
        std::exception_ptr failure{};

        bool HasNext() const { return next < count; }
    };

    void Work();
    void RunNext(Batch& batch, std::unique_lock<std::mutex>& lock);
    Batch* OpenBatch();

    std::mutex mutex_;
    std::condition_variable workCame_, pieceEnded_;
    std::vector<Batch*> batches_; // the latest is served first: those around it wait for it
    bool ends_ = false;
    std::vector<std::thread> workers_;
};

} // namespace lumafold
