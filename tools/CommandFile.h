#pragma once
#include <filesystem>

/// The file of the command, with links to it followed: what belongs to the command is looked for near it. Empty where
/// it isn't known, without /proc.
std::filesystem::path CommandFile();

/// Tells, in a program that works for the command, where the command lies. A relative name tells nothing.
void WorkFor(const std::filesystem::path& command);
