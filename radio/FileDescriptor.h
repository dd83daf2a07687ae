// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>
#include <utility>

namespace nightjar {

/// Owns an open file descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            m_number = std::exchange(other.m_number, -1);
        }
        return *this;
    }
    ~FileDescriptor() { reset(); }

    /// -1 when nothing is open, which poll(2) passes over.
    [[nodiscard]] int get() const { return m_number; }
    [[nodiscard]] explicit operator bool() const { return m_number >= 0; }
    void reset() {
        if (m_number >= 0)
            ::close(m_number);
        m_number = -1;
    }

private:
    int m_number = -1;
};

} // namespace nightjar
