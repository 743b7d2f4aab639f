#include "zyn/matrix/data_matrix_row.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/matrix/data_matrix_row_index.h"

namespace {

void requireCursors(std::vector<std::shared_ptr<moxIterator>> const& keys) {
  if (std::find(keys.begin(), keys.end(), nullptr) != keys.end()) {
    throw std::invalid_argument("a filter key must be a cursor, not an empty pointer");
  }
}

}  // namespace

std::shared_ptr<moxDataMatrixColumn> columnToKeep(moxIterator const& cursor) {
  try {
    return cursor.getParentColumn();
  } catch (std::bad_weak_ptr const&) {
    return {};
  }
}

DataMatrixRow::DataMatrixRow() = default;
DataMatrixRow::~DataMatrixRow() = default;

void DataMatrixRow::addIterator(std::shared_ptr<moxIterator> iterator) {
  if (!iterator || std::find(cursors_.begin(), cursors_.end(), iterator) != cursors_.end()) {
    return;
  }
  columns_.push_back(columnToKeep(*iterator));
  cursors_.push_back(std::move(iterator));
}

std::vector<std::shared_ptr<moxIterator>> DataMatrixRow::getIterators() {
  return cursors_;
}

std::vector<std::shared_ptr<moxIterator const>> DataMatrixRow::getIterators() const {
  return {cursors_.begin(), cursors_.end()};
}

std::shared_ptr<moxIterator> DataMatrixRow::getIterator(unsigned int index) {
  return index < cursors_.size() ? cursors_[index] : nullptr;
}

std::shared_ptr<moxIterator const> DataMatrixRow::getIterator(unsigned int index) const {
  return index < cursors_.size() ? cursors_[index] : nullptr;
}

unsigned int DataMatrixRow::totalIterators() const {
  return static_cast<unsigned int>(cursors_.size());
}

void DataMatrixRow::removeIterator(std::shared_ptr<moxIterator> iterator) {
  auto const found = std::find(cursors_.begin(), cursors_.end(), iterator);
  removeIteratorAt(static_cast<unsigned int>(found - cursors_.begin()));
}

void DataMatrixRow::removeIteratorAt(unsigned int index) {
  if (index < cursors_.size()) {
    cursors_.erase(cursors_.begin() + index);
    columns_.erase(columns_.begin() + index);
  }
}

bool DataMatrixRow::next() {
  if (index_) {
    return index_->next();
  }
  return std::all_of(cursors_.begin(), cursors_.end(),
                     [](auto const& cursor) { return cursor->next(); });
}

bool DataMatrixRow::previous() {
  if (index_) {
    return index_->previous();
  }
  return std::all_of(cursors_.begin(), cursors_.end(),
                     [](auto const& cursor) { return cursor->previous(); });
}

bool DataMatrixRow::goTo(unsigned int row) {
  return std::all_of(cursors_.begin(), cursors_.end(),
                     [row](auto const& cursor) { return cursor->goTo(row); });
}

bool DataMatrixRow::goToEnd() {
  clearFilter();
  return std::all_of(cursors_.begin(), cursors_.end(),
                     [](auto const& cursor) { return cursor->goToEnd(); });
}

std::size_t DataMatrixRow::placeOf(std::string const& columnName) const {
  for (std::size_t place = 0; place < cursors_.size(); ++place) {
    auto const column = columns_[place] ? columns_[place] : cursors_[place]->getParentColumn();
    if (column && column->getName() == columnName) {
      return place;
    }
  }
  return cursors_.size();
}

std::shared_ptr<moxIterator> DataMatrixRow::findIterator(std::string const& columnName) {
  return getIterator(static_cast<unsigned int>(placeOf(columnName)));
}

std::shared_ptr<moxIterator const> DataMatrixRow::findIterator(
    std::string const& columnName) const {
  return getIterator(static_cast<unsigned int>(placeOf(columnName)));
}

bool DataMatrixRow::atEnd() const {
  if (index_) {
    return index_->atEnd();
  }
  return std::any_of(cursors_.begin(), cursors_.end(),
                     [](auto const& cursor) { return cursor->atEnd(); });
}

std::shared_ptr<moxDataMatrixRow> DataMatrixRow::clone() const {
  if (cursors_.empty()) {
    return {};
  }
  auto copy = moxApp->get<DataMatrixRow>("moxDataMatrixRow");
  for (auto const& cursor : cursors_) {
    copy->addIterator(cursor->clone());
  }
  if (index_) {
    copyFilterTo(*copy);
  }
  return copy;
}

void DataMatrixRow::copyFilterTo(DataMatrixRow& copy) const {
  // In the order of the keys, not of the cursors: the index may only be kept for the order it was
  // built in.
  for (auto const& key : filterKeys_) {
    auto const place = std::find(cursors_.begin(), cursors_.end(), key) - cursors_.begin();
    auto const own = copy.getIterator(static_cast<unsigned int>(place));
    copy.filterKeys_.push_back(own ? own : key->clone());
  }
  copy.index_ = index_->copy(copy);
}

bool DataMatrixRow::beginWithFilter(std::vector<std::shared_ptr<moxIterator>> const& keys,
                                    std::vector<std::shared_ptr<moxIterator const>> const& values) {
  requireCursors(keys);
  if (keys.empty()) {
    clearFilter();
    return false;
  }
  useIndexOver(keys);
  if (std::find(values.begin(), values.end(), nullptr) != values.end()) {
    index_->leaveGroup();
    return false;
  }
  return index_->begin(values);
}

void DataMatrixRow::useIndexOver(std::vector<std::shared_ptr<moxIterator>> const& keys) {
  if (!index_ || filterKeys_ != keys) {
    auto wanted = keys;  // the caller's vector may be emptied below, when it is our own
    clearFilter();
    index_ = std::make_unique<Index>(wanted, *this);
    filterKeys_ = std::move(wanted);
  }
  for (auto const& key : filterKeys_) {
    if (std::find(cursors_.begin(), cursors_.end(), key) == cursors_.end()) {
      addIterator(key);
    }
  }
}

void DataMatrixRow::clearFilter() {
  index_.reset();
  filterKeys_.clear();
}

unsigned int DataMatrixRow::count() const {
  if (index_) {
    return index_->count();
  }
  if (cursors_.empty()) {
    return 0;
  }
  auto const shortest = std::min_element(
      cursors_.begin(), cursors_.end(),
      [](auto const& left, auto const& right) { return left->count() < right->count(); });
  return (*shortest)->count();
}
