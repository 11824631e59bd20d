#pragma once

namespace host {

/// The whole program; returns its exit status and throws nothing.
int RunProgram(int argc, const char* const* argv) noexcept;

} // namespace host
