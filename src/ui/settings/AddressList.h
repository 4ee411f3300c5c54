// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// The list of the addresses that the client API answers: separated by commas, and each compared as
/// text with the one that a program comes from. Any thread.
namespace AddressList {

/// An entry that no program's address can equal.
struct Fault
{
    QString entry;
    QString writtenAs; ///< What it would have to be; empty where it is no IP address at all.
};

/// The list as it is stored: without white space around the entries, and otherwise as typed. An
/// entry without a letter stays: the list would allow every address if its last entry were dropped.
QString stored(const QString& typed);

/// The first entry at fault; none where there is none, as in an empty list.
std::optional<Fault> firstFault(const QString& list);

} // namespace AddressList
