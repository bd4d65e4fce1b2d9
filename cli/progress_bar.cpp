#include "cli/progress_bar.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace tnefcli {

namespace {
constexpr size_t kBarWidth = 30;
}

ProgressBar::ProgressBar(size_t total) : total_(total), visible_(::isatty(STDERR_FILENO) != 0) {
    if (visible_) draw();
}

ProgressBar::~ProgressBar() {
    if (visible_) {
        std::fprintf(stderr, "\r\033[K");
        std::fflush(stderr);
    }
}

void ProgressBar::advance() {
    std::lock_guard<std::mutex> lock(mutex_);
    ++done_;
    if (visible_) draw();
}

void ProgressBar::draw() {
    size_t filled = total_ == 0 ? kBarWidth : done_ * kBarWidth / total_;
    std::string bar(filled, '#');
    bar.append(kBarWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %zu/%zu files", bar.c_str(), done_, total_);
    std::fflush(stderr);
}

}  // namespace tnefcli
