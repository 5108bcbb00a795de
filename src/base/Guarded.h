#pragma once

#include <mutex>
#include <utility>

// A value that threads read and replace whole, each seeing a consistent copy.
template <typename T> class Guarded {
public:
    explicit Guarded(T value = T{})
        : m_value(std::move(value)) {}

    T get() const {
        std::lock_guard lock(m_mutex);
        return m_value;
    }

    // The old value is let go outside the lock, since letting go of it may take a while.
    void set(T value) {
        {
            std::lock_guard lock(m_mutex);
            std::swap(m_value, value);
        }
    }

private:
    mutable std::mutex m_mutex;
    T m_value;
};
