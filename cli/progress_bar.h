// A one-line progress bar on stderr, drawn only when stderr is a terminal.
// Safe to advance from several threads.
#pragma once

#include <cstddef>
#include <mutex>

namespace tnefcli {

class ProgressBar {
public:
    explicit ProgressBar(size_t total);
    ~ProgressBar();  // clears the line

    void advance();
    bool visible() const { return visible_; }

private:
    void draw();

    std::mutex mutex_;
    size_t total_;
    size_t done_ = 0;
    bool visible_;
};

}  // namespace tnefcli
