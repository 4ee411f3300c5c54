// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Told of input activity, without what was typed or clicked: enough for an icon that blinks.
/// Thread: main.
class AbstractSystemListener
{
public:
    AbstractSystemListener() = default;
    AbstractSystemListener(const AbstractSystemListener&) = delete;
    AbstractSystemListener& operator=(const AbstractSystemListener&) = delete;
    virtual ~AbstractSystemListener() = default;

    virtual void onKeyDown() = 0;
    virtual void onKeyUp() = 0;
    virtual void onMouseButtonDown() = 0;
    virtual void onMouseButtonUp() = 0;
};
