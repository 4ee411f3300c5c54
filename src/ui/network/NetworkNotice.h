// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "ui/Notice.h"

#include <optional>

/// What the network view tells about the capture. Thread: main.
namespace NetworkNotice {

/// The notice for a way of watching; none where every packet is seen.
std::optional<Notice::Content> forCapture(const CaptureState& state);

/// The notice while no traffic is counted by the user's wish.
Notice::Content off();
Notice::Content paused();
Notice::Content readOnly();

} // namespace NetworkNotice
