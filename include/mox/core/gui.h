#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "mox/core/plugin_base.h"

class moxDataMatrixSQLFilter;

/// Something that a user works in until he closes it. Objects are asked of the registry, one for
/// each opening, and belong to the thread of the interface that they are opened on.
class moxUserInteractible : public virtual moxPluginBase {
 public:
  /// `completion` is called at most once, when the user is done, with the identifier of the record
  /// that he ended on, 0 when there is none. It is dropped after that, and with the object.
  virtual void setCompletion(std::function<void(int)> completion) = 0;
};

/// A form for one record of some table.
class moxCadastro : public virtual moxUserInteractible {
 public:
  /// A value that the field of `column` starts with when a new record is opened. The last value for
  /// a column counts; a column that the form does not have is passed over.
  virtual void setStartingValue(std::string const& column, std::string const& value) = 0;
};

/// Work that is done for chosen records.
class moxProcessAction : public virtual moxUserInteractible {
 public:
  /// Does the work for one record, or for several at once. Throws moxError.
  virtual void run(int id) = 0;
  virtual void run(std::set<int> const& ids) = 0;
};

/// A search screen.
class moxSearchInteractible : public virtual moxUserInteractible {
 public:
  /// A condition that the user can neither see nor change. `filter` is never empty.
  virtual void addFixedFilter(std::shared_ptr<moxDataMatrixSQLFilter> filter) = 0;
};

/// The interface that a user sits at. It is held by weak pointers, for it ends when the user goes;
/// opening on one that has ended does nothing. Calls come from its own thread.
class moxGuiUserInterface {
 public:
  virtual ~moxGuiUserInterface() = default;

  /// Opens a screen on `target` and returns at once; the screen is kept until it is closed. An
  /// empty `interactible` does nothing.
  virtual void open(std::weak_ptr<moxGuiUserInterface> target,
                    std::shared_ptr<moxUserInteractible> interactible) = 0;

  /// The same for a form, on the record `id`.
  virtual void openRecordForm(std::weak_ptr<moxGuiUserInterface> target,
                              std::shared_ptr<moxCadastro> form, int id) = 0;

  /// Has `run` called, once, in a place where it may take long, with `process` kept alive until it
  /// ends; then `completion`, where it is set, with 0 on success. A moxError out of `run` is shown
  /// to the user, and `completion` is not called. `flags` is 0.
  virtual void runProcess(std::weak_ptr<moxGuiUserInterface> target,
                          std::shared_ptr<moxProcessAction> process, std::function<void()> run,
                          std::function<void(int)> completion, int flags) = 0;
};
