#pragma once

#include "meta_analysis/bulk/meta_analysis.h"

#include <pybind11/pybind11.h>

#include <string>

namespace python_module {

/// What the C interface has for one kind of options.
template <class Options>
struct OptionKind
{
    int number; ///< MA_OPTIONS_POOL and its like
    int32_t (*init)(Options*, std::size_t);
    int32_t (*set)(Options*, const char* name, const char* value);
};

inline constexpr OptionKind<ma_pool_options> poolOptions{MA_OPTIONS_POOL, ma_pool_options_init,
                                                         ma_pool_option_set};
inline constexpr OptionKind<ma_regression_options> regressionOptions{
    MA_OPTIONS_REGRESSION, ma_regression_options_init, ma_regression_option_set};
inline constexpr OptionKind<ma_table_options> tableOptions{MA_OPTIONS_TABLES, ma_table_options_init,
                                                           ma_table_option_set};
inline constexpr OptionKind<ma_means_options> meansOptions{MA_OPTIONS_MEANS, ma_means_options_init,
                                                           ma_means_option_set};

/// Throws MemoryError or ValueError, with the sentence of the status, unless it is 0.
void ThrowUnlessOk(int32_t status);

/// A word, a number or a truth value of Python as the C interface reads it; numbers keep all digits, in any
/// locale. Throws TypeError, naming the option, for a value of another type.
std::string OptionText(const char* name, pybind11::handle value);

/// Throws ValueError: the option cannot have this value, or there is no such option.
[[noreturn]] void ThrowUnknown(int kind, const char* name, pybind11::handle value, int32_t status);

template <class Options>
Options OptionsFrom(const OptionKind<Options>& kind, const pybind11::dict& values)
{
    Options options;
    ThrowUnlessOk(kind.init(&options, sizeof options));
    for (const auto& [key, value] : values) {
        const char* const name = PyUnicode_AsUTF8(key.ptr());
        if (name == nullptr)
            throw pybind11::error_already_set();
        const int32_t status = kind.set(&options, name, OptionText(name, value).c_str());
        if (status != MA_STATUS_OK)
            ThrowUnknown(kind.number, name, value, status);
    }
    return options;
}

} // namespace python_module
