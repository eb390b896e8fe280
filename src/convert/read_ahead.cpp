#include "convert/read_ahead.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tav {
namespace {

constexpr std::size_t kWindowOfThread = 32;  // documents
// The calling thread is woken for several documents at once, and looks by itself at what takes longer.
constexpr std::size_t kWorthWaking = 16;
constexpr std::chrono::milliseconds kLook{20};

}  // namespace

// The steps of a document in flight, for the calling thread to see.
class ReadAhead::FlightSteps : public ReadingSteps {
 public:
    FlightSteps(ReadAhead& owner, Flight& flight) : owner_(owner), flight_(flight) {}

    void Begin(std::size_t pages) override {
        const std::lock_guard lock(owner_.mutex_);
        flight_.pages = pages;
    }
    bool GoOn() override {
        const std::lock_guard lock(owner_.mutex_);
        return !owner_.ended_;
    }
    void Step() override {
        const std::lock_guard lock(owner_.mutex_);
        ++flight_.steps;
    }

 private:
    ReadAhead& owner_;
    Flight& flight_;
};

ReadAhead::ReadAhead(std::size_t documents, Make make) : documents_(documents), make_(std::move(make)) {
    const std::size_t threads = std::min<std::size_t>(documents, std::thread::hardware_concurrency());
    if (threads > 1) StartThreads(threads);
}

// Fewer threads will do where the system has no more to give.
void ReadAhead::StartThreads(std::size_t threads) {
    window_.resize(threads * kWindowOfThread);
    threads_.reserve(threads);
    try {
        while (threads_.size() < threads) threads_.emplace_back([this] { Work(); });
    } catch (const std::exception&) {
    }
}

ReadAhead::~ReadAhead() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    room_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void ReadAhead::Work() {
    RtfReader reader;
    std::unique_lock lock(mutex_);
    for (;;) {
        room_.wait(lock, [&] { return ended_ || started_ == documents_ || MayStart(); });
        if (ended_ || started_ == documents_) return;
        const std::size_t number = started_++;
        Flight& flight = At(number);
        lock.unlock();
        ScannedDocument made;
        std::exception_ptr failure;
        try {
            FlightSteps steps(*this, flight);
            made = make_(reader, number, steps);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        flight.made = std::move(made);
        flight.failure = failure;
        flight.done = true;
        if (++done_unseen_ >= kWorthWaking || !MayStart()) news_.notify_one();
    }
}

ScannedDocument ReadAhead::Next(ReadingSteps& steps) {
    if (threads_.empty()) return make_(reader_, handed_out_++, steps);
    std::unique_lock lock(mutex_);
    Flight& flight = At(handed_out_);
    for (std::size_t seen = 0; seen < flight.steps || !flight.done;) {
        if (seen == flight.steps) {
            done_unseen_ = 0;
            news_.wait_for(lock, kLook);
            continue;
        }
        const std::size_t pages = flight.pages;
        lock.unlock();
        if (seen == 0) steps.Begin(pages);
        const bool go_on = steps.GoOn();
        if (go_on) steps.Step();
        lock.lock();
        if (!go_on) {
            ended_ = true;
            return {};
        }
        ++seen;
    }
    Flight arrived = std::exchange(flight, {});
    ++handed_out_;
    lock.unlock();
    room_.notify_one();
    if (arrived.failure) std::rethrow_exception(arrived.failure);
    return std::move(arrived.made);
}

}  // namespace tav
