#pragma once

/// Whether the processor has the instructions of AVX2, for loops that are there twice.
inline bool hasAvx2() {
#if defined(__x86_64__)
  static bool const has = __builtin_cpu_supports("avx2") != 0;
  return has;
#else
  return false;
#endif
}

/// Whether it multiplies and adds without rounding in between, four doubles at once.
inline bool hasFusedProducts() {
#if defined(__x86_64__)
  static bool const has = hasAvx2() && __builtin_cpu_supports("fma") != 0;
  return has;
#else
  return false;
#endif
}
