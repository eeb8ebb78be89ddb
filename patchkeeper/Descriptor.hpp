#pragma once

#include <utility>

#include <unistd.h>

namespace patchkeeper {

// Owns a file descriptor; a negative number stands for none.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_); // the other one closes what was ours
        return *this;
    }
    ~Descriptor() { Close(); }

    int Number() const { return number_; }
    void Close() {
        if (number_ >= 0) {
            close(std::exchange(number_, -1));
        }
    }

private:
    int number_;
};

} // namespace patchkeeper
