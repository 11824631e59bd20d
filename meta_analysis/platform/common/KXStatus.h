#pragma once

/// Result of an operation that can fail: a numeric code and whether it is a warning.
///
/// Code 0 is OK. A code with the flag set is a warning (the operation went on), without it an error
/// (the operation stopped). Codes: settings/MAStatusCode.h.
class KXStatus
{
public:
    constexpr KXStatus(int code = 0, bool warning = false) noexcept : code_(code), warning_(warning) {}

    constexpr bool IsOK() const noexcept { return code_ == 0; }
    constexpr bool IsWarning() const noexcept { return code_ != 0 && warning_; }
    constexpr bool IsError() const noexcept { return code_ != 0 && !warning_; }
    constexpr int GetCode() const noexcept { return code_; }

    friend constexpr bool operator==(const KXStatus& left, const KXStatus& right) noexcept
    {
        return left.code_ == right.code_ && left.warning_ == right.warning_;
    }
    friend constexpr bool operator!=(const KXStatus& left, const KXStatus& right) noexcept
    {
        return !(left == right);
    }

private:
    int code_;
    bool warning_;
};
