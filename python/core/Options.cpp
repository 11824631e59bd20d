#include "python/core/Options.h"

#include <array>
#include <charconv>
#include <new>

namespace python_module {

namespace py = pybind11;

namespace {

template <class Number>
std::string NumberText(Number number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string TextOfInteger(const char* name, py::handle value)
{
    const auto integer = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!integer)
        throw py::error_already_set();
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(integer.ptr(), &overflow);
    if (overflow != 0)
        throw py::value_error(std::string(name) + " is out of range");
    return NumberText(number);
}

} // namespace

void ThrowUnlessOk(int32_t status)
{
    if (status == MA_STATUS_OUT_OF_MEMORY)
        throw std::bad_alloc();
    if (status != MA_STATUS_OK)
        throw py::value_error(ma_status_text(status));
}

std::string OptionText(const char* name, py::handle value)
{
    if (PyUnicode_Check(value.ptr()) != 0)
        return py::cast<std::string>(value);
    if (PyBool_Check(value.ptr()) != 0)
        return value.ptr() == Py_True ? "on" : "off";
    if (PyIndex_Check(value.ptr()) != 0)
        return TextOfInteger(name, value);
    const double number = PyFloat_AsDouble(value.ptr());
    if (PyErr_Occurred() != nullptr) {
        PyErr_Clear();
        throw py::type_error(std::string(name) + " is of type " + Py_TYPE(value.ptr())->tp_name +
                             "; a word or a number is needed");
    }
    return NumberText(number);
}

void ThrowUnknown(int kind, const char* name, py::handle value, int32_t status)
{
    const char* const values = ma_option_values(kind, name);
    if (status != MA_STATUS_OPTION_VALUE_UNKNOWN || values == nullptr)
        throw py::value_error(std::string(name) + ": " + ma_status_text(status));
    throw py::value_error(std::string(name) + " is " + py::cast<std::string>(py::repr(value)) +
                          "; it can be: " + values);
}

} // namespace python_module
