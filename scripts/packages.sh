# Sourced by ./check, ./package, ./preview and ./web: makes sure that the Debian packages they need are there.

BUILD_PACKAGES="g++ cmake ninja-build pkg-config libcli11-dev libyaml-cpp-dev libcpp-httplib-dev libssl-dev nlohmann-json3-dev libgif-dev libpng-dev zlib1g-dev qt6-base-dev fonts-dejavu-core"
TEST_PACKAGES="libgtest-dev fonts-liberation fonts-urw-base35 python3 python3-jsonschema python3-yaml clang-format-14 xvfb xauth"
WEB_PACKAGES="emscripten cmake ninja-build nlohmann-json3-dev fonts-dejavu-core nodejs"
WEB_TEST_PACKAGES="chromium"
BENCH_PACKAGES="libbenchmark-dev libcairo2-dev libpixman-1-dev liblua5.4-dev libfreetype-dev imagemagick"
FUZZ_PACKAGES="clang llvm"
WINDOWS_PACKAGES="g++-mingw-w64-x86-64-posix cmake ninja-build libcli11-dev nlohmann-json3-dev googletest"
WINDOWS_TEST_PACKAGES="wine wine64 xdotool imagemagick"
PACKAGE_PACKAGES="dpkg-dev fakeroot gzip python3 nsis"

# require_packages NAME...: installs what is missing, as root or through sudo; otherwise names it and stops.
require_packages() {
  missing=""
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" = 0 ]; then
    as_root=""
  elif command -v sudo >/dev/null 2>&1; then
    as_root="sudo"
  else
    echo "These packages are missing; please install them:$missing" >&2
    exit 1
  fi
  echo "Installing:$missing"
  $as_root env DEBIAN_FRONTEND=noninteractive sh -c \
    "apt-get update -qq && apt-get install -y -qq --no-install-recommends$missing" >/dev/null
}

# check_format: names the files that the formatter would change. Its rules differ between versions, so this is one.
check_format() {
  find src tests bench fuzz demo '(' -name '*.cpp' -o -name '*.h' -o -name '*.cc' ')' -print0 |
    xargs -0 clang-format-14 --dry-run -Werror
}

# build_preset NAME: configures and builds one preset of CMakePresets.json.
build_preset() {
  cmake --preset "$1" -DVISTREL_TESTS=ON >/dev/null
  cmake --build --preset "$1"
}

# tests_wanted FOLDER: whether a build folder has its tests on; a new one is configured without them, so that opening
# the previewer needs no test packages.
tests_wanted() {
  if grep -q 'VISTREL_TESTS:BOOL=ON' "$1/CMakeCache.txt" 2>/dev/null; then echo ON; else echo OFF; fi
}

# build_web: the modules, the viewer and the playground, in build/web. npm comes with some packages of nodejs, and with
# one of its own.
build_web() {
  scripts/web-libraries
  cmake --preset web >/dev/null
  cmake --build --preset web
  command -v npm >/dev/null 2>&1 || require_packages npm
  (cd browser && npm ci --no-progress --silent && npm run --silent build)
}
