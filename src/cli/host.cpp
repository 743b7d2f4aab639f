#include "cli/host.h"

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "cli/output/csv_format.h"
#include "core/app/host_container.h"

namespace mox::cli {

namespace {

namespace fs = std::filesystem;

core::Settings readSettings(GlobalOptions const& options) {
  std::optional<fs::path> asked;
  if (!options.config.empty()) {
    asked = options.config;
  }
  auto const file = core::Settings::locate(asked);
  return file ? core::Settings::load(*file) : core::Settings();
}

/// The module that lies with the program, as it is built and as it is installed.
fs::path moduleBesideProgram() {
  return (fs::read_symlink("/proc/self/exe").parent_path() / ".." / "lib" / "libmox_zyn.so")
      .lexically_normal();
}

std::vector<fs::path> modulePaths(core::Settings const& settings) {
  std::vector<fs::path> paths;
  for (auto const& path : settings.list("modules", "paths")) {
    paths.emplace_back(path);
  }
  char const* const named = std::getenv("ZYN_MODULE");
  if (paths.empty()) {
    paths.push_back(named != nullptr && *named != '\0' ? fs::path(named) : moduleBesideProgram());
  }
  return paths;
}

/// What the program itself brings, ahead of the services, which may read documents that name it.
void enterOwnClasses(core::Registry& registry) {
  auto registration = registry.newRegistration();
  registration.setLibraryName("ZYN");
  registration.registerClass(
      std::make_unique<core::HostContainer<CsvFormat>>(CsvFormat::kRegisteredName));
  registry.add(std::move(registration));
}

}  // namespace

Host::Host(GlobalOptions const& options, Parts parts)
    : application_(readSettings(options)), units_(options.units) {
  for (auto const& path : modulePaths(application_.configuration())) {
    application_.loadModule(path);
  }
  enterOwnClasses(application_.registry());
  if (parts == Parts::kAll) {
    application_.start();
  }
  session_ = openSession(options);
  scope_ = std::make_unique<core::SessionScope>(session_);
}

int Host::headOfficeUnit() const {
  return session_->user() ? session_->user()->headOfficeUnit() : 0;
}

std::shared_ptr<core::Session> Host::openSession(GlobalOptions const& options) {
  auto& sessions = application_.sessions();
  if (options.user.empty()) {
    return sessions.openAnonymous();
  }
  return sessions.open(
      core::restrictedToUnits(application_.users().find(options.user), options.units));
}

}  // namespace mox::cli
