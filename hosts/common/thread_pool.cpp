#include "hosts/common/thread_pool.h"

#include <algorithm>
#ifdef _WIN32
#include <float.h>
#endif

namespace lumafold {

ThreadPool::ThreadPool(int jobs) {
    try {
        for (int i = 1; i < jobs; ++i)
            workers_.emplace_back(&ThreadPool::Work, this);
    } catch (const std::exception&) {
        // No more threads, or no memory for them: those that are there do all of it.
    }
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    workCame_.notify_all();
    for (std::thread& worker : workers_)
        worker.join();
}

void ThreadPool::Run(std::size_t count, Piece piece, const void* work) const {
    if (workers_.empty() || count < 2) {
        Runner::Run(count, piece, work);
        return;
    }
    Batch batch{piece, work, count};
    std::unique_lock lock(mutex_);
    batch.around = latest_;
    latest_ = &batch;
    workCame_.notify_all();
    while (batch.HasNext())
        RunNext(batch, lock);
    pieceEnded_.wait(lock, [&] { return batch.Ended(); });
    Remove(batch);
    if (batch.failure) std::rethrow_exception(batch.failure);
}

void ThreadPool::Remove(const Batch& batch) const {
    Batch** link = &latest_;
    while (*link != &batch)
        link = &(*link)->around;
    *link = batch.around;
}

/// Takes a piece, and runs it without the lock.
void ThreadPool::RunNext(Batch& batch, std::unique_lock<std::mutex>& lock) const {
    const std::size_t index = batch.next++;
    ++batch.running;
    std::exception_ptr failure;
    lock.unlock();
    try {
        batch.piece(batch.work, index);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    if (failure) {
        batch.next = batch.count;
        if (!batch.failure) batch.failure = failure;
    }
    --batch.running;
    if (batch.Ended()) pieceEnded_.notify_all();
}

void ThreadPool::Start(Piece piece, const void* work) const {
    if (workers_.empty()) {
        Runner::Start(piece, work);
        return;
    }
    constexpr std::ptrdiff_t kMostOfThread = 2;
    const auto waiting = [&] {
        return std::count_if(errands_.begin(), errands_.end(),
                             [](const Batch& one) { return one.HasNext(); });
    };
    std::unique_lock lock(mutex_);
    DropEndedErrands();
    errands_.push_back({piece, work, 1});
    workCame_.notify_one();
    while (waiting() > kMostOfThread * static_cast<std::ptrdiff_t>(Workers()))
        RunNext(*OpenErrand(), lock);
}

void ThreadPool::Settle() const {
    std::unique_lock lock(mutex_);
    while (Batch* errand = OpenErrand())
        RunNext(*errand, lock);
    pieceEnded_.wait(lock, [&] {
        return std::all_of(errands_.begin(), errands_.end(), [](const Batch& one) { return one.Ended(); });
    });
    DropEndedErrands();
}

/// From the front; throws what the first of them threw.
void ThreadPool::DropEndedErrands() const {
    while (!errands_.empty() && errands_.front().Ended()) {
        const std::exception_ptr failure = errands_.front().failure;
        errands_.pop_front();
        if (failure) std::rethrow_exception(failure);
    }
}

ThreadPool::Batch* ThreadPool::OpenErrand() const {
    const auto open =
        std::find_if(errands_.begin(), errands_.end(), [](const Batch& one) { return one.HasNext(); });
    return open == errands_.end() ? nullptr : &*open;
}

ThreadPool::Batch* ThreadPool::OpenBatch() const {
    Batch* batch = latest_;
    while (batch != nullptr && !batch->HasNext())
        batch = batch->around;
    return batch != nullptr ? batch : OpenErrand();
}

void ThreadPool::Work() const {
#ifdef _WIN32
    _fpreset(); // the system starts threads with less precision than the first one has
#endif
    std::unique_lock lock(mutex_);
    while (!ends_) {
        if (Batch* batch = OpenBatch()) {
            RunNext(*batch, lock);
        } else {
            workCame_.wait(lock);
        }
    }
}

} // namespace lumafold
