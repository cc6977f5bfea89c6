// Sets a flag for the life of the object and puts the old value back, also when an
// exception leaves the scope: the pages mark their own filling of controls with it, so
// the notifications that filling sends are not taken for a user's edits.
#pragma once

#include <utility>

class ScopedFlag {
public:
    explicit ScopedFlag(bool& flag) noexcept : flag_(flag), previous_(std::exchange(flag, true)) {}
    ~ScopedFlag() { flag_ = previous_; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& flag_;
    bool previous_;
};
