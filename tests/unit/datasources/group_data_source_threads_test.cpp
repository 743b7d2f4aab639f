#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/temporary_directory.h"
#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

constexpr int kThreads = 64;

/// Kept ahead of the host, which closes the database before the directory goes.
struct Directory {
  TemporaryDirectory directory;
};

class GroupDataSourceThreads : private Directory, public GroupSourceTest {
 protected:
  GroupDataSourceThreads()
      : GroupSourceTest("sqlite:" + (directory.path() / "grupo.db").string() + "?mode=rwc") {
    enter(kStudents + filterSource("F", "Alunos", where("a.id <> 3")) +
          group("Turma", "b", "m",
                externalMember("a", "Alunos") + externalMember("f", "F", {{"Alunos", "a"}}) +
                    member("m", manager("M", ruled("a", "turma", "a", "curso"))) +
                    member("b", kMarks + relation("n.aluno", "a", "id"))) +
          group("Fora", "h", "h", externalMember("h", "Turma")));
  }

  /// What a user of one course sees, in a run of his own.
  std::vector<int> studentsOf(int course) {
    auto const context = newContext();
    context->setDataSourceFilters("Fora", {among("", "turma", {course})});
    context->processDataSources({}, {{"G", {false, entered("Fora")->createExecution()}}}, {}, 0);
    return integers(context->getDataMatrix("G"), "aluno");
  }

  void work(int number) {
    bool const first = number % 2 == 0;
    auto const expected = first ? std::vector{1, 2} : std::vector{4, 5, 6};
    auto const offered = columnsOf(entered("Fora")->getFilters());
    if (studentsOf(first ? 10 : 20) != expected || !offered.empty()) {
      ++faults_;
    }
  }

  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(GroupDataSourceThreads, SixtyFourThreadsRunOneDefinitionAtOnce) {
  auto const before = textOf(*entered("Turma"));
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([this, number] { work(number); });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(faults_, 0);
  EXPECT_EQ(textOf(*entered("Turma")), before);
}

}  // namespace mox_test
