#pragma once

#include <cstdint>

#include "zyn/matrix/column_storage.h"

/// What each function does with a value: `source` stands on a value that is not null, `target` on
/// what the group has come to, null before its first value. Both are cursors over the same kind of
/// values, or the cells that a run over plain arrays has in their stead (aggregation_cells.h).

/// Whole numbers wrap, as the sum of many may leave 32 bits behind.
template <class Source, class Target>
void integralSum_func(Source const& source, Target& target) {
  target.set(static_cast<int>(std::int64_t{source.get()} + std::int64_t{target.get()}));
}

template <class Source, class Target>
void doubleSum_func(Source const& source, Target& target) {
  target.set(source.get() + target.get());
}

/// A NaN is neither below nor above, so it neither replaces a value nor is replaced.
template <class Source, class Target>
void lower_func(Source const& source, Target& target) {
  if (target.isNull() || compareCells(target.get(), source.get()) > 0) {
    target.set(source.get());
  }
}

template <class Source, class Target>
void higher_func(Source const& source, Target& target) {
  if (target.isNull() || compareCells(target.get(), source.get()) < 0) {
    target.set(source.get());
  }
}

template <class Source, class Target>
void first_func(Source const& source, Target& target) {
  if (target.isNull()) {
    target.set(source.get());
  }
}

template <class Source, class Target>
void last_func(Source const& source, Target& target) {
  target.set(source.get());
}

template <class Source, class Target>
void integralMin_func(Source const& source, Target& target) {
  lower_func(source, target);
}

template <class Source, class Target>
void integralMax_func(Source const& source, Target& target) {
  higher_func(source, target);
}

template <class Source, class Target>
void doubleMin_func(Source const& source, Target& target) {
  lower_func(source, target);
}

template <class Source, class Target>
void doubleMax_func(Source const& source, Target& target) {
  higher_func(source, target);
}

template <class Source, class Target>
void dateMin_func(Source const& source, Target& target) {
  lower_func(source, target);
}

template <class Source, class Target>
void dateMax_func(Source const& source, Target& target) {
  higher_func(source, target);
}

template <class Source, class Target>
void textMin_func(Source const& source, Target& target) {
  lower_func(source, target);
}

template <class Source, class Target>
void textMax_func(Source const& source, Target& target) {
  higher_func(source, target);
}

template <class Source, class Target>
void textFirst_func(Source const& source, Target& target) {
  first_func(source, target);
}

template <class Source, class Target>
void textLast_func(Source const& source, Target& target) {
  last_func(source, target);
}

template <class Source, class Target>
void blobFirst_func(Source const& source, Target& target) {
  first_func(source, target);
}

template <class Source, class Target>
void blobLast_func(Source const& source, Target& target) {
  last_func(source, target);
}

template <class Source, class Target>
void textAppend_func(Source const& source, Target& target) {
  if constexpr (requires { target.append(source); }) {
    target.append(source);
  } else {
    target.set(target.get() + source.get());
  }
}

template <class Source, class Target>
void textPrepend_func(Source const& source, Target& target) {
  if constexpr (requires { target.prepend(source); }) {
    target.prepend(source);
  } else {
    target.set(source.get() + target.get());
  }
}
