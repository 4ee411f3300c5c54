// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Whether the internet can be reached, as the desktop's network service sees it, or else whether
/// an interface other than the loopback one is up with an address. No request is ever sent. Thread:
/// main.
class InternetAvailability
{
public:
    bool isAvailable();

private:
    bool m_backendTried = false;
};
