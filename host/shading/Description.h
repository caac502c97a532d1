#pragma once
#include "host/json/ParseJson.h"
#include "host/library/ShaderWrapper.h"
#include "host/parameters/ParameterTable.h"

namespace fernwick {

class Library;

/// A new object of a class, to read its defaults and needs from. Null for a class without a route where the module that
/// makes it isn't there, as in an installed tree. Throws `LibraryError` when the library doesn't make it.
MCCountedPtr<ShaderWrapper> MakeSpecimen(const Library& library, const ParameterTable& table);

/// What a class or source is, as programs read it: `name`, `purpose`, `outputs` and, of a class, its `identifiers`.
Json EntryOf(const ParameterTable& table, bool isSource);

/// One field as programs read it: `name`, `type`, `label` and `help`, and where it has them `unit`, `minimum`,
/// `maximum`, `loose`, `onlyWith`, `choices` and `derived`.
/// @param record  one whose value is its `default`; null for none
Json EntryOf(const Field& field, const void* record = nullptr);

/// All that there is to tell of a class or source: what it is and, of a class, its `recordSize` and what of a sample it
/// `needs`; then its `fields` with their `default`.
/// @param specimen  of the class; null for none, without which there are no defaults, and for a source
Json DescriptionOf(const ParameterTable& table, ShaderWrapper* specimen);

} // namespace fernwick
