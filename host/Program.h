#pragma once

namespace host {

/// Runs the whole program. Returns its exit status and throws nothing.
int RunProgram(int argc, const char* const* argv) noexcept;

} // namespace host
