#pragma once

#include <string>
#include <vector>

namespace host {

/// How a reference is named in a text: "DerSimonian and Laird 1986". `key` is one of the table's.
std::string ReferenceText(const std::string& key);

/// The references as BibTeX, each once, in the order of the keys, and the program itself.
std::string BibTexOf(const std::vector<std::string>& keys);

} // namespace host
