// What an update did, object by object: as a table for scripts, and as lines for a person.
#pragma once

#include "a2l/Document.h"
#include "a2l/Update.h"

#include <span>

namespace Tessel::Norn::Brindle::Program {

struct Column;
class TableWriter;

} // namespace Tessel::Norn::Brindle::Program

namespace Tessel::Norn::Brindle::Program::A2l {

/// object, kind, file, line, symbol, status, action, oldAddress, newAddress, oldMask, newMask,
/// differences, nowAtOldAddress, problem, nearNames
std::span<const Column> UpdateColumns();

/// Writes a whole table: a row for each object.
/// @param table has `UpdateColumns`
void WriteUpdateRows(const Document& document, const UpdateResult& result, MissingChoice missing,
                     TableWriter& table);

/// Reports to a person on standard error what became of the objects: the first lines of each kind,
/// and how many there are in all.
/// @param hasReport whether a report holds all of them
void TellUpdate(const Document& document, const UpdateResult& result, MissingChoice missing,
                bool hasReport);

} // namespace Tessel::Norn::Brindle::Program::A2l
