// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <unistd.h>

#include <utility>

/// Owns one file descriptor and closes it; holds none (-1) until given one.
class FileDescriptor final
{
public:
    FileDescriptor() = default;

    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, None))
    {
    }

    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    ~FileDescriptor()
    {
        if (isValid()) {
            close(m_descriptor);
        }
    }

    int get() const { return m_descriptor; }

    bool isValid() const { return m_descriptor != None; }

private:
    static constexpr int None = -1;

    int m_descriptor = None;
};
