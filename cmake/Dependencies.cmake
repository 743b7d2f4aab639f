# Everything comes from Debian's packages; `./dev setup` installs them.

find_package(PkgConfig REQUIRED)
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(pugixml REQUIRED)
find_package(tomlplusplus REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(MARIADB REQUIRED IMPORTED_TARGET libmariadb)

if(MOX_BUILD_TESTS)
  find_package(GTest REQUIRED)
  find_package(rapidcheck REQUIRED)
endif()
