#pragma once
#include "host/parameters/ParameterTable.h"
#include "tools/pictures/Showcase.h"

/// What a page of the reference tells beside the table of parameters.
struct ReferenceFacts {
    const void* fRecord = nullptr; ///< a fresh one, whose values are the defaults; null when there is none
    std::string fNeeds;            ///< such as `UV, point (world)`
    std::string fQuirks;           ///< Markdown; may be empty
    const Exhibit* fExhibit = nullptr; ///< may be null
    std::string fExample;              ///< text of its graph
    std::string fScenes;               ///< Markdown of the page of rendered scenes; may be empty
};

/// The table of a record's fields in Markdown, an array a line. Empty without fields.
/// @param record  a fresh one; null when there is none
std::string FieldsTable(const fernwick::ParameterTable& table, const void* record);

/// A class's page in Markdown. Its picture is a link into `../gallery`, and those of rendered scenes whose section tells
/// of the class into `../blender/scenes`.
std::string ReferencePage(const fernwick::ParameterTable& table, const ReferenceFacts& facts);

/// The page that lists all classes and links to theirs.
std::string ReferenceIndex();

/// The page of the host's own sources.
std::string SourcesPage();
