#pragma once

/// Memory of this executable, whose operator new counts what it gives out and fails on demand.
namespace FailingMemory {

/// From now on the n-th allocation fails, and on request all after it.
void FailAt(long n, bool forGood);
/// No further allocation fails.
void Relent();
/// Whether one has failed since `FailAt`.
bool HasFailed();
/// Allocations that were not given back.
long LiveCount();

} // namespace FailingMemory
