// Printed forms converted on all cores, ahead of the one that is asked for next; handed out in the order given.
//
// The threads only turn files into what the scan enters into the catalogue: they show nothing, ask nobody, and are
// gone before the object is. No more than a window of documents is in flight. With one document or one core there are
// no threads, and each document is converted when it is asked for.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "convert/rtf_reader.h"
#include "convert/scanned_document.h"

namespace tav {

class ReadAhead {
 public:
    // Makes the document of that number. Runs on any thread, and for several numbers at a time.
    using Make = std::function<ScannedDocument(RtfReader& reader, std::size_t number, ReadingSteps& steps)>;

    ReadAhead(std::size_t documents, Make make);
    // Ends what is being read.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // The next document; `steps` is told of its steps as if it were read now. One whose reading `steps` ends has
    // nothing, and must be the last one asked for. What `make` throws is thrown here.
    ScannedDocument Next(ReadingSteps& steps);

 private:
    // A document in flight.
    struct Flight {
        std::size_t pages = 0;
        std::size_t steps = 0;
        bool done = false;
        ScannedDocument made;
        std::exception_ptr failure;
    };
    class FlightSteps;

    void StartThreads(std::size_t threads);
    void Work();
    Flight& At(std::size_t number) { return window_[number % window_.size()]; }
    bool MayStart() const { return started_ < documents_ && started_ < handed_out_ + window_.size(); }

    const std::size_t documents_;
    const Make make_;
    RtfReader reader_;  // of the calling thread

    std::mutex mutex_;  // of all that follows
    std::condition_variable room_;
    std::condition_variable news_;
    std::vector<Flight> window_;
    std::size_t started_ = 0;
    std::size_t handed_out_ = 0;
    std::size_t done_unseen_ = 0;  // since the calling thread last looked
    bool ended_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace tav
