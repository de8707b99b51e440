#include "hosts/desktop/background_work.h"

#include <atomic>
#include <exception>
#include <thread>

#include "hosts/desktop/progress_window.h"

namespace lumafold {
namespace {

constexpr DWORD kMoment = 250, kBetweenLooks = 20; ///< milliseconds

/// Told once and for good.
class Event {
public:
    /// Throws std::bad_alloc where the system has none to give.
    Event() : handle_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        if (handle_ == nullptr) throw std::bad_alloc();
    }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() { CloseHandle(handle_); }

    const HANDLE& Get() const { return handle_; }

private:
    HANDLE handle_;
};

/// The thread, and what both sides know of it.
class Worker {
public:
    explicit Worker(const std::function<void(const FrameProgress&)>& work)
        : thread_([this, &work] { Run(work); }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        stopped = true;
        if (thread_.joinable()) thread_.join();
    }

    /// Whether it ended within the time; with `awake`, or something happened that a window may care for.
    bool WaitForEnd(DWORD milliseconds, bool awake) const {
        return MsgWaitForMultipleObjects(1, &ended_.Get(), FALSE, milliseconds, awake ? QS_ALLINPUT : 0) ==
               WAIT_OBJECT_0;
    }
    void Finish() {
        thread_.join();
        if (fault_) std::rethrow_exception(fault_);
    }

    std::atomic<std::size_t> frame = 0, frames = 0;
    std::atomic<bool> stopped = false;

private:
    void Run(const std::function<void(const FrameProgress&)>& work) {
        try {
            work([this](std::size_t at, std::size_t all) {
                frames = all;
                frame = at;
                return !stopped;
            });
        } catch (...) {
            fault_ = std::current_exception();
        }
        SetEvent(ended_.Get());
    }

    Event ended_;
    std::exception_ptr fault_;
    std::thread thread_; ///< last: it uses all of the above
};

} // namespace

void WorkBehindProgress(HWND owner, const std::string& caption,
                        const std::function<void(const FrameProgress& progress)>& work) {
    Worker worker(work);
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));
    ProgressWindow window(ProgressWindow::Stop::OnRequest);
    window.SetCaption(caption.c_str());
    if (!worker.WaitForEnd(kMoment, false)) {
        while (!worker.WaitForEnd(kBetweenLooks, window.IsShown())) {
            window.Position(owner, static_cast<std::int64_t>(worker.frame),
                            static_cast<std::int64_t>(worker.frames));
            if (window.StopWanted()) worker.stopped = true;
        }
    }
    window.Close();
    SetCursor(before);
    worker.Finish();
}

} // namespace lumafold
