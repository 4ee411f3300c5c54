// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/HttpListener.h"
#include "service/ServiceFaults.h"

/// Sends the answer, after the fault's delay, as the fault wants it. An answer whose connection has
/// ended by then goes nowhere.
void deliver(const HttpAnswer& answer, const Fault& fault, QTcpSocket& socket);
