#include "zyn/items/zync_loader_service.h"

#include <filesystem>
#include <fstream>

#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_utils.h"
#include "support/temporary_directory.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;
namespace fs = std::filesystem;

namespace {

class LoaderService : public ItemsTest {
 protected:
  ~LoaderService() override { cache_->clear(); }

  std::string path(std::string const& name) { return (folder_.path() / name).string(); }

  void save(std::string const& file, std::string const& description) {
    host_.get<moxZYNUtils>("moxZYNUtils")
        ->saveBinaryToFile(path(file),
                           collection("<moxTestItem name=\"" + description + "\"/>", file));
  }

  void setDirectory(std::string const& key, std::string const& directory) {
    dynamic_cast<mox::core::Settings&>(host_.application().settings())
        .set("ZYNCollectionDirs", key, {directory});
  }

  bool has(std::string const& description) { return cache_->getCollection(description) != nullptr; }

  TemporaryDirectory folder_;
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  ZYNCLoaderService service_;
};

}  // namespace

TEST_F(LoaderService, StartsWithTheApplicationOnly) {
  EXPECT_EQ(service_.name(), "ZYNCLoaderService");
  EXPECT_TRUE(service_.canStart());
  for (int value = 0; value < 3; ++value) {
    EXPECT_FALSE(service_.verifyProperties(static_cast<moxServiceBase::Properties>(value)));
  }
  EXPECT_TRUE(service_.verifyProperties(moxServiceBase::kStartsWithApplication));
  service_.setParentLibraryName("L");
  EXPECT_EQ(service_.getParentLibraryName(), "L");
}

TEST_F(LoaderService, AnEmptyDirectorySettingIsSkipped) {
  setDirectory("vazio", "");
  EXPECT_NO_THROW(service_.start());
}

TEST_F(LoaderService, AMissingDirectoryLoadsNothingAndRaisesNothing) {
  save("a.zcf", "a");
  setDirectory("falta", path("nowhere"));
  setDirectory("existe", folder_.path().string());
  EXPECT_NO_THROW(service_.start());
  EXPECT_TRUE(has("a"));
}

TEST_F(LoaderService, LoadsFilesWhoseNameEndsInZcfExactly) {
  save("a.zcf.bak", "bak");
  save("a.ZCF", "upper");
  save("azcf", "bare");
  save("b.c.zcf", "right");
  setDirectory("d", folder_.path().string() + "/");
  service_.start();
  EXPECT_FALSE(has("bak"));
  EXPECT_FALSE(has("upper"));
  EXPECT_FALSE(has("bare"));
  EXPECT_TRUE(has("right"));
}

TEST_F(LoaderService, DoesNotVisitSubdirectories) {
  fs::create_directory(path("sub.zcf"));
  save("sub.zcf/a.zcf", "a");
  setDirectory("d", folder_.path().string());
  EXPECT_NO_THROW(service_.start());
  EXPECT_FALSE(has("a"));
}

TEST_F(LoaderService, OfTwoFilesWithTheSameDescriptionTheFirstNameByBytesWins) {
  save("b.zcf", "x");
  save("a.zcf", "x");
  save("Z.zcf", "x");
  setDirectory("d", folder_.path().string());
  service_.start();
  EXPECT_EQ(cache_->getCollection("x")->getParentLibName(), "Z.zcf");
}

TEST_F(LoaderService, DirectoriesComeInTheOrderOfTheSettings) {
  fs::create_directory(path("1"));
  fs::create_directory(path("2"));
  save("1/a.zcf", "x");
  save("2/a.zcf", "x");
  setDirectory("z", path("2"));
  setDirectory("a", path("1"));
  service_.start();
  EXPECT_EQ(cache_->getCollection("x")->getParentLibName(), "2/a.zcf");
}

TEST_F(LoaderService, AFileThatFailsEndsTheLoopAndIsNamed) {
  save("a.zcf", "a");
  std::ofstream(path("b.zcf")) << "no collection";
  save("c.zcf", "c");
  setDirectory("d", folder_.path().string());
  try {
    service_.start();
    FAIL() << "a damaged file was taken";
  } catch (moxZYNUtils::FormatError const& error) {
    EXPECT_EQ(error.errorMessage(), "Cabeçalho de dados incorreto.");
    std::vector<std::string> const details = {
        "file: " + path("b.zcf"), "byte 0, the version of the format, is 0x6E where 0x01 belongs"};
    EXPECT_EQ(error.errorDetails(), details);
  }
  EXPECT_TRUE(has("a"));
  EXPECT_FALSE(has("c"));
}

TEST_F(LoaderService, AfterStopNothingIsFoundAndNewSessionsSeedFromNothing) {
  save("a.zcf", "a");
  setDirectory("d", folder_.path().string());
  service_.start();
  EXPECT_TRUE(has("a"));
  service_.stop();
  EXPECT_FALSE(has("a"));
  host_.logIn({.id = 1});
  EXPECT_FALSE(has("a"));
}
