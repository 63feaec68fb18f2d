// Opens what is compiled for AVX2; `unicode/avx2_end.h` closes it. Everything between stands in an unnamed namespace,
// so that no function of it can take the place of a common one when the library is linked. Include all other headers
// before.
#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,popcnt,bmi,lzcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,popcnt,bmi,lzcnt")
#endif
