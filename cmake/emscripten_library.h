// What emscripten's C++ library of this distribution lacks. Included before every file.
#pragma once

#ifdef __cplusplus
#include <version>
#ifndef __cpp_lib_bit_cast
namespace std {
template <class To, class From>
constexpr To bit_cast(const From& from) noexcept {
    static_assert(sizeof(To) == sizeof(From));
    return __builtin_bit_cast(To, from);
}
} // namespace std
#endif
#endif
