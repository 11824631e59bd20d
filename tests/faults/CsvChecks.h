#pragma once

#include "faults/ByteStream.h"

/// Reads the bytes as a CSV file, by columns and as numbers, and expects what holds for any. A file that
/// cannot be used is fine when the reader says so.
void CheckCsv(const Bytes& bytes);
