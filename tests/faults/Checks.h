#pragma once

#include "faults/ByteStream.h"

#include <string>

/// Makes an analysis or a meta-regression from the bytes, computes it, and tells what of the things that hold
/// for every one does not hold for it; nothing when all is well.
std::vector<std::string> ViolationsOf(const Bytes& bytes);
