// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/FileWork.h"

/// Copies a database while it may be in use, through a connection of its own: what another
/// connection committed is in the copy whole, and what it has not is not in it. Any thread.
namespace DatabaseCopy {

/// Copies the database `source` to `target`, mode 0600, which is overwritten. From the first page
/// to the last nobody can write to the source. Unless it is done, no file is left at `target`.
FileWork copy(const QString& source, const QString& target, const FileProgress& progress);

} // namespace DatabaseCopy
