#include "zyn/operations/join_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <numeric>
#include <string>
#include <type_traits>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/word_numbers.h"

/// Numbers the cells of one key.
class JoinIndex::KeyNumbers {
 public:
  virtual ~KeyNumbers() = default;

  /// Numbers the first rows of the index's own key. Called once.
  virtual void number(moxDataMatrixColumn const& key, RowOrder& numbers) = 0;

  /// Finds the numbers of the first rows of another column.
  virtual void find(moxDataMatrixColumn const& key, RowOrder& numbers) const = 0;

  virtual std::uint32_t count() const = 0;
};

namespace {

constexpr std::uint32_t kNone = JoinIndex::kNone;
constexpr std::size_t kBlock = 128;  // rows whose places are asked of memory together

/// Of a text with more bytes than a word.
std::uint64_t hashLongText(TextRef const& text, std::uint64_t seed) {
  char const* bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = text.size() ^ seed;
  std::uint64_t word = 0;
  for (; left > sizeof word; left -= sizeof word, bytes += sizeof word) {
    std::memcpy(&word, bytes, sizeof word);
    hash = mixWord(hash ^ word);
  }
  std::memcpy(&word, bytes + left - sizeof word, sizeof word);
  return hash ^ word;
}

/// A text that fits into its reference is hashed as it stands there: unused bytes are zero.
std::uint32_t hashText(TextRef const& text, std::uint64_t seed) {
  std::uint64_t hash = 0;
  if (text.isInline()) {
    auto const words = std::bit_cast<std::array<std::uint64_t, 2>>(text);
    hash = mixWord(words[0] ^ seed) ^ words[1];
  } else {
    hash = hashLongText(text, seed);
  }
  return static_cast<std::uint32_t>(mixWord(hash) >> 32U);
}

/// A cell as a word. Equal words mean equal cells, but for texts, whose word is a hash.
std::uint32_t wordOf(int value, std::uint64_t) {
  return static_cast<std::uint32_t>(value);
}
std::uint64_t wordOf(double value, std::uint64_t) {
  return std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
}
std::uint64_t wordOf(datetime_t const& value, std::uint64_t) {
  return static_cast<std::uint64_t>(value.asTime_t());
}
std::uint64_t wordOf(std::shared_ptr<moxReadBlob> const& value, std::uint64_t) {
  return reinterpret_cast<std::uintptr_t>(value.get());
}
std::uint32_t wordOf(TextRef const& value, std::uint64_t seed) {
  return hashText(value, seed);
}

/// The words of some rows, and where the table has them. What will be looked at is asked of memory
/// for all rows first, as each place is anywhere.
template <class Word>
struct WordBlock {
  std::array<Word, kBlock> words;
  std::array<std::size_t, kBlock> homes;

  template <class WordOfRow>
  void fill(WordNumbers<Word> const& table, std::size_t rows, WordOfRow const& wordOfRow) {
    for (std::size_t i = 0; i < rows; ++i) {
      words[i] = wordOfRow(i);
      homes[i] = table.homeOf(words[i]);
      table.prefetch(homes[i]);
    }
  }
};

template <class Use>
void eachBlock(std::size_t rows, Use const& use) {
  for (std::size_t from = 0; from < rows; from += kBlock) {
    use(from, std::min(kBlock, rows - from));
  }
}

template <class T>
class TypedKeyNumbers final : public JoinIndex::KeyNumbers {
 public:
  void number(moxDataMatrixColumn const& key, RowOrder& numbers) override {
    auto const& storage = storageOf(key);
    Block block;
    eachBlock(numbers.size(), [&](std::size_t from, std::size_t rows) {
      fetch(storage, from, rows, block);
      for (std::size_t i = 0; i < rows; ++i) {
        numbers[from + i] = storage.nulls.test(from + i)
                                ? numberOfNulls()
                                : numberOf(storage.values.cells()[from + i], block.words[i]);
      }
    });
  }

  void find(moxDataMatrixColumn const& key, RowOrder& numbers) const override {
    auto const& storage = storageOf(key);
    storage.nulls.any() ? findCells<true>(storage, numbers) : findCells<false>(storage, numbers);
  }

  std::uint32_t count() const override { return count_; }

 private:
  using Cell = typename ColumnStorage<T>::Cell;
  using Word = decltype(wordOf(std::declval<Cell const&>(), 0));
  using Block = WordBlock<Word>;

  static constexpr bool kIsText = std::is_same_v<T, std::string>;

  static ColumnStorage<T> const& storageOf(moxDataMatrixColumn const& key) {
    return dynamic_cast<CommonColumn<T> const&>(key).storage();
  }

  void fetch(ColumnStorage<T> const& storage, std::size_t from, std::size_t rows,
             Block& block) const {
    auto const* const cells = storage.values.cells() + from;
    block.fill(table_, rows, [&](std::size_t i) { return wordOf(cells[i], seed_); });
    for (std::size_t i = 0; kIsText && i < rows; ++i) {
      std::uint32_t const number = table_.guess(block.homes[i]);
      if (number != kNone) {
        __builtin_prefetch(&texts_[number]);
      }
    }
  }

  template <bool kHasNulls>
  void findCells(ColumnStorage<T> const& storage, RowOrder& numbers) const {
    Block block;
    eachBlock(numbers.size(), [&](std::size_t from, std::size_t rows) {
      fetch(storage, from, rows, block);
      auto const* const cells = storage.values.cells() + from;
      for (std::size_t i = 0; i < rows; ++i) {
        bool const null = kHasNulls && storage.nulls.test(from + i);
        std::uint32_t const found = table_.find(block.words[i], block.homes[i], sameAs(cells[i]));
        numbers[from + i] = null ? numberOfNulls_ : toNumber(found);
      }
    });
  }

  /// The table counts values alone; numbers count the null as well, where it first came.
  std::uint32_t toNumber(std::uint32_t found) const {
    return found + static_cast<std::uint32_t>(found >= numberOfNulls_ && found != kNone);
  }

  std::uint32_t numberOf(Cell const& cell, Word word) {
    std::uint32_t const found = table_.findOrAdd(word, sameAs(cell));
    std::uint32_t const number = toNumber(found);
    if (number == count_) {
      ++count_;
      if constexpr (kIsText) {
        texts_.push_back(cell);
      }
    }
    return number;
  }

  std::uint32_t numberOfNulls() {
    numberOfNulls_ = numberOfNulls_ == kNone ? count_++ : numberOfNulls_;
    return numberOfNulls_;
  }

  /// Whether a number's value is the cell, when their words are equal.
  auto sameAs(Cell const& cell) const {
    return [this, &cell](std::uint32_t number) {
      if constexpr (kIsText) {
        return texts_[number] == cell;
      }
      return true;
    };
  }

  WordNumbers<Word> table_;
  std::vector<TextRef, LargeAllocator<TextRef>> texts_;  // of each value, for texts alone
  std::uint64_t seed_ = hashSeed();
  std::uint32_t numberOfNulls_ = kNone;
  std::uint32_t count_ = 0;
};

std::unique_ptr<JoinIndex::KeyNumbers> numbersFor(moxDataMatrixColumn const& key) {
  std::unique_ptr<JoinIndex::KeyNumbers> numbers;
  withStorage(key, [&]<class T>(ColumnStorage<T> const&) {
    numbers = std::make_unique<TypedKeyNumbers<T>>();
  });
  return numbers;
}

/// The rows of each number, side by side.
std::shared_ptr<RowLists> listsFrom(RowOrder const& numbers, std::uint32_t count) {
  auto lists = std::make_shared<RowLists>();
  if (count == numbers.size()) {
    return lists;
  }
  lists->starts.resize(std::size_t{count} + 1);
  lists->rows.resize(numbers.size());
  for (std::uint32_t const number : numbers) {
    ++lists->starts[number + 1];
  }
  std::partial_sum(lists->starts.begin(), lists->starts.end(), lists->starts.begin());
  std::vector<std::uint32_t> next(lists->starts.begin(), lists->starts.end() - 1);
  for (std::uint32_t row = 0; row < numbers.size(); ++row) {
    lists->rows[next[numbers[row]]++] = row;
  }
  return lists;
}

}  // namespace

/// Numbers pairs: what the keys so far came to, and the number of a further key.
class JoinIndex::Pairs {
 public:
  void number(RowOrder& numbers, RowOrder const& further) {
    eachPair(numbers, further, [&](std::size_t row, std::uint64_t pair, std::size_t) {
      numbers[row] = table_.findOrAdd(pair, kAlways);
      count_ = std::max(count_, numbers[row] + 1);
    });
  }

  void find(RowOrder& numbers, RowOrder const& further) const {
    eachPair(numbers, further, [&](std::size_t row, std::uint64_t pair, std::size_t home) {
      bool const known = numbers[row] != kNone && further[row] != kNone;
      numbers[row] = known ? table_.find(pair, home, kAlways) : kNone;
    });
  }

  std::uint32_t count() const { return count_; }

 private:
  static constexpr auto kAlways = [](std::uint32_t) { return true; };

  template <class Use>
  void eachPair(RowOrder const& numbers, RowOrder const& further, Use const& use) const {
    WordBlock<std::uint64_t> block;
    eachBlock(numbers.size(), [&](std::size_t from, std::size_t rows) {
      block.fill(table_, rows, [&](std::size_t i) {
        return (std::uint64_t{numbers[from + i]} << 32U) | further[from + i];
      });
      for (std::size_t i = 0; i < rows; ++i) {
        use(from + i, block.words[i], block.homes[i]);
      }
    });
  }

  WordNumbers<std::uint64_t> table_;
  std::uint32_t count_ = 0;
};

JoinIndex::JoinIndex(Keys const& keys, std::uint32_t rows) {
  RowOrder const numbers = number(keys, rows);
  lists_ = listsFrom(numbers, pairs_.empty() ? keys_.back()->count() : pairs_.back()->count());
}

JoinIndex::~JoinIndex() = default;

RowOrder JoinIndex::number(Keys const& keys, std::uint32_t rows) {
  RowOrder numbers(rows);
  for (auto const& key : keys) {
    keys_.push_back(numbersFor(*key));
    if (keys_.size() == 1) {
      keys_.back()->number(*key, numbers);
      continue;
    }
    RowOrder further(rows);
    keys_.back()->number(*key, further);
    pairs_.push_back(std::make_unique<Pairs>());
    pairs_.back()->number(numbers, further);
  }
  return numbers;
}

RowOrder JoinIndex::find(Keys const& keys, std::uint32_t rows) const {
  RowOrder numbers(rows);
  keys_.front()->find(*keys.front(), numbers);
  for (std::size_t key = 1; key < keys.size(); ++key) {
    RowOrder further(rows);
    keys_[key]->find(*keys[key], further);
    pairs_[key - 1]->find(numbers, further);
  }
  return numbers;
}
