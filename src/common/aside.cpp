#include "common/aside.h"

#include <cfenv>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "common/failure.h"
#include "common/guard.h"
#include "common/message_box.h"
#include "common/on_left.h"
#include "common/progress.h"

namespace tav {
namespace {

// What was said of the progress since the windows' thread looked last.
struct Said {
    std::optional<Text> label;
    std::optional<int> files_done;
    std::optional<double> fraction;
    std::optional<std::pair<int, int>> loaded;

    void Tell(Progress& progress) const {
        if (label) progress.SetLabel(*label);
        if (files_done) progress.SetFilesDone(*files_done);
        if (fraction) progress.SetFraction(*fraction);
        if (loaded) progress.SetLoaded(loaded->first, loaded->second);
    }
};

// What the two threads share; it goes with the later of them.
struct Work {
    std::mutex mutex;
    std::condition_variable changed;
    Said said;
    const std::function<void()>* errand = nullptr;
    bool on_errand = false;  // the windows' thread runs it
    bool done = false;
    bool abandoned = false;
    std::exception_ptr failure;
    std::exception_ptr failure_of_windows;  // the first of what showed its progress
    std::function<void()> cancel;
};

std::shared_ptr<Work> current;  // of the windows' thread
thread_local Work* own = nullptr;

// What is thrown now; exceptions of other languages, too, which have no pointer.
std::exception_ptr Caught() {
    const std::exception_ptr caught = std::current_exception();
    return caught ? caught : std::make_exception_ptr(CurrentFailure());
}

class RelayedProgress : public Progress {
 public:
    explicit RelayedProgress(Work& work) : work_(work) {}
    void Show(int files) override {
        RunAtWindows([&] { CurrentProgress().Show(files); });
    }
    void ShowPages(int pages) override {
        RunAtWindows([&] { CurrentProgress().ShowPages(pages); });
    }
    void Close() override {
        RunAtWindows([] { CurrentProgress().Close(); });
    }
    void SetLabel(TextView file) override { Say().said.label = file; }
    void SetFilesDone(int files) override {
        const Saying saying = Say();
        saying.said.files_done = files;
        saying.said.fraction.reset();
    }
    void SetFraction(double fraction) override { Say().said.fraction = fraction; }
    void SetLoaded(int files, int of) override { Say().said.loaded = {files, of}; }

 private:
    struct Saying {
        std::unique_lock<std::mutex> lock;
        Said& said;
    };
    Saying Say() { return {std::unique_lock(work_.mutex), work_.said}; }

    Work& work_;
};

class RelayedBox : public MessageBox {
 public:
    void Show(const Message& message) override {
        RunAtWindows([&] { CurrentMessageBox().Show(message); });
    }
};

void Run(Work& work, const std::function<void()>& body) {
    own = &work;
    RelayedProgress progress(work);
    RelayedBox box;
    const ScopedProgress progress_here(progress);
    const ScopedMessageBox box_here(box);
    try {
        body();
    } catch (...) {
        work.failure = Caught();
    }
    const std::lock_guard lock(work.mutex);
    work.done = true;
    work.changed.notify_all();
}

// Until the work is done: its errands, then whatever waits. What fails here is kept: the work uses this stack.
void Serve(Work& work) {
    constexpr std::chrono::milliseconds kTurn(10);
    constexpr std::chrono::milliseconds kAtOnce(30);
    const auto begin = std::chrono::steady_clock::now();
    const auto kept = [&](const auto& act) {
        try {
            act();
        } catch (...) {
            if (!work.failure_of_windows) work.failure_of_windows = Caught();
        }
    };
    for (bool done = false; !done;) {
        std::unique_lock lock(work.mutex);
        work.changed.wait_for(lock, kTurn, [&] { return work.done || work.errand != nullptr; });
        done = work.done;
        const Said said = std::exchange(work.said, {});
        work.on_errand = work.errand != nullptr;
        lock.unlock();
        kept([&] { said.Tell(CurrentProgress()); });
        if (work.on_errand) (*work.errand)();
        lock.lock();
        const bool shown = std::exchange(work.on_errand, false);
        if (shown) {
            work.errand = nullptr;
            work.changed.notify_all();
        }
        const bool goes_on = !work.done;
        lock.unlock();
        if (goes_on && (shown || std::chrono::steady_clock::now() - begin > kAtOnce)) {
            kept([] { CurrentProgress().ProcessEvents(); });
        }
    }
}

}  // namespace

void RunAside(const std::function<void()>& work, const std::function<void()>& cancel) {
    if (own != nullptr || !CurrentProgress().HasWindows()) return work();
    FinishAside();
    if (current != nullptr) return work();  // in the middle of a message of the first, which waits for it
    const auto present = std::make_shared<Work>();
    present->cancel = cancel;
    std::thread thread;
    try {
        std::fenv_t arithmetic;  // a new thread's is not that of all systems
        std::fegetenv(&arithmetic);
        thread = std::thread([present, work, arithmetic] {
            std::fesetenv(&arithmetic);
            Run(*present, work);
        });
    } catch (const std::system_error&) {  // the process may have no more threads
        return work();
    }
    current = present;
    {
        const OnLeft left([&] {
            if (current == present) AbandonAside();
            thread.join();
            GuardedBy([] { CurrentProgress().Close(); }, [](const Failure&) {});
        });
        Serve(*present);
    }
    if (current == present) current.reset();
    thread.join();
    for (const std::exception_ptr& failure : {present->failure, present->failure_of_windows}) {
        if (failure) std::rethrow_exception(failure);
    }
}

void FinishAside() {
    if (own != nullptr) return;
    while (current != nullptr && !current->on_errand) {
        const std::shared_ptr<Work> first = current;
        Serve(*first);
        if (current == first) current.reset();
    }
}

bool AsideRuns() {
    return own == nullptr && current != nullptr;
}

void RunAtWindows(const std::function<void()>& errand) {
    if (own == nullptr) return errand();
    std::exception_ptr failure;
    const std::function<void()> guarded = [&] {
        try {
            errand();
        } catch (...) {
            failure = Caught();
        }
    };
    std::unique_lock lock(own->mutex);
    if (own->abandoned) return;
    own->errand = &guarded;
    own->changed.notify_all();
    own->changed.wait(lock, [] { return own->errand == nullptr; });
    if (failure) std::rethrow_exception(failure);
}

void AbandonAside() {
    const std::shared_ptr<Work> work = std::exchange(current, nullptr);
    if (work == nullptr) return;
    if (work->cancel) work->cancel();
    std::unique_lock lock(work->mutex);
    work->abandoned = true;
    work->errand = nullptr;
    work->changed.notify_all();
    work->changed.wait(lock, [&] { return work->done; });
}

}  // namespace tav
