#pragma once

#include "faults/ByteStream.h"

#include <string>

/// Reads the bytes as a CSV file, by columns and as numbers, and tells what is wrong with the result. A file
/// that cannot be used is fine when the reader says so.
std::vector<std::string> CsvViolationsOf(const Bytes& bytes);
