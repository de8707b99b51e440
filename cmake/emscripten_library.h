// What emscripten's C++ library of this distribution lacks. Included before every file.
#pragma once

#ifdef __cplusplus
#include <memory>
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
#ifndef __cpp_lib_smart_ptr_for_overwrite
namespace std {
template <class Array>
unique_ptr<Array> make_unique_for_overwrite(size_t count) {
    return unique_ptr<Array>(new remove_extent_t<Array>[count]);
}
} // namespace std
#endif
#endif
