#pragma once

#include <exception>
#include <initializer_list>
#include <utility>

/// A value that owns memory, as settings keep it. To take or copy one never throws: when memory runs out the
/// value becomes the empty one, and the object remembers, as do its copies, that it lost what it was given.
/// An operation that is handed such settings reports the loss as its status.
template <class Value>
class Kept
{
public:
    Kept() noexcept = default;
    template <class T>
    Kept(std::initializer_list<T> values) noexcept
    {
        Take([&] { return Value(values); });
    }
    Kept(const Kept& other) noexcept { *this = other; }
    Kept& operator=(const Kept& other) noexcept
    {
        const bool wasLost = other.isLost_; // `other` may be this one
        *this = other.value_;
        isLost_ = isLost_ || wasLost;
        return *this;
    }
    Kept& operator=(const Value& value) noexcept
    {
        Take([&] { return value; });
        return *this;
    }
    ~Kept() = default;

    bool IsLost() const noexcept { return isLost_; }
    const Value& operator*() const noexcept { return value_; }
    Value& operator*() noexcept { return value_; }
    const Value* operator->() const noexcept { return &value_; }
    Value* operator->() noexcept { return &value_; }

private:
    template <class Make>
    void Take(Make make) noexcept
    {
        try {
            value_ = make();
            isLost_ = false;
        } catch (const std::exception&) {
            value_ = Value();
            isLost_ = true;
        }
    }

    Value value_;
    bool isLost_ = false;
};
