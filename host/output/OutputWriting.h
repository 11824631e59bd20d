#pragma once

#include <string>

namespace host {

// Write bytes to one place. They throw UnusableInput when that fails.

/// The file has its name when it is whole; what was there before stays until then.
void WriteFile(const std::string& path, const std::string& bytes);

/// Makes the folder, with those above it, unless it is there.
void MakeFolder(const std::string& folder);

/// A reader of a pipe who has had enough, such as `head`, is no failure.
void WriteStandardOutput(const std::string& text);

/// Writes the sentence behind the name of the program, and throws nothing.
void WriteToStandardError(const char* sentence) noexcept;

} // namespace host
